#include "cli/line_diff.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace brindle {
namespace {

using Lines = std::vector<std::string_view>;

/// The table of the common lines has at most this many cells.
constexpr std::size_t kTableLimit = std::size_t{4} << 20;

/// With their line ends, so that a missing one at the end of the text is a difference.
Lines linesOf(std::string_view text) {
  Lines lines;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size() - 1) + 1;
    lines.push_back(text.substr(0, end));
    text.remove_prefix(end);
  }
  return lines;
}

/// One line of the way from the old text to the new one: ' ', '-' or '+'.
struct Step {
  char kind;
  std::string_view line;
};

/// The steps over two runs of lines, through a longest common subsequence.
void addSteps(const Lines& before, const Lines& after, std::vector<Step>& steps) {
  const std::size_t width = after.size() + 1;
  if ((before.size() + 1) * width > kTableLimit) {
    for (const auto line : before) steps.push_back({'-', line});
    for (const auto line : after) steps.push_back({'+', line});
    return;
  }
  std::vector<std::uint32_t> common((before.size() + 1) * width);
  for (std::size_t row = before.size(); row-- > 0;) {
    for (std::size_t column = after.size(); column-- > 0;) {
      common[row * width + column] =
          before[row] == after[column] ? common[(row + 1) * width + column + 1] + 1
                                       : std::max(common[(row + 1) * width + column], common[row * width + column + 1]);
    }
  }
  std::size_t row = 0;
  std::size_t column = 0;
  while (row < before.size() || column < after.size()) {
    if (row < before.size() && column < after.size() && before[row] == after[column]) {
      steps.push_back({' ', before[row++]});
      ++column;
    } else if (row < before.size() &&
               (column == after.size() || common[(row + 1) * width + column] >= common[row * width + column + 1])) {
      steps.push_back({'-', before[row++]});
    } else {
      steps.push_back({'+', after[column++]});
    }
  }
}

std::vector<Step> stepsBetween(const Lines& before, const Lines& after) {
  const auto [differs, ignored] = std::mismatch(before.begin(), before.end(), after.begin(), after.end());
  const auto head = static_cast<std::size_t>(differs - before.begin());
  std::size_t tail = 0;
  while (tail < std::min(before.size(), after.size()) - head &&
         before[before.size() - 1 - tail] == after[after.size() - 1 - tail]) {
    ++tail;
  }
  const auto middle = [&](const Lines& lines) {
    return Lines(lines.begin() + static_cast<std::ptrdiff_t>(head), lines.end() - static_cast<std::ptrdiff_t>(tail));
  };
  std::vector<Step> steps;
  for (std::size_t at = 0; at < head; ++at) steps.push_back({' ', before[at]});
  addSteps(middle(before), middle(after), steps);
  for (std::size_t at = before.size() - tail; at < before.size(); ++at) steps.push_back({' ', before[at]});
  return steps;
}

struct Range {
  std::size_t begin;
  std::size_t end;
};

/// The steps that are shown, changes with their context, joined where they meet.
std::vector<Range> hunksOf(const std::vector<Step>& steps) {
  std::vector<Range> hunks;
  for (std::size_t at = 0; at < steps.size(); ++at) {
    if (steps[at].kind == ' ') continue;
    const std::size_t begin = at < kDiffContext ? 0 : at - kDiffContext;
    const std::size_t end = std::min(at + kDiffContext + 1, steps.size());
    if (!hunks.empty() && begin <= hunks.back().end) {
      hunks.back().end = end;
    } else {
      hunks.push_back({begin, end});
    }
  }
  return hunks;
}

/// "START,COUNT" of one side; a side of no lines starts at the line before it.
std::string place(std::size_t linesBefore, std::size_t count) {
  return std::to_string(count == 0 ? linesBefore : linesBefore + 1) + "," + std::to_string(count);
}

}  // namespace

std::string lineDiff(const DiffTexts& texts) {
  if (texts.before == texts.after) return {};
  const std::vector<Step> steps = stepsBetween(linesOf(texts.before), linesOf(texts.after));
  std::string diff = "--- " + std::string(texts.beforeName) + "\n+++ " + std::string(texts.afterName) + "\n";
  std::size_t oldLine = 0;
  std::size_t newLine = 0;
  std::size_t at = 0;
  const auto isOld = [](const Step& step) { return step.kind != '+'; };
  const auto isNew = [](const Step& step) { return step.kind != '-'; };
  for (const Range& hunk : hunksOf(steps)) {
    for (; at < hunk.begin; ++at, ++oldLine, ++newLine) {
    }
    const auto first = steps.begin() + static_cast<std::ptrdiff_t>(hunk.begin);
    const auto last = steps.begin() + static_cast<std::ptrdiff_t>(hunk.end);
    const auto oldCount = static_cast<std::size_t>(std::count_if(first, last, isOld));
    const auto newCount = static_cast<std::size_t>(std::count_if(first, last, isNew));
    diff += "@@ -" + place(oldLine, oldCount) + " +" + place(newLine, newCount) + " @@\n";
    for (; at < hunk.end; ++at) {
      diff += steps[at].kind;
      diff += steps[at].line;
      if (!steps[at].line.ends_with('\n')) diff += "\n\\ No newline at end of file\n";
    }
    oldLine += oldCount;
    newLine += newCount;
  }
  return diff;
}

}  // namespace brindle
