#include "logic/widget/menu_bar_insertion.h"

#include <utility>

namespace brindle {

MenuBarInsertion::MenuBarInsertion(bool shown, Store store) : shown_(shown), store_(std::move(store)) {}

bool MenuBarInsertion::setShown(bool wanted) {
  if (wanted == shown_) return false;
  shown_ = wanted;
  if (store_) store_(wanted);
  return true;
}

}  // namespace brindle
