#ifndef MARLUNE_DESKTOP_PLIST_EXPAT_MEMORY_H_
#define MARLUNE_DESKTOP_PLIST_EXPAT_MEMORY_H_

#include <expat.h>

#include "marlune/desktop/plist/memory_budget.h"

namespace marlune {

// Bounds the memory that Expat uses. Expat stores every attribute name, so an element with a
// million attributes would use many times its length before any handler is called. A parser created
// with this suite takes from the budget of the current scope on the calling thread; when the budget
// is exhausted, Expat gets no memory and reports that.
class ExpatMemory {
 public:
  ExpatMemory() = delete;

  static const XML_Memory_Handling_Suite& suite();

  class Scope {
   public:
    explicit Scope(MemoryBudget& budget);  // must outlive the scope
    ~Scope();
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;

   private:
    MemoryBudget* _former;
  };
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_PLIST_EXPAT_MEMORY_H_
