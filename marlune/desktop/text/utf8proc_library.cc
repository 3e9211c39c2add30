#include "marlune/desktop/text/utf8proc_library.h"

#include "marlune/util/tq_utils.h"

namespace marlune {

namespace {

bool isComplete(const LoadedLibrary& library) {
  if (library.isComplete()) return true;
  TQUtils::log("ERROR: Text cannot be composed, and is used as it stands: %@.",
               library.failure().message);
  return false;
}

}  // namespace

const Utf8procLibrary* Utf8procLibrary::shared() {
  static LoadedLibrary library("libutf8proc.so.2");
  static const Utf8procLibrary functions(library);
  static const bool isUsable = isComplete(library);
  return isUsable ? &functions : nullptr;
}

Utf8procLibrary::Utf8procLibrary(LoadedLibrary& library) {
  library.find("utf8proc_get_property", property);
  library.find("utf8proc_iterate", iterate);
  library.find("utf8proc_decompose_char", decomposeCharacter);
  library.find("utf8proc_reencode", reencode);
  library.find("utf8proc_map", map);
}

}  // namespace marlune
