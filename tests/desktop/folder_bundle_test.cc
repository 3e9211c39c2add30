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

}  // namespace
}  // namespace marlune
