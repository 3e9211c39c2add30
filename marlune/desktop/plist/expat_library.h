#ifndef MARLUNE_DESKTOP_PLIST_EXPAT_LIBRARY_H_
#define MARLUNE_DESKTOP_PLIST_EXPAT_LIBRARY_H_

#include <expat.h>

#include "marlune/desktop/loading/loaded_library.h"

namespace marlune {

// The functions of Expat that are used, loaded with the first list in the XML form: a program that
// only plays recordings needs none of them.
struct ExpatLibrary {
  decltype(&XML_ParserCreate_MM) create = nullptr;
  decltype(&XML_ParserFree) free = nullptr;
  decltype(&XML_SetUserData) setUserData = nullptr;
  decltype(&XML_SetElementHandler) setElementHandler = nullptr;
  decltype(&XML_SetCharacterDataHandler) setCharacterDataHandler = nullptr;
  decltype(&XML_SetEntityDeclHandler) setEntityDeclHandler = nullptr;
  decltype(&XML_SetSkippedEntityHandler) setSkippedEntityHandler = nullptr;
  decltype(&XML_Parse) parse = nullptr;
  decltype(&XML_StopParser) stop = nullptr;
  decltype(&XML_GetErrorCode) errorCode = nullptr;
  decltype(&XML_ErrorString) errorText = nullptr;
  decltype(&XML_GetCurrentLineNumber) line = nullptr;
  decltype(&XML_GetCurrentColumnNumber) column = nullptr;

  // Loads it once for the process. Throws PropertyListError if that fails.
  static const ExpatLibrary& shared();

 private:
  explicit ExpatLibrary(LoadedLibrary& library);
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_PLIST_EXPAT_LIBRARY_H_
