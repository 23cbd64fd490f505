// Counters that several processes share, and processes that a test starts and kills.
#pragma once

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <thread>

namespace brindle {

/// Zeroed counters in memory that children inherit; gone with the object.
class SharedCounters {
 public:
  explicit SharedCounters(std::size_t count) : bytes_(count * sizeof(std::atomic<std::uint32_t>)) {
    void* memory = ::mmap(nullptr, bytes_, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) std::abort();
    counters_ = static_cast<std::atomic<std::uint32_t>*>(memory);
  }
  SharedCounters(const SharedCounters&) = delete;
  SharedCounters& operator=(const SharedCounters&) = delete;
  ~SharedCounters() { ::munmap(counters_, bytes_); }

  [[nodiscard]] std::atomic<std::uint32_t>& operator[](std::size_t index) { return counters_[index]; }

 private:
  std::size_t bytes_;
  std::atomic<std::uint32_t>* counters_;
};

/// A child that runs `body` and then ends with 0.
template <typename Body>
pid_t startChild(const Body& body) {
  const pid_t child = ::fork();
  if (child == 0) {
    body();
    ::_exit(0);
  }
  return child;
}

/// Whether the child ended by itself with 0.
inline bool endedWell(pid_t child) {
  int status = -1;
  return ::waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

/// Kills the child and waits for its end; whether it was still running.
inline bool killAndReap(pid_t child) {
  int status = -1;
  ::kill(child, SIGKILL);
  return ::waitpid(child, &status, 0) == child && WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
}

inline void pause(std::chrono::microseconds span) { std::this_thread::sleep_for(span); }

/// Where files live in memory, so that many thousand replacements, each of which waits for its disk, measure the store
/// and not the disk; where the system has no such folder, the usual one.
inline std::filesystem::path memoryFolder() {
  const std::filesystem::path memory = "/dev/shm";
  return ::access(memory.c_str(), W_OK | X_OK) == 0 ? memory : std::filesystem::temp_directory_path();
}

/// How long each test with random kills goes on; BRINDLE_STRESS_SECONDS for the long version.
inline std::chrono::seconds stressSpan() {
  const char* text = std::getenv("BRINDLE_STRESS_SECONDS");
  return std::chrono::seconds(text == nullptr ? 3 : std::atoi(text));
}

/// The long version does all of `count`, the short one a fortieth.
inline std::size_t stressCount(std::size_t count) {
  return std::getenv("BRINDLE_STRESS_SECONDS") == nullptr ? count / 40 : count;
}

}  // namespace brindle
