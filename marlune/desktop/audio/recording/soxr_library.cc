#include "marlune/desktop/audio/recording/soxr_library.h"

namespace marlune {

Result<const SoxrLibrary*> SoxrLibrary::shared() {
  static LoadedLibrary library("libsoxr.so.0");
  static const SoxrLibrary functions(library);
  return library.offering(functions);
}

SoxrLibrary::SoxrLibrary(LoadedLibrary& library) {
  library.find("soxr_quality_spec", qualitySpec);
  library.find("soxr_create", create);
  library.find("soxr_process", process);
  library.find("soxr_delete", destroy);
}

}  // namespace marlune
