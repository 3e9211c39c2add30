#ifndef MARLUNE_DESKTOP_AUDIO_SOXR_LIBRARY_H_
#define MARLUNE_DESKTOP_AUDIO_SOXR_LIBRARY_H_

#include <soxr.h>

#include <string>

#include "marlune/desktop/audio/loaded_library.h"

namespace marlune {

// The few functions of the resampler that are used, loaded when they are first wanted: recordings
// that have the output's rate need none of them.
struct SoxrLibrary {
  decltype(&soxr_quality_spec) qualitySpec = nullptr;
  decltype(&soxr_create) create = nullptr;
  decltype(&soxr_process) process = nullptr;
  decltype(&soxr_delete) destroy = nullptr;

  // Loads it once for the process. Null when that failed, and then `cause` says why.
  static const SoxrLibrary* shared(std::string& cause);

 private:
  explicit SoxrLibrary(LoadedLibrary& library);
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_SOXR_LIBRARY_H_
