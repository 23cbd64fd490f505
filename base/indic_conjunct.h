// The rule of Unicode 15.1 that keeps consonants joined by a virama in one user-perceived character (UAX #29, GB9c).
//
// Used by the walk over characters alone. The library for text of Debian 12 implements Unicode 15.0, without this
// rule; the platform and newer releases have it. Pure values, one a walk.
#pragma once

#include <cstdint>

namespace brindle {

class IndicConjunct {
 public:
  /// Takes the next scalar of the text, and answers whether it continues a conjunct with those before it.
  bool continuesWith(std::int32_t scalar);

 private:
  enum class State { none, consonant, linked };
  State state_ = State::none;
};

}  // namespace brindle
