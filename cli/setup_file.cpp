#include "cli/setup_file.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

#include "base/file.h"
#include "base/json_reader.h"

namespace brindle {
namespace {

namespace fs = std::filesystem;

/// Where the file really lies, and its text; `text` is absent when there is none.
struct FoundFile {
  std::string target;
  std::optional<std::string> text;
  std::string problem;
};

FoundFile find(const std::string& path) {
  FoundFile found{.target = path};
  std::error_code error;
  const fs::path resolved = fs::canonical(path, error);
  if (error == std::errc::no_such_file_or_directory) {
    if (fs::is_symlink(fs::symlink_status(path, error))) found.problem = "a link to nothing";
    return found;
  }
  if (error) {
    found.problem = errorText(error.value());
    return found;
  }
  found.target = resolved.string();
  Result<std::string> text = readFile(found.target, kJsonByteLimit);
  if (text) {
    found.text = *std::move(text);
  } else {
    found.problem = errorText(text.error().code);
  }
  return found;
}

SettingsChange begun(const SettingsEdit& edit) {
  FoundFile found = find(edit.path);
  return {.path = edit.path,
          .target = std::move(found.target),
          .before = found.text,
          .after = found.text,
          .problem = std::move(found.problem)};
}

std::optional<std::string> backupOf(const std::string& path) {
  Result<std::string> text = readFile(backupPath(path), kJsonByteLimit);
  if (!text) return std::nullopt;
  return *std::move(text);
}

/// What there was before, when adding to it gives exactly what there is now: the copy, or no file.
struct Origin {
  std::optional<std::string> text;
};
std::optional<Origin> originOf(const SettingsEdit& edit, const std::string& now,
                               const std::optional<std::string>& backup) {
  const EditedText again = edit.add(backup ? *backup : edit.fresh);
  if (!again.problem.empty() || again.text != now || again.text == backup) return std::nullopt;
  return Origin{backup};
}

Outcome replaceKeepingRights(const SettingsChange& change) {
  struct stat status {};
  const bool known = ::stat(change.target.c_str(), &status) == 0;
  if (const Outcome written = replaceFile(change.target, *change.after); !written || !known) return written;
  // Root may edit a user's file; anybody else has the same owner before and after.
  if (status.st_uid != ::geteuid() && ::chown(change.target.c_str(), status.st_uid, status.st_gid) != 0) {
    return fail(errno, "give back " + change.target);
  }
  if (::chmod(change.target.c_str(), status.st_mode & 07777) != 0) return fail(errno, "chmod " + change.target);
  return {};
}

Outcome keepBackup(const SettingsChange& change) {
  if (!change.firstTouch) return {};
  const std::string path = backupPath(change.path);
  return change.before ? replaceFile(path, *change.before) : removeFile(path);
}

}  // namespace

std::string backupPath(const std::string& path) { return path + ".brindle-backup"; }

SettingsChange plannedAddition(const SettingsEdit& edit) {
  SettingsChange change = begun(edit);
  if (!change.problem.empty()) return change;
  const std::string text = change.before.value_or(edit.fresh);
  EditedText edited = edit.add(text);
  change.problem = std::move(edited.problem);
  change.declined = std::move(edited.declined);
  if (!change.problem.empty() || edited.text == text) return change;
  change.after = std::move(edited.text);
  change.firstTouch = edit.remove({.text = text, .before = {}}).text == text;
  return change;
}

SettingsChange plannedRemoval(const SettingsEdit& edit) {
  SettingsChange change = begun(edit);
  if (!change.problem.empty() || !change.before) return change;
  const auto backup = backupOf(edit.path);
  EditedText edited = edit.remove({.text = *change.before, .before = backup ? *backup : std::string_view()});
  change.problem = std::move(edited.problem);
  change.declined = std::move(edited.declined);
  if (!change.problem.empty() || edited.text == *change.before) return change;
  // Without a copy the file was not there before.
  const bool wasMissing = !backup && edited.text == edit.fresh;
  change.after.reset();
  if (!wasMissing) change.after = std::move(edited.text);
  if (const auto origin = originOf(edit, *change.before, backup)) change.after = origin->text;
  change.restores = change.after == backup;
  return change;
}

std::string carriedOut(const SettingsChange& change) {
  if (!change.changes()) return {};
  if (find(change.path).text != change.before) return "changed by another program in this moment; try again";
  const std::string folder = fs::path(change.target).parent_path().string();
  std::error_code unknown;
  if (!change.before && !fs::is_directory(folder, unknown)) {
    if (const Outcome made = ensureFolder(folder); !made) return made.error().message();
  }
  if (const Outcome kept = keepBackup(change); !kept) return kept.error().message();
  const Outcome done = change.after ? replaceKeepingRights(change) : removeFile(change.target);
  if (!done) return done.error().message();
  if (!change.restores) return {};
  const Outcome cleaned = removeFile(backupPath(change.path));
  return cleaned ? std::string() : cleaned.error().message();
}

}  // namespace brindle
