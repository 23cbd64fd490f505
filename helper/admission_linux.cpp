#include "helper/admission_linux.h"

#include <unistd.h>

#include <cstdint>
#include <string>
#include <utility>

#include "logic/helper/helper_identity.h"

namespace brindle {
namespace {

// Long enough for a person to find and type a password.
constexpr Seconds kQuestionTimeout{120};
constexpr std::uint32_t kMayAskUser = 1;

bool isAuthorised(sd_bus_message* reply) {
  if (sd_bus_message_get_error(reply) != nullptr) return false;
  int authorised = 0, challenge = 0;
  if (sd_bus_message_enter_container(reply, 'r', "bba{ss}") < 0) return false;
  if (sd_bus_message_read(reply, "bb", &authorised, &challenge) < 0) return false;
  return authorised != 0;
}

}  // namespace

std::optional<uid_t> Admission::userOf(sd_bus_message* call) {
  sd_bus_creds* found = nullptr;
  if (sd_bus_query_sender_creds(call, SD_BUS_CREDS_EUID, &found) < 0) return std::nullopt;
  const BusCredentials credentials(found);
  // Augmented values were read from /proc afterwards, when the process may have become another one.
  if ((sd_bus_creds_get_augmented_mask(found) & SD_BUS_CREDS_EUID) != 0) return std::nullopt;
  uid_t user = 0;
  if (sd_bus_creds_get_euid(found, &user) < 0) return std::nullopt;
  return user;
}

bool Admission::trusts(std::optional<uid_t> user) { return user && (*user == 0 || *user == geteuid()); }

BusWatch Admission::ask(sd_bus_message* call, const Answer& answer) const {
  auto question = bus_.newCall({.service = "org.freedesktop.PolicyKit1",
                                .path = "/org/freedesktop/PolicyKit1/Authority",
                                .interface = "org.freedesktop.PolicyKit1.Authority",
                                .member = "CheckAuthorization"});
  if (question) {
    const bool mayAsk = sd_bus_message_get_allow_interactive_authorization(call) > 0;
    const int built = sd_bus_message_append(question->get(), "(sa{sv})sa{ss}us", "system-bus-name", 1, "name", "s",
                                            sd_bus_message_get_sender(call), HelperIdentity::kPolkitAction.data(), 0,
                                            mayAsk ? kMayAskUser : 0U, "");
    if (built >= 0) {
      auto pending = bus_.callAsync(question->get(), kQuestionTimeout,
                                    [answer](sd_bus_message* reply) { answer(isAuthorised(reply)); });
      if (pending) return std::move(*pending);
    }
  }
  answer(false);
  return {};
}

}  // namespace brindle
