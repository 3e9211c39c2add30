#include "tools/marlune/rewriting/rewriter.h"

#include <string_view>

#include "marlune/desktop/text/normal_form.h"
#include "marlune/grammar/base/grammar_error.h"
#include "marlune/platform/platform.h"
#include "marlune/util/tq_utils.h"
#include "marlune/workbench/derivation/captured_log.h"
#include "tools/marlune/input/composed_list_reader.h"
#include "tools/marlune/input/input_error.h"
#include "tools/marlune/input/phrase_error.h"
#include "tools/marlune/text/shown_text.h"

namespace marlune::tool {

namespace {

// Preferences with a single setting: the grammar's trace is on.
class TracePreferences : public Preferences {
 public:
  Value valueForKey(std::string_view key, std::string_view) const override {
    return key == ZKPlistNotificationDefault ? Value::boolean(true) : Value();
  }
  void setValueForKey(const Value&, std::string_view, std::string_view) override {}
  bool synchronize(std::string_view) override { return true; }
};

class TraceSwitchedOn {
 public:
  TraceSwitchedOn() : _former(Platform::shared().preferences) {
    Platform::shared().preferences = std::make_shared<TracePreferences>();
  }
  ~TraceSwitchedOn() { Platform::shared().preferences = _former; }
  TraceSwitchedOn(const TraceSwitchedOn&) = delete;
  TraceSwitchedOn& operator=(const TraceSwitchedOn&) = delete;

 private:
  const std::shared_ptr<Preferences> _former;
};

void show(const std::vector<std::string>& messages) {
  for (const std::string& message : messages) TQUtils::systemLog("%@", message);
}

}  // namespace

Rewriter::Rewriter(const std::string& path, const std::string& name) {
  Platform::shared().propertyListReader = std::make_shared<ComposedListReader>();
  std::vector<std::string> messages;
  {
    const CapturedLog log;
    try {
      _parser = Parser::initWithPlistAtPath(path, inNormalFormC(name));
    } catch (const GrammarError& error) {
      throw InputError(path + ": " + error.what());
    }
    messages = log.lines();
  }
  if (const auto& failure = _parser->whyNoGrammar()) {
    const bool isNamed = failure->kind != Failure::Kind::unknownName;
    throw InputError(isNamed ? failure->message : path + ": " + failure->message);
  }
  show(messages);
}

Words Rewriter::rewritten(const Words& words) const {
  const TQUtils::Capture withoutComparisons(*Platform::shared().systemLog);
  Words result = _parser->resultOfRulesAppliedToStrings(words)->stringArray();
  requireWithinLimits(_parser->whyUnfinished());
  return result;
}

void requireWithinLimits(const std::optional<Failure>& unfinished) {
  if (unfinished && unfinished->kind == Failure::Kind::tooLarge) {
    throw PhraseError("a rule would make it longer than a phrase may be");
  }
}

GrammarWalk Rewriter::walkOf(const Words& words) const {
  return {*_parser->theGrammar(), SimpleSlotSequence::blankBufferedSlotSequenceWithStrings(words)};
}

std::string Rewriter::rawTraceOf(const Words& words) const {
  const CapturedLog log(CapturedLog::Kept::everything);
  const TraceSwitchedOn trace;
  _parser->resultOfRulesAppliedToStrings(words);
  std::string text;
  for (const std::string& line : log.lines()) text += shownLayout(line) + "\n";
  return text;
}

}  // namespace marlune::tool
