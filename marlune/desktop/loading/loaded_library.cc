#include "marlune/desktop/loading/loaded_library.h"

#include <dlfcn.h>

namespace marlune {

LoadedLibrary::LoadedLibrary(const char* fileName)
    : _library(::dlopen(fileName, RTLD_NOW | RTLD_LOCAL)) {
  if (!_library) _fault = ::dlerror();
}

void* LoadedLibrary::_find(const char* name) {
  if (!_library) return nullptr;
  void* const function = ::dlsym(_library, name);
  if (!function && _fault.empty()) _fault = ::dlerror();
  return function;
}

}  // namespace marlune
