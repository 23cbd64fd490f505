// The version that every report document carries, so that scripts can check what they read.
#pragma once

namespace brindle {

/// The format version that the reports of this program write.
inline constexpr int kReportSchema = 1;

}  // namespace brindle
