// Whether the application's menu-bar item is shown, and who is told when that changes.
//
// One instance is shared by all who show or change it; its owner keeps the stored value. Not synchronised: used on
// one thread.
#pragma once

#include <functional>

namespace brindle {

class MenuBarInsertion {
 public:
  using Store = std::function<void(bool shown)>;

  /// `shown` is the value last stored. Never calls `store`, which is released with the instance.
  MenuBarInsertion(bool shown, Store store);
  MenuBarInsertion(const MenuBarInsertion&) = delete;
  MenuBarInsertion& operator=(const MenuBarInsertion&) = delete;

  [[nodiscard]] bool shown() const { return shown_; }
  /// Answers whether anything changed; if so, the new value is in place when `store` is called with it, once.
  bool setShown(bool wanted);

 private:
  bool shown_;
  Store store_;
};

}  // namespace brindle
