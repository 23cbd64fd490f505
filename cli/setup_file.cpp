#include "cli/setup_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <vector>

#include "base/descriptor.h"
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

/// Whose a file or folder is, and who may use it.
struct Rights {
  uid_t user;
  gid_t group;
  mode_t mode;
};

/// Those of the file; of one that is missing, what suits the owner of the nearest folder that is there.
Rights rightsFor(const std::string& file) {
  struct stat status {};
  if (::stat(file.c_str(), &status) == 0)
    return {status.st_uid, status.st_gid, static_cast<mode_t>(status.st_mode & 07777)};
  fs::path folder = fs::path(file).parent_path();
  while (::stat(folder.c_str(), &status) != 0 && folder.has_relative_path()) folder = folder.parent_path();
  return {status.st_uid, status.st_gid, 0600};
}

/// Gives what this process has just made to whom it belongs: root may edit a user's settings, and the user's agent must
/// be able to read them. By descriptor, and only what is still ours: the folder is the user's, who could put a link to
/// anything in its place.
Outcome giveRights(const std::string& path, const Rights& rights) {
  const Descriptor file(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK));
  struct stat status {};
  if (!file || ::fstat(file.get(), &status) != 0) return fail(errno, "give back " + path);
  const bool foreign = rights.user != status.st_uid;
  if (foreign && status.st_uid != ::geteuid()) return fail(EPERM, "give back " + path);
  if (foreign || rights.group != status.st_gid) {
    // Somebody who is no longer of the file's group cannot keep it, and loses nothing of their own.
    if (::fchown(file.get(), rights.user, rights.group) != 0 && foreign) return fail(errno, "give back " + path);
  }
  if (::fchmod(file.get(), rights.mode) != 0) return fail(errno, "chmod " + path);
  return {};
}

Outcome replaceWithRights(const std::string& path, const std::string& text, const Rights& rights) {
  if (const Outcome written = replaceFile(path, text); !written) return written;
  return giveRights(path, rights);
}

Outcome makeFolders(const std::string& folder, const Rights& owner) {
  std::vector<std::string> missing;
  struct stat status {};
  for (fs::path each = folder; each.has_relative_path() && ::stat(each.c_str(), &status) != 0;) {
    missing.push_back(each.string());
    each = each.parent_path();
  }
  if (missing.empty()) return {};
  if (const Outcome made = ensureFolder(folder); !made) return made;
  for (const std::string& each : missing) {
    if (const Outcome given = giveRights(each, {owner.user, owner.group, 0700}); !given) return given;
  }
  return {};
}

Outcome keepBackup(const SettingsChange& change, const Rights& owner) {
  if (!change.firstTouch) return {};
  const std::string path = backupPath(change.path);
  if (!change.before) return removeFile(path);
  return replaceWithRights(path, *change.before, {owner.user, owner.group, 0600});
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
  const Rights rights = rightsFor(change.target);
  const std::string folder = fs::path(change.target).parent_path().string();
  if (const Outcome made = makeFolders(folder, rights); !made) return made.error().message();
  if (const Outcome kept = keepBackup(change, rights); !kept) return kept.error().message();
  const Outcome done =
      change.after ? replaceWithRights(change.target, *change.after, rights) : removeFile(change.target);
  if (!done) return done.error().message();
  if (!change.restores) return {};
  const Outcome cleaned = removeFile(backupPath(change.path));
  return cleaned ? std::string() : cleaned.error().message();
}

}  // namespace brindle
