#include "marlune/grammar/model/rewriting_fault.h"

#include <utility>

namespace marlune {

RewritingFault*& RewritingFault::_innermost() {
  thread_local RewritingFault* innermost = nullptr;
  return innermost;
}

void RewritingFault::report(Failure::Kind kind, std::string message) {
  RewritingFault* const innermost = _innermost();
  if (innermost && !innermost->failure) innermost->failure = Failure{kind, std::move(message)};
}

void RewritingFault::setRule(const std::string* name) {
  RewritingFault* const innermost = _innermost();
  if (innermost && innermost->rule.empty() && name) innermost->rule = *name;
}

}  // namespace marlune
