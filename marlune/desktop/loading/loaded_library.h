#ifndef MARLUNE_DESKTOP_LOADING_LOADED_LIBRARY_H_
#define MARLUNE_DESKTOP_LOADING_LOADED_LIBRARY_H_

#include <string>

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

  // The library or the first function that could not be found; empty if nothing is missing.
  const std::string& fault() const { return _fault; }

 private:
  void* _find(const char* name);

  void* const _library;
  std::string _fault;
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_LOADING_LOADED_LIBRARY_H_
