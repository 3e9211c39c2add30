#ifndef MARLUNE_GRAMMAR_COMPILED_PRODUCTION_BUILDER_H_
#define MARLUNE_GRAMMAR_COMPILED_PRODUCTION_BUILDER_H_

#include <cstddef>
#include <cstdint>

#include "marlune/grammar/base/vocabulary.h"
#include "marlune/grammar/compiled/productions.h"
#include "marlune/platform/value.h"

namespace marlune {

// Compiles right-hand sides.
class ProductionBuilder {
 public:
  // Both must outlive the builder.
  ProductionBuilder(CompiledProductions& productions, Vocabulary& vocabulary)
      : _all(productions), _vocabulary(vocabulary) {}

  // Reads the right-hand side of a rule that matches `matched` slots. Returns false if it has no
  // compiled form; what was added to the tables by then is never used.
  bool read(const Value& rightHandSide, std::size_t matched,
            CompiledProductions::Production& production);

 private:
  bool _replacement(const Array& plist, std::size_t matched, std::uint32_t& number);
  bool _overlay(const Dictionary& overlay, std::size_t matched);
  bool _choice(const Dictionary& plist, std::size_t matched, std::uint32_t& number);
  bool _reference(const Value& plist, std::size_t matched,
                  CompiledProductions::Reference& reference);

  CompiledProductions& _all;
  Vocabulary& _vocabulary;
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_COMPILED_PRODUCTION_BUILDER_H_
