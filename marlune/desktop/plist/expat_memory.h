#ifndef MARLUNE_DESKTOP_PLIST_EXPAT_MEMORY_H_
#define MARLUNE_DESKTOP_PLIST_EXPAT_MEMORY_H_

#include <expat.h>

#include "marlune/desktop/plist/memory_budget.h"

namespace marlune {

// Bounds the XML library's own memory: it remembers every attribute name, and an element of a
// million attributes would take many times its length before any handler is called. A parser made
// with the suite takes from the budget whose scope stands on the calling thread; when that is used
// up the library gets no memory and says so.
class ExpatMemory {
 public:
  ExpatMemory() = delete;

  static const XML_Memory_Handling_Suite& suite();

  class Scope {
   public:
    explicit Scope(MemoryBudget& budget);  // which outlives it
    ~Scope();
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;

   private:
    MemoryBudget* _former;
  };
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_PLIST_EXPAT_MEMORY_H_
