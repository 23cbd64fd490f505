// The one line for people in the status document.
#pragma once

#include <string>

#include "logic/reports/report_documents.h"

namespace brindle {

/// What is there and what it holds, from the document's other fields: "2 ghosts, 1 dev server and 3 agent sessions
/// hold 1.50 GB and ports 3000, 5173.". What is not there is not named; "All clear." without any of the three.
[[nodiscard]] std::string statusSummary(const StatusDocument& document);

}  // namespace brindle
