// Reads the recorded process tables of tests/data/inventory.
#pragma once

#include <fstream>
#include <string>
#include <vector>

#include "inventory/process_facts.h"

namespace brindle::testing {

struct RecordedRow {
  ProcessFacts facts;
  std::string expected;
};

inline std::vector<std::string> split(const std::string& text, const std::string& separator) {
  std::vector<std::string> parts;
  std::size_t at = 0;
  for (std::size_t end = text.find(separator); end != std::string::npos; end = text.find(separator, at)) {
    parts.push_back(text.substr(at, end - at));
    at = end + separator.size();
  }
  parts.push_back(text.substr(at));
  return parts;
}

inline std::vector<RecordedRow> readRecordedTable(const std::string& name) {
  std::vector<RecordedRow> rows;
  std::ifstream file(std::string(BRINDLE_TEST_DATA_DIR) + "/inventory/" + name);
  for (std::string line; std::getline(file, line);) {
    if (line.empty() || line.front() == '#') continue;
    const std::vector<std::string> columns = split(line, "\t");
    if (columns.size() < 6) continue;
    RecordedRow row;
    row.facts.pid = std::stoi(columns[0]);
    row.facts.ppid = std::stoi(columns[1]);
    row.facts.name = columns[2];
    row.facts.path = columns[3];
    row.facts.arguments = split(columns[4], " | ");
    row.expected = columns[5];
    if (columns.size() > 6 && !columns[6].empty()) row.facts.ports = {std::stoi(columns[6])};
    rows.push_back(std::move(row));
  }
  return rows;
}

/// The process of `pid` and its ancestors within the table, itself first.
inline std::vector<ProcessFacts> chainOf(const std::vector<RecordedRow>& rows, std::int32_t pid) {
  std::vector<ProcessFacts> chain;
  for (bool found = true; found && chain.size() < rows.size();) {
    found = false;
    for (const RecordedRow& row : rows) {
      if (row.facts.pid != pid) continue;
      chain.push_back(row.facts);
      pid = row.facts.ppid;
      found = true;
      break;
    }
  }
  return chain;
}

}  // namespace brindle::testing
