#include "marlune/desktop/audio/recording/sndfile_library.h"

namespace marlune {

const SndfileLibrary* SndfileLibrary::shared(std::string& cause) {
  static LoadedLibrary library("libsndfile.so.1");
  static const SndfileLibrary functions(library);
  if (library.fault().empty()) return &functions;
  cause = library.fault();
  return nullptr;
}

SndfileLibrary::SndfileLibrary(LoadedLibrary& library) {
  library.find("sf_open_virtual", openVirtual);
  library.find("sf_readf_float", readFloats);
  library.find("sf_close", close);
  library.find("sf_strerror", errorText);
}

}  // namespace marlune
