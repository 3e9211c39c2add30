#ifndef MARLUNE_DESKTOP_AUDIO_RECORDING_SNDFILE_LIBRARY_H_
#define MARLUNE_DESKTOP_AUDIO_RECORDING_SNDFILE_LIBRARY_H_

#include <sndfile.h>

#include "marlune/desktop/loading/loaded_library.h"

namespace marlune {

// The few functions of libsndfile that are used, loaded when they are first wanted: recordings with
// plain samples of 16 bits need none of them, and the library brings a codec library for each of
// seven formats.
struct SndfileLibrary {
  decltype(&sf_open_virtual) openVirtual = nullptr;
  decltype(&sf_readf_float) readFloats = nullptr;
  decltype(&sf_close) close = nullptr;
  decltype(&sf_strerror) errorText = nullptr;

  // Loads the library once per process.
  static Result<const SndfileLibrary*> shared();

 private:
  explicit SndfileLibrary(LoadedLibrary& library);
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_RECORDING_SNDFILE_LIBRARY_H_
