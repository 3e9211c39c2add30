#include "marlune/platform/platform.h"

namespace marlune {

Platform& Platform::shared() {
  // Never destroyed: objects destroyed at process exit may still log.
  static Platform* const table = new Platform;
  return *table;
}

}  // namespace marlune
