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

inline void killAndReap(pid_t child) {
  ::kill(child, SIGKILL);
  ::waitpid(child, nullptr, 0);
}

inline void pause(std::chrono::microseconds span) { std::this_thread::sleep_for(span); }

/// How long each test with random kills goes on; BRINDLE_STRESS_SECONDS for the long version.
inline std::chrono::duration<double> stressSpan() {
  const char* text = std::getenv("BRINDLE_STRESS_SECONDS");
  return std::chrono::duration<double>(text == nullptr ? 3.0 : std::atof(text));
}

}  // namespace brindle
