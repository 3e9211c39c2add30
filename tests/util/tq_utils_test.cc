#include "marlune/util/tq_utils.h"

#include <gmock/gmock.h>

#include "support/platform_fixture.h"

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
  // An exported key, which is remembered, and one that is looked up each time.
  for (const std::string_view key : {TQUtilsPacketTraceDefault, std::string_view("AnyOther")}) {
    for (const SwitchCase& c : kSwitchCases) {
      SCOPED_TRACE(std::string(key) + ": " + std::string(c.why));
      TQUtils::setShouldUseVexaAppPreferenceKeyForLogging(c.usesPartner);
      preferences->set(key, Value::boolean(c.own));
      preferences->set(key, Value::boolean(c.partner), kPartner);
      EXPECT_EQ(TQUtils::isWantedForDefault(key), c.wanted);
      EXPECT_EQ(TQUtils::isWantedForDefault(key), c.wanted);  // as remembered
    }
  }
}

TEST_F(TQUtilsTest, OtherPreferencesObjectIsNotTakenForTheFormerOne) {
  for (int i = 0; i < 100; ++i) {
    const bool on = i % 2 == 0;
    Platform::shared().preferences.reset();  // so that the next may come to stand at its address
    auto next = std::make_shared<FakePreferences>();
    next->set(ZKPlistErrorDefault, Value::boolean(on));
    Platform::shared().preferences = std::move(next);
    ASSERT_EQ(TQUtils::isWantedForDefault(ZKPlistErrorDefault), on) << i;
  }
  Platform::shared().preferences = nullptr;
  EXPECT_FALSE(TQUtils::isWantedForDefault(ZKPlistErrorDefault));
}

}  // namespace
}  // namespace marlune
