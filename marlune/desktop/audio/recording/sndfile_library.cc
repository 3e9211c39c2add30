#include "marlune/desktop/audio/recording/sndfile_library.h"

namespace marlune {

Result<const SndfileLibrary*> SndfileLibrary::shared() {
  static LoadedLibrary library("libsndfile.so.1");
  static const SndfileLibrary functions(library);
  return library.offering(functions);
}

SndfileLibrary::SndfileLibrary(LoadedLibrary& library) {
  library.find("sf_open_virtual", openVirtual);
  library.find("sf_readf_float", readFloats);
  library.find("sf_close", close);
  library.find("sf_strerror", errorText);
}

}  // namespace marlune
