#include "helper/bus_service_linux.h"

#include <systemd/sd-daemon.h>

#include <algorithm>
#include <cerrno>
#include <string_view>
#include <utility>

#include "logic/helper/helper_identity.h"

namespace brindle {

struct BusService::Client {
  BusService* service = nullptr;
  std::string name;
  std::optional<uid_t> user;
  BusTrack track;
  BusWatch question;
  bool admitted = false;
  /// Set once it counts as one of Helper's connections.
  std::optional<ConnectionId> connection;
  std::deque<BusMessage> waiting;
};

namespace {

int methodCalled(sd_bus_message* call, void* data, sd_bus_error* error) {
  return static_cast<BusService*>(data)->receive(call, error);
}

// Every method is open to everybody as far as the library is concerned; admission is ours.
const sd_bus_vtable kMethods[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD_WITH_ARGS(HelperIdentity::kSetSleepDisabledMember.data(),
                            SD_BUS_ARGS("b", disabled, "d", maxDuration), SD_BUS_RESULT("b", ok, "s", message),
                            methodCalled, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD_WITH_ARGS(HelperIdentity::kHeartbeatMember.data(), SD_BUS_NO_ARGS, SD_BUS_RESULT("b", sleepDisabled),
                            methodCalled, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD_WITH_ARGS(HelperIdentity::kStatusMember.data(), SD_BUS_NO_ARGS,
                            SD_BUS_RESULT("b", sleepDisabled, "d", remaining, "x", version), methodCalled,
                            SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_VTABLE_END};

bool isStatus(sd_bus_message* call) { return sd_bus_message_get_member(call) == HelperIdentity::kStatusMember; }

void refuse(sd_bus_message* call) {
  sd_bus_reply_method_errorf(call, SD_BUS_ERROR_ACCESS_DENIED, "not authorised for %s",
                             HelperIdentity::kPolkitAction.data());
}

}  // namespace

BusService::BusService(BusConnection& bus, EventLoop& loop) : bus_(bus), loop_(loop), admission_(bus) {}
BusService::~BusService() = default;

Outcome BusService::publish(std::shared_ptr<Helper> helper) {
  helper_ = std::move(helper);
  sd_bus_slot* slot = nullptr;
  const int code = sd_bus_add_object_vtable(bus_.get(), &slot, HelperIdentity::kObjectPath.data(),
                                            HelperIdentity::kInterface.data(), kMethods, this);
  if (code < 0) return fail(-code, "put the helper on the bus");
  object_.reset(slot);
  return bus_.requestName(std::string(HelperIdentity::kBusName));
}

bool BusService::callsPending() const {
  return unanswered_ > 0 || std::ranges::any_of(clients_, [](const auto& entry) { return !entry.second->admitted; });
}

bool BusService::hasRoomFor(std::optional<uid_t> user) const {
  if (clients_.size() >= kMaxBusClients) return false;
  // The crowd before polkit's door must not keep out those who need not go through it.
  if (Admission::trusts(user)) return true;
  std::size_t waiting = 0, ofUser = 0;
  for (const auto& [name, client] : clients_) {
    if (client->admitted) continue;
    ++waiting;
    ofUser += client->user == user ? 1 : 0;
  }
  return waiting < kMaxUnadmittedClients && ofUser < kMaxUnadmittedOfUser;
}

void BusService::exitWhenIdle() {
  if (std::exchange(leaving_, true)) return;
  // The service manager must know first, so that it starts the next instance for a call that comes from now on.
  sd_notify(0, "STOPPING=1");
  sd_bus_slot* slot = nullptr;
  const auto released = [](sd_bus_message*, void* data, sd_bus_error*) {
    static_cast<BusService*>(data)->loop_.exit(0);
    return 0;
  };
  const int code = sd_bus_release_name_async(bus_.get(), &slot, HelperIdentity::kBusName.data(), released, this);
  release_.reset(slot);
  if (code < 0) loop_.exit(0);
}

int BusService::receive(sd_bus_message* call, sd_bus_error* error) {
  const char* sender = sd_bus_message_get_sender(call);
  if (sender == nullptr) return -EBADMSG;
  if (leaving_) {
    return sd_bus_error_set_const(error, SD_BUS_ERROR_NO_REPLY, "the helper was just ending itself, ask again");
  }
  const std::string name = sender;
  const auto found = clients_.find(name);
  Client* client = found != clients_.end() ? found->second.get() : nullptr;
  if (client == nullptr) return receiveFirst(name, call, error);
  if (!client->admitted) {
    if (client->waiting.size() >= kMaxWaitingCalls) {
      return sd_bus_error_set_const(error, SD_BUS_ERROR_LIMITS_EXCEEDED, "too many calls before admission");
    }
    client->waiting.emplace_back(sd_bus_message_ref(call));
    return 1;
  }
  serve(*client, BusMessage(sd_bus_message_ref(call)));
  forgetUnlessConnected(name);
  return 1;
}

int BusService::receiveFirst(const std::string& name, sd_bus_message* call, sd_bus_error* error) {
  const auto user = Admission::userOf(call);
  if (!hasRoomFor(user)) return sd_bus_error_set_const(error, SD_BUS_ERROR_LIMITS_EXCEEDED, "too many clients");
  Client* client = addClient(name);
  // Gone between its call and our watch: nobody is left to answer, and a hold for it would have no end.
  if (client == nullptr) return 1;
  client->user = user;
  client->waiting.emplace_back(sd_bus_message_ref(call));
  if (Admission::trusts(user)) {
    admissionAnswered(name, true);
    return 1;
  }
  BusWatch question = admission_.ask(call, [this, name](bool admitted) { admissionAnswered(name, admitted); });
  // An answer that came at once has taken the client out again.
  if (const auto still = clients_.find(name); question && still != clients_.end()) {
    still->second->question = std::move(question);
  }
  return 1;
}

BusService::Client* BusService::addClient(const std::string& name) {
  auto client = std::make_unique<Client>();
  client->service = this;
  client->name = name;
  const auto vanished = [](sd_bus_track*, void* data) {
    const auto* gone = static_cast<Client*>(data);
    gone->service->clientVanished(std::string(gone->name));
    return 0;
  };
  sd_bus_track* track = nullptr;
  if (sd_bus_track_new(bus_.get(), &track, vanished, client.get()) < 0) return nullptr;
  client->track.reset(track);
  if (sd_bus_track_add_name(track, name.c_str()) < 0) return nullptr;
  return (clients_[name] = std::move(client)).get();
}

void BusService::clientVanished(const std::string& name) {
  const auto found = clients_.find(name);
  if (found == clients_.end()) return;
  const auto connection = found->second->connection;
  clients_.erase(found);
  if (connection) helper_->connectionEnded(*connection);
}

void BusService::admissionAnswered(const std::string& name, bool admitted) {
  const auto found = clients_.find(name);
  if (found == clients_.end()) return;
  Client& client = *found->second;
  auto calls = std::exchange(client.waiting, {});
  client.admitted = admitted;
  if (!admitted) {
    for (const auto& call : calls) refuse(call.get());
    clients_.erase(found);
    return;
  }
  for (auto& call : calls) serve(client, std::move(call));
  forgetUnlessConnected(name);
}

void BusService::forgetUnlessConnected(const std::string& name) {
  const auto found = clients_.find(name);
  if (found != clients_.end() && !found->second->connection) clients_.erase(found);
}

void BusService::serve(Client& client, BusMessage call) {
  if (isStatus(call.get())) return status(std::move(call));
  if (!client.connection) {
    client.connection = ConnectionId{++lastConnection_};
    helper_->accept(*client.connection);
  }
  if (sd_bus_message_get_member(call.get()) == HelperIdentity::kHeartbeatMember) return heartbeat(std::move(call));
  setSleepDisabled(std::move(call));
}

void BusService::setSleepDisabled(BusMessage call) {
  int disabled = 0;
  double maxDuration = 0;
  if (const int code = sd_bus_message_read(call.get(), "bd", &disabled, &maxDuration); code < 0) {
    sd_bus_reply_method_errno(call.get(), code, nullptr);
    return;
  }
  ++unanswered_;
  // The callback must be copyable, so it shares the message.
  helper_->setSleepDisabled({.disabled = disabled != 0, .maxDuration = Seconds{maxDuration}},
                            [this, shared = std::shared_ptr(std::move(call))](const SleepReply& reply) {
                              --unanswered_;
                              sd_bus_reply_method_return(shared.get(), "bs", int{reply.ok}, reply.message.c_str());
                            });
}

void BusService::heartbeat(BusMessage call) {
  ++unanswered_;
  helper_->heartbeat([this, shared = std::shared_ptr(std::move(call))](bool sleepDisabled) {
    --unanswered_;
    sd_bus_reply_method_return(shared.get(), "b", int{sleepDisabled});
  });
}

void BusService::status(BusMessage call) {
  ++unanswered_;
  helper_->status([this, shared = std::shared_ptr(std::move(call))](const HelperStatus& reply) {
    --unanswered_;
    sd_bus_reply_method_return(shared.get(), "bdx", int{reply.sleepDisabled}, reply.remaining.count(), reply.version);
  });
}

}  // namespace brindle
