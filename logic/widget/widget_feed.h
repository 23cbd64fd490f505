// The file through which the application hands its state to the widget: "widget-snapshot.json".
//
// Written by the application, read by the widget and by `brindle statusline`. One document, replaced in one step, so
// a reader sees the old snapshot or the new; no lock.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/result.h"
#include "logic/widget/widget_snapshot.h"

namespace brindle::WidgetFeed {

inline constexpr std::string_view kFileName = "widget-snapshot.json";

/// The folder shared with the widget; none when the system offers none.
using Container = std::optional<std::string>;

/// The file's text: compact, sorted keys, dates in seconds since 1970 with their fraction.
[[nodiscard]] std::string encodeText(const WidgetSnapshot& snapshot);
/// The snapshot of a text; none for anything that is no snapshot. Total for any bytes.
[[nodiscard]] std::optional<WidgetSnapshot> decodeText(std::string_view text);

/// Writes the file, creating the folder where needed; without a container nothing is written, which is no failure. On
/// failure the previous file stays.
Outcome write(const Container& container, const WidgetSnapshot& snapshot);

/// The last snapshot; none without a container, without a file, or when it does not decode.
[[nodiscard]] std::optional<WidgetSnapshot> read(const Container& container);

}  // namespace brindle::WidgetFeed
