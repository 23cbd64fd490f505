#include <sys/uio.h>
#include <syslog.h>
#include <unistd.h>

#include <string>

#include "helper/journal_log.h"
#include "logic/helper/helper_identity.h"

// Without this, libsystemd would add the position of every call in this file to the entries.
#define SD_JOURNAL_SUPPRESS_LOCATION
#include <systemd/sd-journal.h>

namespace brindle {
namespace {

// The library drops entries silently when nobody listens there, so ask first.
constexpr const char* kJournalSocket = "/run/systemd/journal/socket";

iovec vectorOf(std::string& text) { return {.iov_base = text.data(), .iov_len = text.size()}; }

void write(int priority, std::string_view text) {
  const std::string label(HelperIdentity::helperLabel);
  if (access(kJournalSocket, W_OK) == 0) {
    std::string message = "MESSAGE=" + std::string(text);
    std::string level = "PRIORITY=" + std::to_string(priority);
    std::string identifier = "SYSLOG_IDENTIFIER=" + label;
    const iovec fields[] = {vectorOf(message), vectorOf(level), vectorOf(identifier)};
    if (sd_journal_sendv(fields, 3) == 0) return;
  }
  const std::string line = label + (priority <= LOG_ERR ? ": error: " : ": ") + std::string(text) + "\n";
  [[maybe_unused]] const auto written = ::write(STDERR_FILENO, line.data(), line.size());
}

}  // namespace

void JournalLog::event(std::string_view text) { write(LOG_INFO, text); }
void JournalLog::error(std::string_view text) { write(LOG_ERR, text); }

}  // namespace brindle
