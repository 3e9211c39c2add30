#include "marlune/desktop/services/file_preferences.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "fakes/fake_preferences.h"
#include "marlune/desktop/desktop_platform.h"
#include "marlune/desktop/plist/property_list_file.h"
#include "marlune/desktop/plist/xml_list_writer.h"
#include "support/list_read.h"
#include "support/platform_fixture.h"
#include "support/temporary_directory.h"

namespace marlune {
namespace {

namespace fs = std::filesystem;

class TemporaryFolder : public TemporaryDirectory {
 public:
  // The names in the folder, without hidden ones unless they begin with `hidden`.
  std::vector<std::string> names(std::string_view hidden = "..") const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(path())) {
      const std::string name = entry.path().filename();
      if (name.front() != '.' || name.starts_with(hidden)) names.push_back(name);
    }
    std::sort(names.begin(), names.end());
    return names;
  }
};

// The contract of every implementation of Preferences, including the tests' fake.
class FreshFake {
 public:
  FakePreferences preferences;
};
class FreshFiles {
 private:
  TemporaryFolder _folder;

 public:
  FilePreferences preferences{_folder.path(), "org.example.own"};
};
template <typename Fresh>
class PreferencesContractTest : public testing::Test, protected Fresh {};
using Implementations = testing::Types<FreshFake, FreshFiles>;
TYPED_TEST_SUITE(PreferencesContractTest, Implementations);

TYPED_TEST(PreferencesContractTest, ValuesAreSeenAtOnceInTheirDomainOnly) {
  Preferences& preferences = this->preferences;
  EXPECT_TRUE(preferences.valueForKey("a", "").isAbsent());
  preferences.setValueForKey(Value::boolean(true), "a", "");
  preferences.setValueForKey(Value::string("b"), "b", "");
  preferences.setValueForKey(Value::integer(5), "a", "org.example.other");
  for (int round = 0; round < 2; ++round) {
    EXPECT_TRUE(preferences.valueForKey("a", "").equals(Value::boolean(true)));
    EXPECT_TRUE(preferences.valueForKey("b", "").equals(Value::string("b")));
    EXPECT_TRUE(preferences.valueForKey("b", "org.example.other").isAbsent());
    EXPECT_TRUE(preferences.synchronize(""));
  }
  preferences.setValueForKey(Value(), "a", "");
  EXPECT_TRUE(preferences.valueForKey("a", "").isAbsent());
  EXPECT_TRUE(preferences.synchronize(""));
  EXPECT_TRUE(preferences.valueForKey("a", "").isAbsent());
  EXPECT_TRUE(preferences.valueForKey("a", "org.example.other").equals(Value::integer(5)));
}

TYPED_TEST(PreferencesContractTest, TheChangeCountMovesWithEveryChange) {
  Preferences& preferences = this->preferences;
  const std::uint64_t before = preferences.changeCount();
  EXPECT_EQ(preferences.changeCount(), before);
  preferences.setValueForKey(Value::boolean(true), "a", "");
  const std::uint64_t after = preferences.changeCount();
  EXPECT_NE(after, before);
  preferences.setValueForKey(Value(), "a", "");
  EXPECT_NE(preferences.changeCount(), after);
}

class FilePreferencesTest : public PlatformFixture {
 protected:
  static constexpr std::string_view kDomain = "org.example.own";

  std::unique_ptr<FilePreferences> opened() const {
    return std::make_unique<FilePreferences>(folder.path(), std::string(kDomain));
  }
  std::string path() const { return folder.path("org.example.own.plist"); }
  Value stored(std::string_view key) const {
    const Value root = ListRead(PropertyListFile().readFile(path())).root;
    return root.asDictionary() ? root.asDictionary()->valueForKey(key) : Value();
  }
  void write(std::string_view content) const { std::ofstream(path()) << content; }

  TemporaryFolder folder;
};

TEST_F(FilePreferencesTest, ValuesOutliveTheObject) {
  {
    const auto first = opened();
    first->setValueForKey(Value::string("km"), "unit", "");
    EXPECT_TRUE(stored("unit").isAbsent());
    first->synchronize("");
    EXPECT_EQ(*stored("unit").asString(), "km");
    first->setValueForKey(Value::integer(3), "not synchronized", "");
  }
  const auto second = opened();
  EXPECT_EQ(*second->valueForKey("unit", "").asString(), "km");
  EXPECT_EQ(second->valueForKey("not synchronized", kDomain).int64(), 3);
  EXPECT_EQ(folder.names(), std::vector<std::string>{"org.example.own.plist"});
  EXPECT_EQ(fs::status(path()).permissions(), fs::perms(0600));
  EXPECT_TRUE(log->lines().empty());
}

