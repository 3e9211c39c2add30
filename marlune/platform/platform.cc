#include "marlune/platform/platform.h"

namespace marlune {

Platform& Platform::shared() {
  // Never destroyed: objects that die at the process's end may still log.
  static Platform* const table = new Platform;
  return *table;
}

}  // namespace marlune
