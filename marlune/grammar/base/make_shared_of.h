#ifndef MARLUNE_GRAMMAR_BASE_MAKE_SHARED_OF_H_
#define MARLUNE_GRAMMAR_BASE_MAKE_SHARED_OF_H_

#include <memory>
#include <utility>

namespace marlune {

// std::make_shared for this library's classes, whose constructors are protected because clients
// create objects with the named factories. A single allocation holds the object and its counts. Not
// meant for clients, so its instances need no exported symbols.
template <typename Class, typename... Arguments>
[[gnu::visibility("hidden")]] std::shared_ptr<Class> makeSharedOf(Arguments&&... arguments) {
  struct Made : Class {
    explicit Made(Arguments&&... given) : Class(std::forward<Arguments>(given)...) {}
  };
  return std::make_shared<Made>(std::forward<Arguments>(arguments)...);
}

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_BASE_MAKE_SHARED_OF_H_
