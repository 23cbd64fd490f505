#include "base/indic_conjunct.h"

#include <utf8proc.h>

#include <algorithm>
#include <array>

namespace brindle {
namespace {

struct ScalarRange {
  std::int32_t first;
  std::int32_t last;
};

// Indic_Conjunct_Break=Consonant of Unicode 15.1: Devanagari, Bengali, Gujarati, Oriya, Telugu, Malayalam.
constexpr auto kConsonants = std::to_array<ScalarRange>(
    {{0x0915, 0x0939}, {0x0958, 0x095F}, {0x0978, 0x097F}, {0x0995, 0x09A8}, {0x09AA, 0x09B0}, {0x09B2, 0x09B2},
     {0x09B6, 0x09B9}, {0x09DC, 0x09DD}, {0x09DF, 0x09DF}, {0x09F0, 0x09F1}, {0x0A95, 0x0AA8}, {0x0AAA, 0x0AB0},
     {0x0AB2, 0x0AB3}, {0x0AB5, 0x0AB9}, {0x0AF9, 0x0AF9}, {0x0B15, 0x0B28}, {0x0B2A, 0x0B30}, {0x0B32, 0x0B33},
     {0x0B35, 0x0B39}, {0x0B5C, 0x0B5D}, {0x0B5F, 0x0B5F}, {0x0B71, 0x0B71}, {0x0C15, 0x0C28}, {0x0C2A, 0x0C39},
     {0x0C58, 0x0C5A}, {0x0D15, 0x0D3A}});

// Indic_Conjunct_Break=Linker: the viramas of the same scripts.
constexpr auto kLinkers = std::to_array<std::int32_t>({0x094D, 0x09CD, 0x0ACD, 0x0B4D, 0x0C4D, 0x0D4D});

constexpr std::int32_t kZeroWidthJoiner = 0x200D;

bool isConsonant(std::int32_t scalar) {
  return std::any_of(kConsonants.begin(), kConsonants.end(),
                     [=](ScalarRange range) { return scalar >= range.first && scalar <= range.last; });
}

bool isLinker(std::int32_t scalar) { return std::find(kLinkers.begin(), kLinkers.end(), scalar) != kLinkers.end(); }

/// Marks that may stand within a conjunct.
bool isExtender(std::int32_t scalar) {
  return scalar == kZeroWidthJoiner || utf8proc_get_property(scalar)->combining_class != 0;
}

}  // namespace

bool IndicConjunct::continuesWith(std::int32_t scalar) {
  if (scalar < kConsonants.front().first) {
    // Latin text with its marks is nearly everything that comes here.
    if (scalar < 0x0300 || !isExtender(scalar)) state_ = State::none;
    return false;
  }
  if (isConsonant(scalar)) {
    const bool continues = state_ == State::linked;
    state_ = State::consonant;
    return continues;
  }
  if (isLinker(scalar)) {
    if (state_ != State::none) state_ = State::linked;
  } else if (!isExtender(scalar)) {
    state_ = State::none;
  }
  return false;
}

}  // namespace brindle
