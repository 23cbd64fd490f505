// Reads the rows of one file of reference outputs, through the reader under test.
#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

#include "base/json_reader.h"
#include "base/json_record.h"

namespace brindle {

/// The objects of the file's array. Fails the test, and answers none, when there is no such file.
inline std::vector<JsonObject> goldenRows(const std::string& name) {
  std::ifstream stream(std::string(BRINDLE_TEST_DATA_DIR) + "/foundation/" + name, std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
  const auto document = parseJson(text);
  std::vector<JsonObject> rows;
  if (!document || document->array() == nullptr) {
    ADD_FAILURE() << name << " cannot be read";
    return rows;
  }
  for (const JsonValue& row : *document->array()) rows.push_back(*row.object());
  EXPECT_FALSE(rows.empty()) << name;
  return rows;
}

inline std::string textIn(const JsonObject& row, std::string_view key) {
  const auto text = stringMember(row, key);
  if (!text) ADD_FAILURE() << "a row has no text " << key;
  return text.value_or("");
}

}  // namespace brindle
