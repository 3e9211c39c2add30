#ifndef MARLUNE_GRAMMAR_MODEL_REWRITING_FAULT_H_
#define MARLUNE_GRAMMAR_MODEL_REWRITING_FAULT_H_

#include <optional>
#include <string>

#include "marlune/platform/failure.h"
#include "marlune/platform/visibility.h"

namespace marlune {

// While one exists, keeps the first reason for which this thread left a phrase unfinished. They
// nest: the innermost one keeps it.
class MARLUNE_INTERNAL_API RewritingFault {
 public:
  RewritingFault() : _outer(_innermost()) { _innermost() = this; }
  ~RewritingFault() { _innermost() = _outer; }
  RewritingFault(const RewritingFault&) = delete;
  RewritingFault& operator=(const RewritingFault&) = delete;

  std::optional<Failure> failure;
  std::string rule;  // its name; empty if it has none

  // Called where the reason arises, beside the line in the log.
  static void report(Failure::Kind kind, std::string message);
  // Called by the rule in which the reason arose.
  static void setRule(const std::string* name);

 private:
  static RewritingFault*& _innermost();  // of this thread

  RewritingFault* const _outer;
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_MODEL_REWRITING_FAULT_H_
