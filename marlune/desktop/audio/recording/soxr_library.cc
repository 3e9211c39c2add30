#include "marlune/desktop/audio/recording/soxr_library.h"

namespace marlune {

const SoxrLibrary* SoxrLibrary::shared(std::string& cause) {
  static LoadedLibrary library("libsoxr.so.0");
  static const SoxrLibrary functions(library);
  if (library.fault().empty()) return &functions;
  cause = library.fault();
  return nullptr;
}

SoxrLibrary::SoxrLibrary(LoadedLibrary& library) {
  library.find("soxr_quality_spec", qualitySpec);
  library.find("soxr_create", create);
  library.find("soxr_process", process);
  library.find("soxr_delete", destroy);
}

}  // namespace marlune
