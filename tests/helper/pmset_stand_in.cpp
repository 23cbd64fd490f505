// What the tests of PmsetRunner run in place of the system's tool. Its environment and streams are taken away, so the
// name under which it was started says what it shall do, and it reports into files beside that name.
#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>

extern char** environ;

namespace {

bool isNullDevice(int stream) {
  struct stat one {
  }, other{};
  return fstat(stream, &one) == 0 && stat("/dev/null", &other) == 0 && one.st_rdev == other.st_rdev;
}

void report(const std::string& path, int count, char** arguments) {
  std::FILE* file = std::fopen(path.c_str(), "we");
  if (file == nullptr) std::exit(90);
  for (int index = 1; index < count; ++index) std::fprintf(file, "argument %s\n", arguments[index]);
  for (char** variable = environ; *variable != nullptr; ++variable) std::fprintf(file, "variable %s\n", *variable);
  for (int stream = 0; stream <= 2; ++stream) {
    if (!isNullDevice(stream)) std::fprintf(file, "stream %d is not the null device\n", stream);
  }
  sigset_t blocked;
  sigprocmask(SIG_SETMASK, nullptr, &blocked);
  for (int signal = 1; signal < 32; ++signal) {
    struct sigaction action {};
    if (sigaction(signal, nullptr, &action) == 0 && action.sa_handler != SIG_DFL) {
      std::fprintf(file, "signal %d has not its default action\n", signal);
    }
    if (sigismember(&blocked, signal) == 1) std::fprintf(file, "signal %d is blocked\n", signal);
  }
  std::fclose(file);
}

}  // namespace

int main(int count, char** arguments) {
  const std::string path = arguments[0];
  const std::string name = path.substr(path.rfind('/') + 1);
  if (name == "reports") report(path + ".report", count, arguments);
  if (name == "fails") return 3;
  if (name == "killed") std::raise(SIGKILL);
  if (name == "waits") {
    std::FILE* fifo = std::fopen((path + ".fifo").c_str(), "re");
    if (fifo == nullptr) return 90;
    while (std::fgetc(fifo) != EOF) {
    }
    std::fclose(fifo);
  }
  return 0;
}
