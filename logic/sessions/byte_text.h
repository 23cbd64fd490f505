// Byte counts for people, in decimal units.
//
// Used by stop summaries, reports and notifications. Pure; independent of the locale.
#pragma once

#include <cstdint>
#include <string>

namespace brindle::ByteText {

/// From 10 GB one decimal, from 1 GB two; from 10 MB none, from 1 MB one; from 1 KB none; below that the plain count:
/// "12.3 GB", "1.50 GB", "45 MB", "2.5 MB", "1 KB", "999 B". The unit is chosen before rounding, so one byte below
/// 10 GB is "10.00 GB".
[[nodiscard]] std::string text(std::uint64_t bytes);

}  // namespace brindle::ByteText
