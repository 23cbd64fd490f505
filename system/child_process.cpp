#include "system/child_process.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

extern char** environ;  // POSIX leaves the declaration to the program

namespace brindle {
namespace {

/// posix_spawn's two parameter blocks, which must be destroyed however the start goes.
class SpawnOptions {
 public:
  SpawnOptions() {
    posix_spawn_file_actions_init(&actions_);
    posix_spawnattr_init(&attributes_);
  }
  ~SpawnOptions() {
    posix_spawn_file_actions_destroy(&actions_);
    posix_spawnattr_destroy(&attributes_);
  }
  SpawnOptions(const SpawnOptions&) = delete;
  SpawnOptions& operator=(const SpawnOptions&) = delete;

  /// 0 or an errno value.
  [[nodiscard]] int apply(const ChildSpec& spec) {
    if (spec.nullStreams) {
      for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
        const int mode = stream == STDIN_FILENO ? O_RDONLY : O_WRONLY;
        if (const int code = posix_spawn_file_actions_addopen(&actions_, stream, "/dev/null", mode, 0)) return code;
      }
    }
    short flags = 0;
    sigset_t set;
    if (spec.defaultSignals) {
      sigfillset(&set);
      if (const int code = posix_spawnattr_setsigdefault(&attributes_, &set)) return code;
      flags = static_cast<short>(flags | POSIX_SPAWN_SETSIGDEF);
    }
    if (spec.defaultSignals || spec.mask) {
      sigemptyset(&set);
      if (spec.mask && !spec.defaultSignals) set = *spec.mask;
      if (const int code = posix_spawnattr_setsigmask(&attributes_, &set)) return code;
      flags = static_cast<short>(flags | POSIX_SPAWN_SETSIGMASK);
    }
    return posix_spawnattr_setflags(&attributes_, flags);
  }

  [[nodiscard]] const posix_spawn_file_actions_t* actions() const { return &actions_; }
  [[nodiscard]] const posix_spawnattr_t* attributes() const { return &attributes_; }

 private:
  posix_spawn_file_actions_t actions_{};
  posix_spawnattr_t attributes_{};
};

// posix_spawn takes char* const[] but never writes through it.
std::vector<char*> pointers(const std::vector<std::string>& texts) {
  std::vector<char*> result;
  result.reserve(texts.size() + 1);
  for (const auto& text : texts) result.push_back(const_cast<char*>(text.c_str()));
  result.push_back(nullptr);
  return result;
}

}  // namespace

Result<ChildProcess> ChildProcess::start(const ChildSpec& spec) {
  SpawnOptions options;
  if (const int code = options.apply(spec)) return fail(code, "start " + spec.program);

  std::vector<std::string> words{spec.program};
  words.insert(words.end(), spec.arguments.begin(), spec.arguments.end());
  auto arguments = pointers(words);
  auto variables = spec.environment ? pointers(*spec.environment) : std::vector<char*>{};
  char** environment = spec.environment ? variables.data() : environ;

  const auto spawn = spec.searchesPath ? posix_spawnp : posix_spawn;
  pid_t pid = -1;
  const int code =
      spawn(&pid, spec.program.c_str(), options.actions(), options.attributes(), arguments.data(), environment);
  if (code != 0) return fail(code, "start " + spec.program);
  return ChildProcess(pid);
}

Result<ChildEnd> ChildProcess::wait() const {
  int status = 0;
  while (waitpid(pid_, &status, 0) < 0) {
    if (errno != EINTR) return fail(errno, "wait for child");
  }
  if (WIFSIGNALED(status)) return ChildEnd{.killedBy = WTERMSIG(status)};
  return ChildEnd{.exitStatus = WEXITSTATUS(status)};
}

}  // namespace brindle
