#include "inventory/project_name.h"

#include <gtest/gtest.h>

#include <map>

namespace brindle {
namespace {

using Files = std::map<std::string, std::string>;

struct Tree {
  Files files;
  int reads = 0;

  ProjectFinder finder(std::string home = "/home/ana") {
    return ProjectFinder(std::move(home), [this](const std::string& path) -> std::optional<std::string> {
      ++reads;
      const auto found = files.find(path);
      return found == files.end() ? std::nullopt : std::optional(found->second);
    });
  }
};

TEST(ProjectFinder, TakesTheNearestFolderWithAManifest) {
  Tree tree{{{"/home/ana/shop/package.json", R"({"name": "shop"})"}, {"/home/ana/shop/api/go.mod", "module x/api\n"}}};
  ProjectFinder finder = tree.finder();
  EXPECT_EQ(finder.projectOf("/home/ana/shop/api/cmd"), "api");
  EXPECT_EQ(finder.projectOf("/home/ana/shop/web/src"), "shop");
}

TEST(ProjectFinder, StopsAtTheHomeFolderAndTheRoot) {
  Tree tree{
      {{"/home/ana/.git", ""}, {"/home/package.json", "{\"name\":\"no\"}"}, {"//package.json", "{}"}, {"/.git", ""}}};
  ProjectFinder finder = tree.finder();
  EXPECT_EQ(finder.projectOf("/home/ana/notes"), std::nullopt);
  EXPECT_EQ(finder.projectOf("/home/ana"), std::nullopt);
  EXPECT_EQ(finder.projectOf("/home"), std::nullopt);
  EXPECT_EQ(finder.projectOf("/srv"), std::nullopt);
  EXPECT_EQ(finder.projectOf("/"), std::nullopt);
}

TEST(ProjectFinder, AManifestWithoutNameGivesTheFoldersName) {
  Tree tree{{{"/srv/shop/package.json", "{}"},
             {"/srv/two/.git", ""},
             {"/srv/three/Cargo.toml", "[workspace]\n"},
             {"/srv/four/package.json", "not json"},
             {"/srv/five/package.json", R"({"name": "  "})"}}};
  ProjectFinder finder = tree.finder();
  EXPECT_EQ(finder.projectOf("/srv/shop"), "shop");
  EXPECT_EQ(finder.projectOf("/srv/two"), "two");
  EXPECT_EQ(finder.projectOf("/srv/three"), "three");
  EXPECT_EQ(finder.projectOf("/srv/four"), "four");
  EXPECT_EQ(finder.projectOf("/srv/five"), "five");
}

TEST(ProjectFinder, AsksAFoldersManifestsInTheirOrder) {
  Tree tree{
      {{"/srv/a/.git", ""}, {"/srv/a/pyproject.toml", "[project]\nname = \"py\"\n"}, {"/srv/a/go.mod", "module go\n"}}};
  EXPECT_EQ(tree.finder().projectOf("/srv/a"), "py");
}

TEST(ProjectFinder, AsksEachFolderOnce) {
  Tree tree{{{"/srv/shop/package.json", R"({"name": "shop"})"}}};
  ProjectFinder finder = tree.finder();
  EXPECT_EQ(finder.projectOf("/srv/shop/a/b"), "shop");
  const int reads = tree.reads;
  EXPECT_EQ(finder.projectOf("/srv/shop/a/b"), "shop");
  EXPECT_EQ(finder.projectOf("/srv/shop/a"), "shop");
  EXPECT_EQ(tree.reads, reads);
}

TEST(ProjectFinder, LooksAtTheStatedNumberOfFolders) {
  const auto found = [](int depth) {
    Tree tree{{{"/p/package.json", R"({"name": "deep"})"}}};
    std::string folder = "/p";
    for (int each = 1; each < depth; ++each) folder += "/d";
    return tree.finder().projectOf(folder).has_value();
  };
  EXPECT_TRUE(found(kProjectDepthLimit - 1));
  EXPECT_TRUE(found(kProjectDepthLimit));
  EXPECT_FALSE(found(kProjectDepthLimit + 1));
}

TEST(ProjectFinder, PathsThatAreNotAbsoluteHaveNoProject) {
  Tree tree{{{"shop/package.json", R"({"name": "shop"})"}}};
  EXPECT_EQ(tree.finder().projectOf("shop"), std::nullopt);
  EXPECT_EQ(tree.finder().projectOf(""), std::nullopt);
  EXPECT_EQ(tree.finder("").projectOf("(unreachable)/x"), std::nullopt);
}

TEST(ProjectName, ComesFromEachKindOfManifest) {
  EXPECT_EQ(projectNameFrom(Manifest::packageJson, R"({"version": 1, "name": "@acme/shop"})"), "@acme/shop");
  EXPECT_EQ(projectNameFrom(Manifest::cargoToml, "[package]\nname = \"engine\"\nversion = \"1.0.0\"\n"), "engine");
  EXPECT_EQ(projectNameFrom(Manifest::pyprojectToml, "[project]\nname = 'tool'\n"), "tool");
  EXPECT_EQ(projectNameFrom(Manifest::pyprojectToml, "[tool.poetry]\nname = \"old\"\n"), "old");
  EXPECT_EQ(projectNameFrom(Manifest::goMod, "// c\nmodule example.com/shop/api // main\n\ngo 1.22\n"), "api");
  EXPECT_EQ(projectNameFrom(Manifest::goMod, "module example.com/shop/v2\n"), "shop");
  EXPECT_EQ(projectNameFrom(Manifest::goMod, "module \"x/y\"\n"), "y");
  EXPECT_EQ(projectNameFrom(Manifest::git, "name"), std::nullopt);
}

TEST(ProjectName, DamagedManifestsGiveNone) {
  EXPECT_EQ(projectNameFrom(Manifest::packageJson, "[1]"), std::nullopt);
  EXPECT_EQ(projectNameFrom(Manifest::packageJson, R"({"name": 7})"), std::nullopt);
  EXPECT_EQ(projectNameFrom(Manifest::cargoToml, "[package\nname="), std::nullopt);
  EXPECT_EQ(projectNameFrom(Manifest::cargoToml, "[package]\nname = 3\n"), std::nullopt);
  EXPECT_EQ(projectNameFrom(Manifest::cargoToml, "name = \"x\"\n"), std::nullopt);
  EXPECT_EQ(projectNameFrom(Manifest::cargoToml, "a = " + std::string(100000, '[')), std::nullopt);
  EXPECT_EQ(projectNameFrom(Manifest::goMod, "go 1.22\n"), std::nullopt);
  EXPECT_EQ(projectNameFrom(Manifest::goMod, "module \n"), std::nullopt);
}

TEST(Manifest, TextsRoundTrip) {
  for (const auto& row : allCases<Manifest>()) EXPECT_EQ(enumFrom<Manifest>(textOf(row.value)), row.value);
}

}  // namespace
}  // namespace brindle
