#include "cli/signal_watch.h"

#include "platform/foreground_child.h"

namespace brindle {

Result<std::vector<EventSource>> watchSignals(EventLoop& loop, std::span<const int> signals,
                                              const std::function<void(SignalNote)>& came) {
  std::vector<EventSource> sources;
  for (const int signal : signals) {
    if (isIgnored(signal)) continue;
    auto source = loop.onSignal(signal, came);
    if (!source) return tl::make_unexpected(source.error());
    sources.push_back(*std::move(source));
  }
  return sources;
}

}  // namespace brindle
