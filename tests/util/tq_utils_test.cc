#include "marlune/util/tq_utils.h"

#include <gmock/gmock.h>

#include <optional>

#include "support/platform_fixture.h"
#include "support/temporary_directory.h"

namespace marlune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::string_view kPartner = VexaPreferencesDomain;

// An object that counts how often it was described.
class Described : public Describable {
 public:
  std::string description() const override {
    ++count;
    return "described";
  }
  mutable int count = 0;
};

class TQUtilsTest : public PlatformFixture {};

TEST_F(TQUtilsTest, UnwantedLineIsNotEvenFormatted) {
  const Described object;
  TQUtils::forDefaultLog(ZKPlistNotificationDefault, "%@", object);
  preferences->set(ZKPlistNotificationDefault, Value::boolean(false));
  TQUtils::forDefaultLog(ZKPlistNotificationDefault, "%@", object);
  EXPECT_EQ(object.count, 0);
  EXPECT_THAT(log->lines(), IsEmpty());

  preferences->set(ZKPlistNotificationDefault, Value::boolean(true));
  TQUtils::forDefaultLog(ZKPlistNotificationDefault, "%@", object);
  EXPECT_THAT(log->lines(), ElementsAre("described"));
}

struct SwitchCase {
  std::string_view why;
  bool own, partner, usesPartner, wanted;
};
constexpr SwitchCase kSwitchCases[] = {
    {"the app's own preference counts alone", true, false, false, true},
    {"the partner's does not count while the switch is off", false, true, false, false},
    {"with the switch on, the partner's counts", false, true, true, true},
    {"with the switch on, the app's own does not", true, false, true, false},
};

TEST_F(TQUtilsTest, SwitchSelectsWhosePreferencesDecide) {
  // An exported key, whose result is cached, and one that is looked up each time.
  for (const std::string_view key : {TQUtilsPacketTraceDefault, std::string_view("AnyOther")}) {
    for (const SwitchCase& c : kSwitchCases) {
      SCOPED_TRACE(std::string(key) + ": " + std::string(c.why));
      TQUtils::setShouldUseVexaAppPreferenceKeyForLogging(c.usesPartner);
      preferences->set(key, Value::boolean(c.own));
      preferences->set(key, Value::boolean(c.partner), kPartner);
      EXPECT_EQ(TQUtils::isWantedForDefault(key), c.wanted);
      EXPECT_EQ(TQUtils::isWantedForDefault(key), c.wanted);  // from the cache
    }
  }
}

TEST_F(TQUtilsTest, OtherPreferencesObjectIsNotTakenForTheFormerOne) {
  for (int i = 0; i < 100; ++i) {
    const bool on = i % 2 == 0;
    Platform::shared().preferences.reset();  // so that the next one may get the same address
    auto next = std::make_shared<FakePreferences>();
    next->set(ZKPlistErrorDefault, Value::boolean(on));
    Platform::shared().preferences = std::move(next);
    ASSERT_EQ(TQUtils::isWantedForDefault(ZKPlistErrorDefault), on) << i;
  }
  Platform::shared().preferences = nullptr;
  EXPECT_FALSE(TQUtils::isWantedForDefault(ZKPlistErrorDefault));
}

struct PartnerCase {
  std::string_view why;
  Value value;
  bool truth;
  std::optional<std::string> text;
  std::optional<std::int64_t> number;
};

TEST_F(TQUtilsTest, PartnerValuesReadByKind) {
  const PartnerCase cases[] = {
      {"missing", Value(), false, std::nullopt, std::nullopt},
      {"a boolean", Value::boolean(true), true, std::nullopt, 1},
      {"a large integer", Value::integer(INT64_MAX), true, std::nullopt, INT64_MAX},
      {"a real is truncated", Value::real(-2.5), true, std::nullopt, -2},
      {"a switch written as text", Value::string("Yes"), true, "Yes", std::nullopt},
      {"a number written as text", Value::string("-12"), false, "-12", -12},
      {"text that only begins like a number", Value::string("1x"), false, "1x", std::nullopt},
      {"empty text", Value::string(""), false, "", std::nullopt},
      {"a list", Value::array(std::make_shared<Array>()), false, std::nullopt, std::nullopt},
  };
  for (const PartnerCase& c : cases) {
    SCOPED_TRACE(c.why);
    preferences->set("key", c.value, kPartner);
    EXPECT_EQ(TQUtils::vexaUserDefaultsBoolForKey("key"), c.truth);
    EXPECT_EQ(TQUtils::vexaUserDefaultsStringForKey("key"), c.text);
    EXPECT_EQ(TQUtils::vexaUserDefaultsNumberForKey("key"), c.number);
  }
}

