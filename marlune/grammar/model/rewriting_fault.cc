#include "marlune/grammar/model/rewriting_fault.h"

#include <utility>

namespace marlune {

namespace {
thread_local RewritingFault* innermost = nullptr;
}  // namespace

RewritingFault::RewritingFault() : _outer(innermost) { innermost = this; }
RewritingFault::~RewritingFault() { innermost = _outer; }

void RewritingFault::report(Failure::Kind kind, std::string message) {
  if (!innermost || innermost->failure) return;
  innermost->failure = Failure{kind, std::move(message)};
}

}  // namespace marlune
