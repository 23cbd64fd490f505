// Rows of text in aligned columns, as the reports show them.
//
// Used by the reports. Cells may come from any process: they are cleaned so that they cannot steer the terminal, and
// measured by the columns that their characters take. Pure.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace brindle {

class TextTable {
 public:
  enum class Align { left, right };
  struct Column {
    std::string heading;
    Align align = Align::left;
    /// Cells are cut to this many columns with "…" at the end, and to fewer where a line would not fit; 0 is never.
    std::size_t widest = 0;
  };

  explicit TextTable(std::vector<Column> columns) : columns_(std::move(columns)) {}

  /// Precondition: one cell for each column.
  void add(std::vector<std::string> cells);
  [[nodiscard]] bool empty() const { return rows_.empty(); }

  /// Heading and rows, two blanks between columns, no blanks at the ends of lines; each line with its end. Columns
  /// without a single filled cell are left out. Lines fit into `room` terminal columns as far as the cells may be cut:
  /// the widest first, none below its heading and kNarrowest. The last column may have what is left over. No room is
  /// no limit.
  [[nodiscard]] std::string text(std::size_t room = 0) const;

  static constexpr std::size_t kNarrowest = 8;

 private:
  [[nodiscard]] std::vector<std::size_t> widthsIn(std::size_t room) const;

  std::vector<Column> columns_;
  std::vector<std::vector<std::string>> rows_;
};

/// The terminal columns that `text` takes, which holds no control characters.
[[nodiscard]] std::size_t shownWidth(std::string_view text);

/// `text` cut to `columns` columns at most, the last one "…" when something was cut.
[[nodiscard]] std::string fitted(std::string_view text, std::size_t columns);

}  // namespace brindle
