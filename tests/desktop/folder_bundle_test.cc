#include "marlune/desktop/services/folder_bundle.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include "support/temporary_directory.h"

namespace marlune {
namespace {

namespace fs = std::filesystem;

TEST(FolderBundleTest, ItsResourcesAreRegularFilesAndLinksToSuch) {
  const TemporaryDirectory folder;
  fs::create_directories(folder.path("voice/folder.aif"));
  folder.write("voice/two.aif", "");
  folder.write("voice/one.aif", "");
  folder.write("voice/one.aiff", "");
  fs::create_symlink("two.aif", folder.path("voice/link.aif"));
  fs::create_symlink("none.aif", folder.path("voice/dangling.aif"));
  ASSERT_EQ(::mkfifo(folder.path("voice/pipe.aif").c_str(), 0600), 0);
  const std::vector<std::string> expected = {
      folder.path("voice/link.aif"), folder.path("voice/one.aif"), folder.path("voice/two.aif")};
  const FolderBundle bundle(folder.path());
  EXPECT_EQ(bundle.pathsForResourcesOfType("aif", "voice"), expected);
  EXPECT_EQ(FolderBundle(folder.path("voice")).pathsForResourcesOfType("aif", ""), expected);
  EXPECT_TRUE(bundle.pathsForResourcesOfType("aif", "none").empty());
  for (const std::string name : {"link", "one", "two"}) {
    EXPECT_EQ(bundle.pathForResource(name, "aif", "voice"), folder.path("voice/" + name + ".aif"));
  }
  for (const std::string name : {"folder", "dangling", "pipe", "none", "../voice/one"}) {
    EXPECT_EQ(bundle.pathForResource(name, "aif", "voice"), std::nullopt) << name;
  }
}

struct FormCase {
  std::string_view why, onDisk, reported;
};
constexpr FormCase kFormCases[] = {
    {"composed", "z\u0142\u00F3ty", "z\u0142\u00F3ty"},
    {"decomposed", "za\u0301", "z\u00E1"},
    {"neither", "\u017Co\u0301w", "\u017C\u00F3w"},
    {"equivalent to plain text", "5_\u212A", "5_K"},
    {"invalid, as it is", "e\u0301\xFF", "e\u0301\xFF"},
};

TEST(FolderBundleTest, NamesAreReportedInNormalFormCAndFoundInAnyForm) {
  for (const FormCase& c : kFormCases) {
    SCOPED_TRACE(c.why);
    const TemporaryDirectory folder;
    const std::string path = folder.path(std::string(c.onDisk) + ".aif");
    folder.write(std::string(c.onDisk) + ".aif", "");
    const FolderBundle bundle(folder.path());
    EXPECT_EQ(bundle.pathsForResourcesOfType("aif", ""),
              std::vector{folder.path(std::string(c.reported) + ".aif")});
    EXPECT_EQ(bundle.pathForResource(c.reported, "aif", ""), path);
    EXPECT_EQ(bundle.pathForResource(c.onDisk, "aif", ""), path);
  }
}

TEST(FolderBundleTest, OfTwoFormsOfANameTheExactOneIsFound) {
  const TemporaryDirectory folder;
  folder.write("z\u00E1.aif", "");
  folder.write("za\u0301.aif", "");
  fs::create_directories(folder.path("e\u0301.aif"));
  const FolderBundle bundle(folder.path());
  EXPECT_EQ(bundle.pathsForResourcesOfType("aif", ""), std::vector{folder.path("z\u00E1.aif")});
  for (const std::string name : {"z\u00E1", "za\u0301"}) {
    EXPECT_EQ(bundle.pathForResource(name, "aif", ""), folder.path(name + ".aif"));
  }
  EXPECT_EQ(bundle.pathForResource("\u00E9", "aif", ""), std::nullopt);
}

}  // namespace
}  // namespace marlune
