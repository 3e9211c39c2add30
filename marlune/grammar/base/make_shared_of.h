#ifndef MARLUNE_GRAMMAR_BASE_MAKE_SHARED_OF_H_
#define MARLUNE_GRAMMAR_BASE_MAKE_SHARED_OF_H_

#include <memory>
#include <utility>

namespace marlune {

// std::make_shared for the classes here, whose constructors are protected because clients make
// their objects with the named factories. One allocation holds the object and its counts. Of no
// use to clients, so that a shared library need not name what is made of this.
template <typename Class, typename... Arguments>
[[gnu::visibility("hidden")]] std::shared_ptr<Class> makeSharedOf(Arguments&&... arguments) {
  struct Made : Class {
    explicit Made(Arguments&&... given) : Class(std::forward<Arguments>(given)...) {}
  };
  return std::make_shared<Made>(std::forward<Arguments>(arguments)...);
}

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_BASE_MAKE_SHARED_OF_H_
