#include "platform/ask_again.h"

#include <utility>

namespace brindle {

AskAgain::AskAgain(Send send, std::function<Seconds()> now) : send_(std::move(send)), now_(std::move(now)) {}

void AskAgain::ask(const SleepRequest& request, HelperClient::SleepAnswered answered) {
  const auto number = ++lastRequest_;
  // Switching sleep on is not asked for twice: a helper that has ended holds nothing, and the next one need not start.
  if (!request.disabled) return send_(request, std::move(answered));
  send_(request, [this, request, answered = std::move(answered), number, asked = now_()](const auto& answer) {
    const bool gone = !answer && answer.error().kind == HelperProblemKind::unreachable;
    const bool wanted = number == lastRequest_ && now_() - asked < kAskAgainWithin;
    if (gone && wanted) return send_(request, answered);
    answered(answer);
  });
}

}  // namespace brindle
