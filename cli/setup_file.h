// One settings file of an agent: read through links, changed in one step, with a copy of what it was before.
//
// Used by `brindle setup`. The truth is the file; the copy beside it ("….brindle-backup") is made when something of
// ours is first added and goes when the file is again what it was. One thread; another program may write at any time.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/setup_edit.h"

namespace brindle {

/// What is added to a file and how it is taken away again.
struct SettingsEdit {
  std::string path;
  /// What a file that is missing is taken for.
  std::string fresh;
  std::function<EditedText(std::string_view text)> add;
  /// `before` is the text from before the addition; empty when it is not known.
  struct Texts {
    std::string_view text;
    std::string_view before;
  };
  std::function<EditedText(const Texts&)> remove;
};

/// What is to become of a file.
struct SettingsChange {
  /// As the agent names it, and where it really lies.
  std::string path;
  std::string target;
  /// Absent when there is no file.
  std::optional<std::string> before;
  std::optional<std::string> after;
  /// Whether `before` has nothing of ours, so that it is what the copy keeps.
  bool firstTouch = false;
  /// Whether `after` is what there was before the first touch, so that the copy has served.
  bool restores = false;
  std::vector<std::string> declined;
  /// Why the file is left alone, one line; empty when it is not.
  std::string problem;

  [[nodiscard]] bool changes() const { return problem.empty() && before != after; }
};

[[nodiscard]] std::string backupPath(const std::string& path);

/// Both read and change nothing. Taking away what was added gives back the very bytes from before (or no file), when
/// nothing else has been changed since.
[[nodiscard]] SettingsChange plannedAddition(const SettingsEdit& edit);
[[nodiscard]] SettingsChange plannedRemoval(const SettingsEdit& edit);

/// Does it: the copy first, then the file, whose owner and permissions stay; missing folders are made. What is new
/// belongs to the owner of the folder that it lies in, also when root edits. Answers what
/// went wrong, one line, with the file as it was; empty when nothing did. A file that has been changed since it was
/// read is left alone.
[[nodiscard]] std::string carriedOut(const SettingsChange& change);

}  // namespace brindle
