#ifndef MARLUNE_DESKTOP_TEXT_UTF8PROC_LIBRARY_H_
#define MARLUNE_DESKTOP_TEXT_UTF8PROC_LIBRARY_H_

#include <utf8proc.h>

#include "marlune/desktop/loading/loaded_library.h"

namespace marlune {

// The functions of utf8proc that are used, loaded with the first text that needs them.
struct Utf8procLibrary {
  decltype(&utf8proc_get_property) property = nullptr;
  decltype(&utf8proc_iterate) iterate = nullptr;
  decltype(&utf8proc_decompose_char) decomposeCharacter = nullptr;
  decltype(&utf8proc_reencode) reencode = nullptr;
  decltype(&utf8proc_map) map = nullptr;

  // Loads it once for the process. If that fails, logs one line, and returns null every time.
  static const Utf8procLibrary* shared();

 private:
  explicit Utf8procLibrary(LoadedLibrary& library);
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_TEXT_UTF8PROC_LIBRARY_H_
