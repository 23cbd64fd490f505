// What the report commands share: one report, once or repeatedly.
//
// Used by the files of the reports and of the stopping commands.
#pragma once

#include <functional>
#include <string>

#include "cli/command.h"
#include "cli/report_options.h"

namespace brindle {

/// What one look gives: the text to print, and whether there was anything to report.
struct Report {
  std::string text;
  bool found = true;
};

struct ReportKind {
  ListingDetail detail = ListingDetail::everything;
  /// The JSON document or the text for people, as the options ask.
  std::function<Report(const HostSnapshot&, const ReportOptions&, const Output&)> make;
};

/// Reads the options, looks, prints, and names settings that could not be read; again and again when watching. Exit
/// code 0, 1 when nothing was found, 2 for wrong usage and when the machine or the file could not be read.
[[nodiscard]] int runReport(const Arguments& arguments, CommandContext& context, const ReportKind& kind);

/// Says in one line when there are settings that could not be read: what they protect is then unknown.
void remarkUnreadSettings(CommandContext& context);

}  // namespace brindle
