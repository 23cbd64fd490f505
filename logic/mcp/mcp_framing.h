// The byte framing of the Model Context Protocol on a stream: where one message ends and the next begins.
//
// Used by MCPMessageReader and by whoever holds a whole buffer. Two framings are told apart by the first byte of a
// message: "{" begins a line that ends at the next line feed, anything else a header block that ends at an empty
// line and announces its body's length. Pure functions over bytes, total for any bytes; safe on any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace brindle {

/// How a message came, or how a reply goes out.
enum class MCPFrameStyle { line, header };

namespace MCPFraming {

/// What stands at the front of a buffer.
struct Step {
  enum class Kind {
    wait,     ///< nothing complete: more bytes are needed
    skip,     ///< blank lines, or a header block without a usable Content-Length: no message, never needed again
    message,  ///< a complete message
  };
  Kind kind = Kind::wait;
  MCPFrameStyle style = MCPFrameStyle::line;
  /// The message within the buffer, without its line feed or header. Of a line or body that is not complete yet,
  /// `bodyLength` is what is known of it: the line's bytes so far, or the length that the header announces.
  std::size_t bodyBegin = 0;
  std::uint64_t bodyLength = 0;
  /// Length of the header block without its empty line; while its end is missing, a lower bound of it.
  std::size_t headerLength = 0;
  /// Where the next step begins; 0 while waiting.
  std::size_t end = 0;

  bool operator==(const Step&) const = default;
};

/// Looks at the front of `buffer` without changing it. A Content-Length counts when it is all decimal digits, blanks
/// around them aside, and fits 63 bits; of several in one block the last one that counts is taken.
[[nodiscard]] Step step(std::string_view buffer);

/// The next complete message, removed from the buffer with what was skipped before it; none, with everything that may
/// still become one left in place, when there is no complete message yet.
[[nodiscard]] std::optional<std::string> nextMessage(std::string& buffer);

/// The reply behind a header that counts its bytes.
[[nodiscard]] std::string frame(std::string_view reply);

}  // namespace MCPFraming
}  // namespace brindle
