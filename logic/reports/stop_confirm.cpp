#include "logic/reports/stop_confirm.h"

#include "base/text.h"

namespace brindle {

StopConfirm::Decision StopConfirm::decide(const std::function<std::optional<std::string>()>& ask) const {
  if (agreedInAdvance) return Decision::proceed;
  if (!interactive) return Decision::needsTTY;
  const std::optional<std::string> answer = ask();
  if (!answer) return Decision::declined;
  const std::string word = lowerCase(*answer);
  return word == "y" || word == "yes" ? Decision::proceed : Decision::declined;
}

}  // namespace brindle
