#ifndef MARLUNE_DESKTOP_AUDIO_LOADED_LIBRARY_H_
#define MARLUNE_DESKTOP_AUDIO_LOADED_LIBRARY_H_

#include <string>

namespace marlune {

// A shared library that is loaded when it is first wanted, so that a program which does not come to
// need it does not wait for it. Stays loaded until the process ends.
class LoadedLibrary {
 public:
  explicit LoadedLibrary(const char* fileName);

  // Sets `function` to the one of that name; null when there is none.
  template <typename Function>
  void find(const char* name, Function& function) {
    function = reinterpret_cast<Function>(_find(name));
  }

  // What is missing, the library or the first function that was not found; empty when nothing is.
  const std::string& fault() const { return _fault; }

 private:
  void* _find(const char* name);

  void* const _library;
  std::string _fault;
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_LOADED_LIBRARY_H_
