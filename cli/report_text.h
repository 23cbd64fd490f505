// The reports as text for people: tables for the lists, a line where there is nothing to list.
//
// Used by the report commands. Pure; nothing in it can steer a terminal but the colours that Output adds.
#pragma once

#include <string>
#include <vector>

#include "cli/output.h"
#include "inventory/host_snapshot.h"
#include "logic/reports/report_documents.h"

namespace brindle::ReportText {

/// Each ends with a line end.
[[nodiscard]] std::string status(const StatusDocument& document, const Output& output);
[[nodiscard]] std::string ports(const PortsDocument& document, const HostSnapshot& snapshot, const Output& output);
[[nodiscard]] std::string agents(const AgentsDocument& document, const HostSnapshot& snapshot, const Output& output);
[[nodiscard]] std::string idle(const IdleDocument& document, const Output& output);
[[nodiscard]] std::string ghosts(const GhostsDocument& document, const Output& output);

/// What could not be seen, for the remarks; empty when everything was.
[[nodiscard]] std::string unseen(const HostSnapshot& snapshot);

/// "1 process", "2 processes".
[[nodiscard]] std::string counted(std::size_t count, std::string_view one, std::string_view several);

/// "3000, 5173".
[[nodiscard]] std::string portList(const std::vector<int>& ports);

}  // namespace brindle::ReportText
