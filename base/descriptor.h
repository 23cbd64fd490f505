// Ownership of a file descriptor.
#pragma once

#include <utility>

namespace brindle {

/// Closes its descriptor when it goes; -1 is none. Every descriptor of the program is opened close-on-exec.
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    if (this != &other) {
      reset();
      number_ = std::exchange(other.number_, -1);
    }
    return *this;
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() { reset(); }

  [[nodiscard]] int get() const { return number_; }
  [[nodiscard]] explicit operator bool() const { return number_ >= 0; }
  /// Gives the descriptor up without closing it.
  [[nodiscard]] int release() { return std::exchange(number_, -1); }
  void reset();

 private:
  int number_ = -1;
};

}  // namespace brindle
