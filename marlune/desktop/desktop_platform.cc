#include "marlune/desktop/desktop_platform.h"

#include "marlune/desktop/plist/property_list_file.h"
#include "marlune/desktop/services/file_preferences.h"
#include "marlune/platform/platform.h"
#include "marlune/platform/standard_error_log.h"

namespace marlune {

namespace {

std::shared_ptr<Preferences> preferencesFor(const DesktopOptions& options) {
  return std::make_shared<FilePreferences>(options.preferencesFolder.empty()
                                               ? FilePreferences::defaultFolder()
                                               : options.preferencesFolder,
                                           options.preferencesDomain);
}

}  // namespace

void installDesktopServices(const DesktopOptions& options) {
  Platform& platform = Platform::shared();
  if (options.systemLog) platform.systemLog = options.systemLog;
  if (!platform.systemLog) platform.systemLog = std::make_shared<StandardErrorLog>();
  if (!platform.preferences) platform.preferences = preferencesFor(options);
  if (!platform.propertyListReader) {
    platform.propertyListReader = std::make_shared<PropertyListFile>();
  }
}

}  // namespace marlune
