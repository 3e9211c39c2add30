#ifndef MARLUNE_DESKTOP_LOADING_LOADED_LIBRARY_H_
#define MARLUNE_DESKTOP_LOADING_LOADED_LIBRARY_H_

#include <string>

#include "marlune/platform/failure.h"

namespace marlune {

// A shared library loaded on demand, so that programs that do not use it start faster. Stays loaded
// until the process ends.
class LoadedLibrary {
 public:
  explicit LoadedLibrary(const char* fileName);

  // Sets `function` to the function of that name, or to null if there is none.
  template <typename Function>
  void find(const char* name, Function& function) {
    function = reinterpret_cast<Function>(_find(name));
  }

  // Whether the library and all functions were found.
  bool isComplete() const { return _fault.empty(); }
  // What could not be found first, as a clause. REQUIRES: not isComplete().
  Failure failure() const { return Failure::unavailable(_fault); }

  // `functions` if the library is complete.
  template <typename Functions>
  Result<const Functions*> offering(const Functions& functions) const {
    if (!isComplete()) return failure();
    return &functions;
  }

 private:
  void* _find(const char* name);

  void* const _library;
  std::string _fault;  // empty if nothing is missing
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_LOADING_LOADED_LIBRARY_H_
