#include "cli/setup_file.h"

#include <gtest/gtest.h>

#include <initializer_list>

#include "tests/base/store_support.h"
#include "tests/base/temporary_folder.h"

namespace brindle {
namespace {

namespace fs = std::filesystem;

/// A file to which a line "ours" is added at the end.
struct SetupFileTest : testing::Test {
  EditedText add(std::string_view text) const {
    EditedText edited{.text = std::string(text)};
    if (text == "bad\n") edited.problem = "not readable";
    if (edited.problem.empty() && !text.ends_with("ours\n")) edited.text += "ours\n";
    return edited;
  }
  EditedText remove(const SettingsEdit::Texts& texts) const {
    EditedText edited{.text = std::string(texts.text)};
    const std::size_t at = edited.text.rfind("ours\n");
    if (at == std::string::npos) return edited;
    edited.text.erase(at, 5);
    // As an edit that cannot tell a blank it found from one it made.
    if (edited.text.ends_with(" \n")) edited.text.erase(edited.text.size() - 2, 1);
    return edited;
  }
  std::string apply() const { return carriedOut(plannedAddition(edit)); }
  std::string undo() const { return carriedOut(plannedRemoval(edit)); }

  TemporaryFolder folder;
  std::string path = folder.file("settings");
  SettingsEdit edit{.path = path,
                    .fresh = "",
                    .add = [this](std::string_view text) { return add(text); },
                    .remove = [this](const SettingsEdit::Texts& texts) { return remove(texts); }};
};

TEST_F(SetupFileTest, KeepsACopyOfTheOriginalUntilItIsBack) {
  writeRaw(path, "theirs \n");
  EXPECT_EQ(apply(), "");
  EXPECT_EQ(contentOf(path), "theirs \nours\n");
  EXPECT_EQ(contentOf(backupPath(path)), "theirs \n");
  EXPECT_EQ(undo(), "");
  EXPECT_EQ(contentOf(path), "theirs \n");
  EXPECT_EQ(folder.entries(), 1u);
}

TEST_F(SetupFileTest, ChangesNothingTheSecondTime) {
  writeRaw(path, "theirs\n");
  ASSERT_EQ(apply(), "");
  EXPECT_FALSE(plannedAddition(edit).changes());
  EXPECT_EQ(contentOf(backupPath(path)), "theirs\n");
}

TEST_F(SetupFileTest, MakesAFileThatIsMissingAndRemovesItAgain) {
  edit.path = path = folder.file("a/b/settings");
  EXPECT_EQ(apply(), "");
  EXPECT_EQ(contentOf(path), "ours\n");
  EXPECT_EQ(modeOf(path), 0600);
  EXPECT_EQ(modeOf(folder.file("a/b")), 0700);
  EXPECT_FALSE(fs::exists(backupPath(path)));
  EXPECT_EQ(undo(), "");
  EXPECT_FALSE(fs::exists(path));
}

TEST_F(SetupFileTest, GivesAnEmptyFileBackAsAnEmptyFile) {
  writeRaw(path, "");
  ASSERT_EQ(apply(), "");
  EXPECT_EQ(undo(), "");
  EXPECT_TRUE(fs::exists(path));
  EXPECT_EQ(contentOf(path), "");
}

TEST_F(SetupFileTest, KeepsWhatOthersHaveChangedSince) {
  writeRaw(path, "theirs\n");
  ASSERT_EQ(apply(), "");
  writeRaw(path, "theirs\nmore\nours\n");
  EXPECT_EQ(undo(), "");
  EXPECT_EQ(contentOf(path), "theirs\nmore\n");
  EXPECT_EQ(contentOf(backupPath(path)), "theirs\n") << "a copy that was not needed stays";
}

TEST_F(SetupFileTest, RenewsTheCopyWhenNothingOfOursIsLeft) {
  writeRaw(path, "first\n");
  ASSERT_EQ(apply(), "");
  writeRaw(path, "second\n");
  ASSERT_EQ(apply(), "");
  EXPECT_EQ(contentOf(backupPath(path)), "second\n");
}

TEST_F(SetupFileTest, WritesThroughALinkAndKeepsIt) {
  fs::create_directory(folder.file("dotfiles"));
  writeRaw(folder.file("dotfiles/settings"), "theirs\n");
  fs::create_symlink("dotfiles/settings", path);
  EXPECT_EQ(apply(), "");
  EXPECT_EQ(fs::read_symlink(path), "dotfiles/settings");
  EXPECT_EQ(contentOf(folder.file("dotfiles/settings")), "theirs\nours\n");
  EXPECT_EQ(undo(), "");
  EXPECT_TRUE(fs::is_symlink(path));
  EXPECT_EQ(contentOf(path), "theirs\n");
}

TEST_F(SetupFileTest, LeavesALinkToNothingAlone) {
  fs::create_symlink("nowhere", path);
  EXPECT_EQ(plannedAddition(edit).problem, "a link to nothing");
  EXPECT_EQ(apply(), "");
  EXPECT_TRUE(fs::is_symlink(path));
  EXPECT_EQ(folder.entries(), 1u);
}

TEST_F(SetupFileTest, KeepsPermissions) {
  for (const mode_t mode : std::initializer_list<mode_t>{0644, 0600, 0640}) {
    writeRaw(path, "theirs\n");
    ASSERT_EQ(::chmod(path.c_str(), mode), 0);
    ASSERT_EQ(apply(), "");
    EXPECT_EQ(modeOf(path), static_cast<int>(mode));
    ASSERT_EQ(undo(), "");
    EXPECT_EQ(modeOf(path), static_cast<int>(mode));
  }
}

TEST_F(SetupFileTest, KeepsTheOwnerWhenRootEdits) {
  if (::geteuid() != 0) GTEST_SKIP() << "this needs a second user";
  writeRaw(path, "theirs\n");
  giveToPlainUser(path);
  ASSERT_EQ(apply(), "");
  struct stat status {};
  ASSERT_EQ(::stat(path.c_str(), &status), 0);
  EXPECT_EQ(status.st_uid, kPlainUser);
  ASSERT_EQ(::stat(backupPath(path).c_str(), &status), 0);
  EXPECT_EQ(status.st_uid, kPlainUser);
  EXPECT_EQ(modeOf(backupPath(path)), 0600);
}

TEST_F(SetupFileTest, GivesWhatRootMakesToTheOwnerOfTheFolder) {
  if (::geteuid() != 0) GTEST_SKIP() << "this needs a second user";
  giveToPlainUser(folder.path());
  edit.path = folder.file("new/deep/settings");
  ASSERT_EQ(apply(), "");
  for (const std::string& made : {folder.file("new"), folder.file("new/deep"), edit.path}) {
    struct stat status {};
    ASSERT_EQ(::stat(made.c_str(), &status), 0);
    EXPECT_EQ(status.st_uid, kPlainUser) << made;
  }
  EXPECT_EQ(modeOf(edit.path), 0600);
  EXPECT_EQ(modeOf(folder.file("new")), 0700);
  // So the user can take it away again.
  EXPECT_TRUE(asPlainUser([&] { return undo().empty(); }));
  EXPECT_FALSE(fs::exists(edit.path));
}

TEST_F(SetupFileTest, KeepsTheGroup) {
  if (::geteuid() != 0) GTEST_SKIP() << "this needs a second group";
  writeRaw(path, "theirs\n");
  ASSERT_EQ(::chown(path.c_str(), 0, kPlainUser), 0);
  ASSERT_EQ(::chmod(path.c_str(), 0640), 0);
  ASSERT_EQ(apply(), "");
  struct stat status {};
  ASSERT_EQ(::stat(path.c_str(), &status), 0);
  EXPECT_EQ(status.st_gid, kPlainUser);
  EXPECT_EQ(status.st_mode & 07777, 0640U);
}

TEST_F(SetupFileTest, LeavesAFileAloneThatCannotBeReadOrEdited) {
  writeRaw(path, "bad\n");
  EXPECT_EQ(plannedAddition(edit).problem, "not readable");
  EXPECT_EQ(apply(), "");
  EXPECT_EQ(contentOf(path), "bad\n");
  fs::remove(path);
  fs::create_directory(path);
  EXPECT_EQ(plannedAddition(edit).problem, "Is a directory");
  EXPECT_EQ(plannedRemoval(edit).problem, "Is a directory");
}

TEST_F(SetupFileTest, LeavesAFileAloneThatHasChangedSinceItWasRead) {
  writeRaw(path, "theirs\n");
  const SettingsChange change = plannedAddition(edit);
  writeRaw(path, "theirs, newer\n");
  EXPECT_EQ(carriedOut(change), "changed by another program in this moment; try again");
  EXPECT_EQ(contentOf(path), "theirs, newer\n");
  EXPECT_EQ(folder.entries(), 1u);
}

TEST_F(SetupFileTest, LeavesTheFileAsItWasWhenTheFolderTakesNoFiles) {
  writeRaw(path, "theirs\n");
  giveToPlainUser(path);
  giveToPlainUser(folder.path());
  ASSERT_EQ(::chmod(folder.path().c_str(), 0500), 0);
  EXPECT_TRUE(asPlainUser([&] { return !apply().empty() && contentOf(path) == "theirs\n"; }));
  ASSERT_EQ(::chmod(folder.path().c_str(), 0700), 0);
  EXPECT_EQ(folder.entries(), 1u);
}

TEST_F(SetupFileTest, RemovesNothingWhereThereIsNothing) {
  EXPECT_FALSE(plannedRemoval(edit).changes());
  writeRaw(path, "theirs\n");
  EXPECT_FALSE(plannedRemoval(edit).changes());
}

}  // namespace
}  // namespace brindle
