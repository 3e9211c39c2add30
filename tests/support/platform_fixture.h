#ifndef MARLUNE_TESTS_SUPPORT_PLATFORM_FIXTURE_H_
#define MARLUNE_TESTS_SUPPORT_PLATFORM_FIXTURE_H_

#include <gtest/gtest.h>

#include <memory>

#include "fakes/fake_preferences.h"
#include "fakes/fake_system_log.h"
#include "marlune/platform/platform.h"
#include "marlune/util/tq_utils.h"

namespace marlune {

// A test with its own system log and preferences. Restores all process-wide state at the end: the
// previous table of services, and no log directory, open log file or partner switch. A derived
// SetUp or TearDown must call this one.
class PlatformFixture : public testing::Test {
 protected:
  void SetUp() override {
    Platform::shared().systemLog = log;
    Platform::shared().preferences = preferences;
    _resetLogSettings();
  }

  void TearDown() override {
    _resetLogSettings();
    Platform::shared() = _formerPlatform;
  }

  const std::shared_ptr<FakeSystemLog> log = std::make_shared<FakeSystemLog>();
  const std::shared_ptr<FakePreferences> preferences = std::make_shared<FakePreferences>();

 private:
  static void _resetLogSettings() {
    TQUtils::setShouldLogToFilesInDirectory(nullptr);
    TQUtils::resetLogs();  // without a directory, only closes the open file
    TQUtils::setShouldUseVexaAppPreferenceKeyForLogging(false);
  }

  const Platform _formerPlatform = Platform::shared();
};

}  // namespace marlune

#endif  // MARLUNE_TESTS_SUPPORT_PLATFORM_FIXTURE_H_
