// The functions of libsystemd that the command uses, under their own names: the library is loaded at the first call.
//
// Linked into `brindle` alone, whose linker then leaves the shared library out. With its own dependencies (six more)
// it takes more than half of the start of a hook command, which agents wait for and which never asks for it: 1.9 ms of
// processor time with it, 0.9 without, where an empty program takes 0.5. A function that is missing here is found in
// the shared library as ever, and the start is slow again; a test looks at that.
// Any thread; the library stays loaded.
#include <dlfcn.h>
#include <systemd/sd-bus.h>
#include <systemd/sd-event.h>

#include <cerrno>
#include <cstdarg>
#include <type_traits>

namespace {

template <typename Function>
Function late(const char* name) {
  static void* const library = ::dlopen("libsystemd.so.0", RTLD_NOW | RTLD_LOCAL);
  return library == nullptr ? nullptr : reinterpret_cast<Function>(::dlsym(library, name));
}

/// What a function answers on a system without the library: the failure that callers expect anyway.
template <typename Result>
Result missing() {
  if constexpr (std::is_same_v<Result, int>) return -ELIBACC;
  if constexpr (std::is_pointer_v<Result>) return nullptr;
}

}  // namespace

#define BRINDLE_LATE(result, name, parameters, ...)              \
  result name parameters {                                       \
    static const auto function = late<decltype(&name)>(#name);   \
    return function ? function(__VA_ARGS__) : missing<result>(); \
  }

BRINDLE_LATE(int, sd_bus_add_match,
             (sd_bus * bus, sd_bus_slot** slot, const char* match, sd_bus_message_handler_t callback, void* userdata),
             bus, slot, match, callback, userdata)
BRINDLE_LATE(int, sd_bus_attach_event, (sd_bus * bus, sd_event* e, int priority), bus, e, priority)
BRINDLE_LATE(int, sd_bus_call_async,
             (sd_bus * bus, sd_bus_slot** slot, sd_bus_message* m, sd_bus_message_handler_t callback, void* userdata,
              uint64_t usec),
             bus, slot, m, callback, userdata, usec)
BRINDLE_LATE(sd_bus*, sd_bus_flush_close_unref, (sd_bus * bus), bus)
BRINDLE_LATE(int, sd_bus_is_open, (sd_bus * bus), bus)
BRINDLE_LATE(int, sd_bus_message_enter_container, (sd_bus_message * m, char type, const char* contents), m, type,
             contents)
BRINDLE_LATE(const sd_bus_error*, sd_bus_message_get_error, (sd_bus_message * m), m)
BRINDLE_LATE(int, sd_bus_message_new_method_call,
             (sd_bus * bus, sd_bus_message** m, const char* destination, const char* path, const char* interface,
              const char* member),
             bus, m, destination, path, interface, member)
BRINDLE_LATE(int, sd_bus_message_set_allow_interactive_authorization, (sd_bus_message * m, int b), m, b)
BRINDLE_LATE(int, sd_bus_message_set_auto_start, (sd_bus_message * m, int b), m, b)
BRINDLE_LATE(sd_bus_message*, sd_bus_message_unref, (sd_bus_message * m), m)
BRINDLE_LATE(int, sd_bus_open_system, (sd_bus * *ret), ret)
BRINDLE_LATE(int, sd_bus_open_user, (sd_bus * *ret), ret)
BRINDLE_LATE(int, sd_bus_request_name, (sd_bus * bus, const char* name, uint64_t flags), bus, name, flags)
BRINDLE_LATE(sd_bus_slot*, sd_bus_slot_unref, (sd_bus_slot * slot), slot)
BRINDLE_LATE(int, sd_event_add_child,
             (sd_event * e, sd_event_source** s, pid_t pid, int options, sd_event_child_handler_t callback,
              void* userdata),
             e, s, pid, options, callback, userdata)
BRINDLE_LATE(int, sd_event_add_io,
             (sd_event * e, sd_event_source** s, int fd, uint32_t events, sd_event_io_handler_t callback,
              void* userdata),
             e, s, fd, events, callback, userdata)
BRINDLE_LATE(int, sd_event_add_signal,
             (sd_event * e, sd_event_source** s, int sig, sd_event_signal_handler_t callback, void* userdata), e, s,
             sig, callback, userdata)
BRINDLE_LATE(int, sd_event_add_time_relative,
             (sd_event * e, sd_event_source** s, clockid_t clock, uint64_t usec, uint64_t accuracy,
              sd_event_time_handler_t callback, void* userdata),
             e, s, clock, usec, accuracy, callback, userdata)
BRINDLE_LATE(int, sd_event_exit, (sd_event * e, int code), e, code)
BRINDLE_LATE(int, sd_event_loop, (sd_event * e), e)
BRINDLE_LATE(int, sd_event_new, (sd_event * *e), e)
BRINDLE_LATE(int, sd_event_now, (sd_event * e, clockid_t clock, uint64_t* usec), e, clock, usec)
BRINDLE_LATE(sd_event_source*, sd_event_source_disable_unref, (sd_event_source * s), s)
BRINDLE_LATE(sd_event*, sd_event_source_get_event, (sd_event_source * s), s)
BRINDLE_LATE(int, sd_event_source_set_enabled, (sd_event_source * s, int enabled), s, enabled)
BRINDLE_LATE(int, sd_event_source_set_time, (sd_event_source * s, uint64_t usec), s, usec)
BRINDLE_LATE(sd_event*, sd_event_unref, (sd_event * e), e)

#undef BRINDLE_LATE

// Functions with any number of arguments cannot hand them on as they are.

int sd_bus_message_append(sd_bus_message* m, const char* types, ...) {
  static const auto function = late<decltype(&sd_bus_message_appendv)>("sd_bus_message_appendv");
  va_list arguments;
  va_start(arguments, types);
  const int result = function ? function(m, types, arguments) : -ELIBACC;
  va_end(arguments);
  return result;
}

int sd_bus_message_read(sd_bus_message* m, const char* types, ...) {
  static const auto function = late<decltype(&sd_bus_message_readv)>("sd_bus_message_readv");
  va_list arguments;
  va_start(arguments, types);
  const int result = function ? function(m, types, arguments) : -ELIBACC;
  va_end(arguments);
  return result;
}
