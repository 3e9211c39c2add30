#ifndef MARLUNE_GRAMMAR_COMPILED_RESULT_H_
#define MARLUNE_GRAMMAR_COMPILED_RESULT_H_

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "marlune/grammar/base/vocabulary.h"
#include "marlune/grammar/compiled/phrase.h"
#include "marlune/grammar/model/pending_slots.h"

namespace marlune {

// The result of a compiled grammar. Independent of the grammar and of the input words.
class CompiledResult : public PendingSlots {
 public:
  CompiledResult(const CompiledPhrase& phrase, std::shared_ptr<const Vocabulary> vocabulary)
      : _vocabulary(std::move(vocabulary)), _phrase(phrase.kept(_texts)) {}

  SlotArray slots() const override;
  std::vector<std::string> stringArray() const override;

 private:
  std::shared_ptr<const Vocabulary> _vocabulary;
  std::string _texts;
  CompiledPhrase _phrase;  // refers to both
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_COMPILED_RESULT_H_
