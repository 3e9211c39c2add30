#include "marlune/desktop/plist/expat_library.h"

#include "marlune/desktop/plist/property_list_error.h"

namespace marlune {

const ExpatLibrary& ExpatLibrary::shared() {
  static LoadedLibrary library("libexpat.so.1");
  static const ExpatLibrary functions(library);
  if (library.isComplete()) return functions;
  throw PropertyListError{"the XML form cannot be read: " + library.failure().message};
}

ExpatLibrary::ExpatLibrary(LoadedLibrary& library) {
  library.find("XML_ParserCreate_MM", create);
  library.find("XML_ParserFree", free);
  library.find("XML_SetUserData", setUserData);
  library.find("XML_SetElementHandler", setElementHandler);
  library.find("XML_SetCharacterDataHandler", setCharacterDataHandler);
  library.find("XML_SetEntityDeclHandler", setEntityDeclHandler);
  library.find("XML_SetSkippedEntityHandler", setSkippedEntityHandler);
  library.find("XML_Parse", parse);
  library.find("XML_StopParser", stop);
  library.find("XML_GetErrorCode", errorCode);
  library.find("XML_ErrorString", errorText);
  library.find("XML_GetCurrentLineNumber", line);
  library.find("XML_GetCurrentColumnNumber", column);
}

}  // namespace marlune
