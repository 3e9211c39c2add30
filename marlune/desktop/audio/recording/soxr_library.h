#ifndef MARLUNE_DESKTOP_AUDIO_RECORDING_SOXR_LIBRARY_H_
#define MARLUNE_DESKTOP_AUDIO_RECORDING_SOXR_LIBRARY_H_

#include <soxr.h>

#include "marlune/desktop/loading/loaded_library.h"

namespace marlune {

// The resampler functions in use, loaded on demand: recordings at the output's rate need none.
struct SoxrLibrary {
  decltype(&soxr_quality_spec) qualitySpec = nullptr;
  decltype(&soxr_create) create = nullptr;
  decltype(&soxr_process) process = nullptr;
  decltype(&soxr_delete) destroy = nullptr;

  // Loads the library once per process.
  static Result<const SoxrLibrary*> shared();

 private:
  explicit SoxrLibrary(LoadedLibrary& library);
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_RECORDING_SOXR_LIBRARY_H_
