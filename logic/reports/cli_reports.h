// Turns the snapshot model into the documents of the reports, and the documents into JSON text.
//
// Called by the reports of the command line and by the MCP tools' host. Pure; linear but for sorting. Of processes
// with one pid the first counts.
#pragma once

#include <string>

#include "base/date.h"
#include "logic/reports/report_documents.h"
#include "logic/reports/report_snapshot.h"

namespace brindle::CLIReports {

/// Ghosts are the processes left behind, dev servers the user's processes of that kind that have no role, whether
/// inside a session or not. Memory and ports are those of ghosts, dev servers, session roots and their children.
[[nodiscard]] StatusDocument status(const ReportSnapshot& snapshot);

/// One row for each port of each process of any user, by port and then pid.
[[nodiscard]] PortsDocument ports(const ReportSnapshot& snapshot);

/// Sessions and processes left behind in the snapshot's order. Uptimes are truncated toward zero; see wholeSeconds.
[[nodiscard]] AgentsDocument agents(const ReportSnapshot& snapshot, Date now);

/// What was left behind, and what perhaps was, in their order.
[[nodiscard]] GhostsDocument ghosts(const ReportSnapshot& snapshot, const std::vector<LeftBehind>& likely);

/// Pretty-printed, keys sorted, slashes as they are; no line end after it. Texts that are not valid UTF-8 must have
/// been cleaned by the host.
[[nodiscard]] std::string jsonText(const StatusDocument& document);
[[nodiscard]] std::string jsonText(const PortsDocument& document);
[[nodiscard]] std::string jsonText(const AgentsDocument& document);
[[nodiscard]] std::string jsonText(const IdleDocument& document);
[[nodiscard]] std::string jsonText(const GhostsDocument& document);

}  // namespace brindle::CLIReports
