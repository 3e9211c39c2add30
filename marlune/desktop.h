#ifndef MARLUNE_DESKTOP_H_
#define MARLUNE_DESKTOP_H_

// What binds the core to a Linux desktop.

#include "marlune/desktop/audio/device/device_output.h"
#include "marlune/desktop/audio/output/file_output.h"
#include "marlune/desktop/desktop_platform.h"
#include "marlune/desktop/plist/property_list_file.h"
#include "marlune/desktop/services/folder_bundle.h"
#include "marlune/desktop/services/run_loop.h"
#include "marlune/desktop/text/normal_form.h"

#endif  // MARLUNE_DESKTOP_H_
