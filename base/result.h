// What a step that may fail returns: its value, or the system's error code and what was being done.
//
// Used by everything that touches the system. Parsers of outside input use std::optional instead.
#pragma once

#include <string>
#include <string_view>
#include <tl/expected.hpp>

namespace brindle {

/// The platform's "no permission to write the file" code, as its own library reports it; writers of the shared
/// files report it in place of EACCES, EPERM and EROFS, so that both editions agree.
inline constexpr int kFileWriteNoPermission = 513;

/// Why a step failed. Equality compares both members.
struct Failure {
  /// An errno value, or kFileWriteNoPermission.
  int code = 0;
  /// What was being done, lower case, without full stop: "open /tmp/x", "lock inbox".
  std::string doing;

  /// "open /tmp/x: No such file or directory". Independent of the locale.
  [[nodiscard]] std::string message() const;

  bool operator==(const Failure&) const = default;
};

template <typename T>
using Result = tl::expected<T, Failure>;

/// The result of a step that yields nothing but may fail. Never discard it: a write that failed must be seen.
class [[nodiscard]] Outcome : public tl::expected<void, Failure> {
 public:
  using tl::expected<void, Failure>::expected;
};

/// A failure to return: `return fail(errno, "open " + path);`
[[nodiscard]] inline tl::unexpected<Failure> fail(int code, std::string doing) {
  return tl::make_unexpected(Failure{code, std::move(doing)});
}

/// The system's text for an errno value, in English whatever the locale; "Permission denied" also for 513.
[[nodiscard]] std::string errorText(int code);

}  // namespace brindle
