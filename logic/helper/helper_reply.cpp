#include "logic/helper/helper_reply.h"

namespace brindle::HelperReplyText {

std::string failed(std::string_view switchName) { return std::string(switchName) + " failed"; }

}  // namespace brindle::HelperReplyText