TEST_F(FilePreferencesTest, WhatOthersWroteInBetweenIsKept) {
  const auto ours = opened(), theirs = opened();
  ours->setValueForKey(Value::integer(1), "both", "");
  ours->setValueForKey(Value::integer(1), "ours", "");
  ours->synchronize("");
  theirs->setValueForKey(Value::integer(2), "both", "");
  theirs->setValueForKey(Value::integer(2), "theirs", "");
  theirs->synchronize("");
  const std::uint64_t before = ours->changeCount();
  ours->setValueForKey(Value(), "ours", "");
  ours->synchronize("");
  EXPECT_EQ(stored("both").int64(), 2);
  EXPECT_EQ(stored("theirs").int64(), 2);
  EXPECT_TRUE(stored("ours").isAbsent());
  EXPECT_EQ(ours->valueForKey("both", "").int64(), 2);
  EXPECT_NE(ours->changeCount(), before);
}

TEST_F(FilePreferencesTest, ADamagedFileIsKeptBeforeItIsReplaced) {
  const auto preferences = opened();
  for (const std::string content : {"<plist><dict>", "<plist><true/></plist>"}) {
    write(content);
    EXPECT_FALSE(preferences->synchronize(""));  // no changes, so the file is not touched
    preferences->setValueForKey(Value::boolean(true), "a", "");
    EXPECT_TRUE(preferences->synchronize(""));
    EXPECT_TRUE(stored("a").booleanValue());
  }
  EXPECT_EQ(folder.names(),
            (std::vector<std::string>{"org.example.own.plist", "org.example.own.plist.damaged-1",
                                      "org.example.own.plist.damaged-2"}));
  std::string kept;
  std::getline(std::ifstream(path() + ".damaged-1"), kept);
  EXPECT_EQ(kept, "<plist><dict>");
  EXPECT_TRUE(log->contains("ERROR: Preferences: " + path() +
                            ": expected a dictionary, found a boolean (kept as " + path() +
                            ".damaged-2)"));
}

TEST_F(FilePreferencesTest, WhatCannotBeReadOrWrittenStaysAsItIs) {
  fs::create_directory(path());
  const auto preferences = opened();
  preferences->setValueForKey(Value::boolean(true), "a", "");
  EXPECT_FALSE(preferences->synchronize(""));
  EXPECT_TRUE(fs::is_directory(path()));
  EXPECT_TRUE(log->contains("ERROR: Preferences: cannot read " + path() +
                            ": expected a regular file, found a directory"));
  EXPECT_TRUE(preferences->valueForKey("a", "").booleanValue());
  fs::remove(path());
  EXPECT_TRUE(preferences->synchronize(""));  // the change was kept
  EXPECT_TRUE(stored("a").booleanValue());
}