TEST_F(TQUtilsTest, PartnerChangesAreSynchronizedAtOnceAndStayInTheirDomain) {
  preferences->set("key", Value::string("own"));
  TQUtils::vexaUserDefaultsSetString("set", "key");
  EXPECT_EQ(preferences->unsynchronizedChanges(kPartner), 0);
  EXPECT_EQ(TQUtils::vexaUserDefaultsStringForKey("key"), "set");
  TQUtils::vexaUserDefaultsRemoveObjectForKey("key");
  EXPECT_EQ(preferences->unsynchronizedChanges(kPartner), 0);
  EXPECT_EQ(TQUtils::vexaUserDefaultsStringForKey("key"), std::nullopt);
  EXPECT_EQ(*preferences->valueForKey("key", "").asString(), "own");
}

TEST_F(TQUtilsTest, WithoutPreferencesEverythingIsMissing) {
  Platform::shared().preferences = nullptr;
  TQUtils::vexaUserDefaultsSetString("lost", "key");
  TQUtils::vexaUserDefaultsRemoveObjectForKey("key");
  EXPECT_EQ(TQUtils::vexaUserDefaultsStringForKey("key"), std::nullopt);
  EXPECT_FALSE(TQUtils::isWantedForDefault("key"));
}

class EnsureDirectoryTest : public PlatformFixture {
 protected:
  const TemporaryDirectory directory;
  const std::string path = directory.path("logs");
};

TEST_F(EnsureDirectoryTest, MakesParentsAndLeavesADirectoryAlone) {
  TQUtils::ensureDirectoryExists(directory.path("a/./b//x/../c/"));
  EXPECT_TRUE(std::filesystem::is_directory(directory.path("a/b/c")));
  EXPECT_FALSE(std::filesystem::exists(directory.path("a/b/x")));
  const std::string kept = directory.write("a/kept", "kept");
  TQUtils::ensureDirectoryExists(directory.path("a"));
  EXPECT_EQ(TemporaryDirectory::contentOf(kept), "kept");
  EXPECT_THAT(log->lines(), IsEmpty());
}

TEST_F(EnsureDirectoryTest, ResolvesTheHomeDirectory) {
  const std::string home = std::getenv("HOME") ? std::getenv("HOME") : "";
  ::setenv("HOME", directory.path().c_str(), 1);
  TQUtils::ensureDirectoryExists("~/in home");
  ::setenv("HOME", home.c_str(), 1);
  EXPECT_TRUE(std::filesystem::is_directory(directory.path("in home")));
}

TEST_F(EnsureDirectoryTest, MovesWhatStandsThereAsideToTheFirstFreeNumber) {
  directory.write("logs", "old");
  directory.write("logs.tmp0", "older");
  std::filesystem::create_symlink("nowhere", path + ".tmp1");  // also taken
  TQUtils::ensureDirectoryExists(path);
  EXPECT_TRUE(std::filesystem::is_directory(path));
  EXPECT_EQ(TemporaryDirectory::contentOf(path + ".tmp0"), "older");
  EXPECT_EQ(TemporaryDirectory::contentOf(path + ".tmp2"), "old");
  EXPECT_THAT(log->lines(), IsEmpty());
}

TEST_F(EnsureDirectoryTest, WithoutAFreeNumberNothingIsLost) {
  directory.write("logs", "old");
  for (int n = 0; n <= 1000; ++n) directory.write("logs.tmp" + std::to_string(n), "older");
  TQUtils::ensureDirectoryExists(path);
  EXPECT_THAT(log->lines(),
              ElementsAre("Unable to move file at [" + path + "] to [" + path +
                              ".tmp1000].  error: [File exists]",
                          "Unable to create directory: [" + path + "] error: [Not a directory]"));
  EXPECT_EQ(TemporaryDirectory::contentOf(path), "old");
  EXPECT_EQ(TemporaryDirectory::contentOf(path + ".tmp1000"), "older");
}

TEST_F(EnsureDirectoryTest, FileAmongTheParentsStays) {
  directory.write("logs", "old");
  TQUtils::ensureDirectoryExists(path + "/sub");
  EXPECT_THAT(log->lines(), ElementsAre("Unable to create directory: [" + path +
                                        "/sub] error: [Not a directory]"));
}

}  // namespace
}  // namespace marlune
