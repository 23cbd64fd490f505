// The rows of a report's document as JSON.
//
// Used by the encoders of the documents. Each row type brings its `encode`. Pure.
#pragma once

#include <vector>

#include "base/json_value.h"

namespace brindle {

template <typename Row>
[[nodiscard]] JsonArray encodeRows(const std::vector<Row>& rows) {
  JsonArray array;
  array.reserve(rows.size());
  for (const Row& row : rows) array.emplace_back(encode(row));
  return array;
}

}  // namespace brindle
