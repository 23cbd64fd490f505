#include "cli/screen_frame.h"

namespace brindle {
namespace {

constexpr std::string_view kToTheTop = "\x1b[H";
constexpr std::string_view kClearLine = "\x1b[K";
constexpr std::string_view kClearBelow = "\x1b[J";

}  // namespace

std::string screenFrame(std::string_view text) {
  std::string frame(kToTheTop);
  for (const char character : text) {
    if (character == '\n') frame += kClearLine;
    frame += character;
  }
  return frame + std::string(kClearBelow);
}

}  // namespace brindle
