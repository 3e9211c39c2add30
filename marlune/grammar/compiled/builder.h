#ifndef MARLUNE_GRAMMAR_COMPILED_BUILDER_H_
#define MARLUNE_GRAMMAR_COMPILED_BUILDER_H_

#include <cstdint>
#include <memory>
#include <vector>

#include "marlune/grammar/compiled/pattern_builder.h"
#include "marlune/grammar/compiled/production_builder.h"
#include "marlune/grammar/compiled/tables.h"
#include "marlune/grammar/model/grammar_objects.h"
#include "marlune/grammar/model/rule.h"
#include "marlune/platform/value.h"

namespace marlune {

// Compiles a grammar directly from its property list, without the rules' objects, which take longer
// to make than the compiled form. Has the same side effects as making them: writes the parts'
// places into the list, and logs lines (except traced ones). Rules that have no compiled form, or
// are malformed, are left to their objects; this is rare.
class CompiledBuilder {
 public:
  struct Result {
    CompiledTables tables;
    GrammarObjects::Rules objects;  // of the rules left to their objects
  };

  // Sets `isChanged` when it changes the list. REQUIRES: a dictionary. Throws GrammarError when the
  // grammar is broken.
  static Result build(const Value& plist, bool& isChanged);

 private:
  class Part;

  explicit CompiledBuilder(bool& isChanged);

  Part _part(const Value& plist);
  std::uint32_t _addRule(const Value& plist);
  void _arrange(const std::vector<std::uint32_t>& numbers);

  bool _compile(const Dictionary& plist, CompiledRule& compiled);

  bool& _isChanged;
  CompiledTables _tables;
  PatternBuilder _patterns;
  ProductionBuilder _productions;
  std::vector<std::shared_ptr<const Rule>> _objects;  // indexed by rule; null where there is none
  std::vector<char> _isIdle;                          // indexed by rule: whether it does nothing
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_COMPILED_BUILDER_H_