TEST_F(FilePreferencesTest, AFullDiskLeavesTheFormerFile) {
  const auto preferences = opened();
  preferences->setValueForKey(Value::boolean(true), "a", "");
  ASSERT_TRUE(preferences->synchronize(""));
  preferences->setValueForKey(Value::string(std::string(100'000, 'x')), "b", "");
  rlimit former;
  getrlimit(RLIMIT_FSIZE, &former);
  const rlimit small{50'000, former.rlim_max};
  setrlimit(RLIMIT_FSIZE, &small);
  const bool isWritten = preferences->synchronize("");
  setrlimit(RLIMIT_FSIZE, &former);
  EXPECT_FALSE(isWritten);
  EXPECT_TRUE(stored("a").booleanValue());
  EXPECT_EQ(folder.names("."),
            (std::vector<std::string>{".org.example.own.lock", "org.example.own.plist"}));
  EXPECT_TRUE(preferences->synchronize(""));
  EXPECT_EQ(stored("b").asString()->size(), 100'000u);
}

TEST_F(FilePreferencesTest, ALinkStaysALinkAndItsTargetKeepsItsMode) {
  std::ofstream(folder.path("elsewhere")) << "<plist><dict/></plist>";
  fs::permissions(folder.path("elsewhere"), fs::perms(0640));
  fs::create_symlink("elsewhere", path());
  const auto preferences = opened();
  preferences->setValueForKey(Value::boolean(true), "a", "");
  EXPECT_TRUE(preferences->synchronize(""));
  EXPECT_TRUE(fs::is_symlink(path()));
  EXPECT_TRUE(stored("a").booleanValue());
  EXPECT_EQ(fs::status(path()).permissions(), fs::perms(0640));
}

TEST_F(FilePreferencesTest, ADomainThatIsNoFileNameHasNoValues) {
  const auto preferences = opened();
  for (const std::string& domain :
       {std::string("../org"), std::string("a/b"), std::string("a..b"), std::string(".hidden"),
        std::string("a\0b", 3), std::string(201, 'a')}) {
    preferences->setValueForKey(Value::boolean(true), "a", domain);
    EXPECT_TRUE(preferences->valueForKey("a", domain).isAbsent());
    EXPECT_FALSE(preferences->synchronize(domain));
  }
  EXPECT_TRUE(folder.names(".").empty());
  EXPECT_TRUE(log->contains("ERROR: Preferences: no file can be named for the domain \"a/b\""));
}

TEST_F(FilePreferencesTest, WithoutAFolderValuesLiveAsLongAsTheObject) {
  FilePreferences preferences("", "own");
  preferences.setValueForKey(Value::boolean(true), "a", "");
  EXPECT_FALSE(preferences.synchronize(""));
  EXPECT_TRUE(preferences.valueForKey("a", "").booleanValue());
}

TEST_F(FilePreferencesTest, ContainersAreCopiedInAndOut) {
  const auto preferences = opened();
  auto mine = std::make_shared<Array>(std::vector<Value>{Value::integer(1)});
  preferences->setValueForKey(Value::array(mine), "list", "");
  mine->elements().clear();
  preferences->valueForKey("list", "").asArray()->elements().clear();
  EXPECT_EQ(preferences->valueForKey("list", "").asArray()->count(), 1u);

  mine->elements().push_back(Value::array(mine));  // contains itself
  preferences->setValueForKey(Value::array(mine), "ring", "");
  EXPECT_TRUE(preferences->valueForKey("ring", "").isAbsent());
  mine->elements().clear();
}

TEST_F(FilePreferencesTest, ALogThatAsksForAPreferenceDoesNotHang) {
  class AskingLog : public SystemLog {
   public:
    void write(std::string_view) noexcept override {
      asked += preferences->synchronize("") ? 1 : 2;
    }
    FilePreferences* preferences = nullptr;
    int asked = 0;
  };
  const auto preferences = opened();
  const auto asking = std::make_shared<AskingLog>();
  asking->preferences = preferences.get();
  Platform::shared().systemLog = asking;
  preferences->synchronize("a/b");
  EXPECT_EQ(asking->asked, 1);
}

TEST_F(FilePreferencesTest, ManyWritersLoseNothing) {
  constexpr int kWriters = 4, kKeys = 20;
  const auto shared = opened();
  const auto work = [&](int writer) {
    const auto own = opened();  // acts as a separate process
    for (int i = 0; i < kKeys; ++i) {
      const std::string key = std::to_string(writer) + '.' + std::to_string(i);
      FilePreferences& preferences = writer % 2 == 0 ? *own : *shared;
      preferences.setValueForKey(Value::integer(i), key, "");
      EXPECT_TRUE(preferences.synchronize(""));
      EXPECT_EQ(preferences.valueForKey(key, "").int64(), i);
      EXPECT_TRUE(PropertyListFile().readFile(path()).succeeded());
    }
  };
  std::vector<std::jthread> writers;
  for (int writer = 0; writer < kWriters; ++writer) writers.emplace_back(work, writer);
  writers.clear();
  EXPECT_EQ(PropertyListFile().readFile(path()).value().asDictionary()->count(),
            std::size_t{kWriters * kKeys});
}

TEST_F(FilePreferencesTest, TheUsualFolderFollowsTheEnvironment) {
  const char* const home = std::getenv("HOME");
  const std::string formerHome = home ? home : "";
  setenv("HOME", "/home/somebody", 1);
  setenv("XDG_CONFIG_HOME", "/etc/somewhere", 1);
  EXPECT_EQ(FilePreferences::defaultFolder(), "/etc/somewhere/marlune");
  setenv("XDG_CONFIG_HOME", "relative", 1);
  EXPECT_EQ(FilePreferences::defaultFolder(), "/home/somebody/.config/marlune");
  unsetenv("XDG_CONFIG_HOME");
  EXPECT_EQ(FilePreferences::defaultFolder(), "/home/somebody/.config/marlune");
  setenv("HOME", formerHome.c_str(), 1);
}

TEST_F(FilePreferencesTest, TheDesktopBringsWhatTheTableLacks) {
  Platform::shared().preferences = nullptr;
  installDesktopServices({.preferencesDomain = "own", .preferencesFolder = folder.path()});
  EXPECT_EQ(Platform::shared().systemLog, log);
  write("<plist><integer>5</integer></plist>");
  EXPECT_EQ(Platform::shared().propertyListReader->readFile(path()).value().int64(), 5);
  Platform::shared().preferences->setValueForKey(Value::boolean(true), TQUtilsPacketTraceDefault,
                                                 "");
  EXPECT_TRUE(Platform::shared().preferences->synchronize(""));
  EXPECT_TRUE(fs::exists(folder.path("own.plist")));
  EXPECT_TRUE(TQUtils::isWantedForDefault(TQUtilsPacketTraceDefault));
}

}  // namespace
}  // namespace marlune
