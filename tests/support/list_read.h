#ifndef MARLUNE_TESTS_SUPPORT_LIST_READ_H_
#define MARLUNE_TESTS_SUPPORT_LIST_READ_H_

#include <string>
#include <utility>

#include "marlune/platform/failure.h"
#include "marlune/platform/value.h"

namespace marlune {

// The outcome of reading a list, for comparisons: an absent root with an error, or a root without.
struct ListRead {
  ListRead(Result<Value> result) {
    if (result.succeeded()) {
      root = std::move(result.value());
    } else {
      error = result.failure().message;
      kind = result.failure().kind;
    }
  }

  Value root;
  std::string error;
  Failure::Kind kind = Failure::Kind::unreadable;
};

}  // namespace marlune

#endif  // MARLUNE_TESTS_SUPPORT_LIST_READ_H_
