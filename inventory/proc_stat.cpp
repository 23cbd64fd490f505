#include "inventory/proc_stat.h"

#include <algorithm>
#include <limits>

#include "base/number_text.h"

namespace brindle {
namespace {

/// PF_KTHREAD of the kernel's flags, stable in its interface to ps.
constexpr std::uint64_t kKernelThreadFlag = 0x00200000;

/// Reads the fields after the name one by one; once one is missing all later ones are.
class Fields {
 public:
  explicit Fields(std::string_view text) : rest_(text) {}

  std::string_view next() {
    while (!rest_.empty() && rest_.front() == ' ') rest_.remove_prefix(1);
    const std::size_t end = std::min(rest_.find_first_of(" \n"), rest_.size());
    const std::string_view field = rest_.substr(0, end);
    rest_.remove_prefix(end);
    return field;
  }

  template <typename Number>
  Number number() {
    const auto value = wholeFromText<Number>(next());
    if (!value) failed_ = true;
    return value.value_or(0);
  }

  void skip(int count) {
    for (int each = 0; each < count; ++each) {
      if (next().empty()) failed_ = true;
    }
  }

  [[nodiscard]] bool failed() const { return failed_; }

 private:
  std::string_view rest_;
  bool failed_ = false;
};

}  // namespace

std::optional<ProcStat> parseProcStat(std::string_view text) {
  const std::size_t open = text.find('(');
  const std::size_t close = text.rfind(')');
  if (open == std::string_view::npos || close == std::string_view::npos || close < open) return std::nullopt;
  ProcStat stat;
  Fields head(text.substr(0, open));
  stat.pid = head.number<std::int32_t>();
  stat.name = text.substr(open + 1, close - open - 1);
  Fields fields(text.substr(close + 1));
  const std::string_view state = fields.next();
  stat.ppid = fields.number<std::int32_t>();
  stat.group = fields.number<std::int32_t>();
  stat.session = fields.number<std::int32_t>();
  stat.terminal = fields.number<std::int32_t>();
  fields.skip(1);  // terminal's foreground group
  stat.kernelThread = (fields.number<std::uint64_t>() & kKernelThreadFlag) != 0;
  fields.skip(4);  // page faults
  const auto user = fields.number<std::uint64_t>();
  const auto kernel = fields.number<std::uint64_t>();
  fields.skip(6);  // children's times, priority, nice, threads, an alarm that is always 0
  stat.startTicks = fields.number<std::int64_t>();
  if (head.failed() || fields.failed() || state.size() != 1 || stat.pid < 1 || stat.ppid < 0 || stat.startTicks < 0) {
    return std::nullopt;
  }
  if (kernel > std::numeric_limits<std::uint64_t>::max() - user) return std::nullopt;
  stat.state = state.front();
  stat.cpuTicks = user + kernel;
  return stat;
}

}  // namespace brindle
