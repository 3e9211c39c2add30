#ifndef MARLUNE_TESTING_H_
#define MARLUNE_TESTING_H_

// What an app needs to test its announcements without sound or time.

#include "marlune/announce.h"
#include "marlune/testing/end_recorder.h"
#include "marlune/testing/fake_platform.h"

#endif  // MARLUNE_TESTING_H_
