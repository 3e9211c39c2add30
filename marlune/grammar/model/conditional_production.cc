#include "marlune/grammar/model/conditional_production.h"

#include <algorithm>

#include "marlune/grammar/base/grammar_error.h"
#include "marlune/grammar/base/make_shared_of.h"
#include "marlune/grammar/base/repetition.h"
#include "marlune/grammar/base/special_characters.h"
#include "marlune/grammar/format/production_form.h"
#include "marlune/util/format.h"

namespace marlune {

namespace {

ConditionalProduction::Signature signatureOf(const Array& plist) {
  ConditionalProduction::Signature signature;
  for (const Value& entry : plist.elements()) {
    signature.push_back(GrammarError::within(signature.size(), [&entry] {
      auto key = AttributeKey::instanceFromPlist(entry);
      if (!key) throw GrammarError("", "an attribute key without its index or its name");
      return key;
    }));
  }
  return signature;
}

}  // namespace

std::shared_ptr<ConditionalProduction> ConditionalProduction::initFromPlist(const Value& plist) {
  auto result = makeSharedOf<ConditionalProduction>();
  const auto& fields = plist.asDictionary();
  if (!fields) return result;

  ConditionalForm form = ConditionalForm::of(*fields);
  result->_delimiter = std::move(form.delimiter);
  if (form.signature) {
    result->_signature = GrammarError::within(SpecialCharacters::signatureKey(),
                                              [&form] { return signatureOf(*form.signature); });
  }
  if (form.expansions) {
    result->_expansions = GrammarError::within(SpecialCharacters::expansionsKey(),
                                               [&form] { return _expansionsOf(*form.expansions); });
    for (const Expansion& each : *result->_expansions) {
      result->_longestKey = std::max(result->_longestKey, each.first->size());
    }
  }
  return result;
}

std::vector<ConditionalProduction::Expansion> ConditionalProduction::_expansionsOf(
    const Dictionary& plist) {
  std::vector<Expansion> expansions;
  expansions.reserve(plist.count());
  for (const auto& [key, value] : plist.entries()) {
    expansions.emplace_back(key, GrammarError::within(*key, [&value = value] {
                              return NewProduction::instanceFromPlist(value);
                            }));
  }
  return expansions;
}

std::shared_ptr<ConditionalProduction> ConditionalProduction::instanceFromPlist(
    const Value& plist) {
  return initFromPlist(plist);
}

const NewProduction* ConditionalProduction::_productionFor(const SimpleSlotSequence* occurrence,
                                                           std::uint64_t& steps) const {
  if (_expansions) steps += Repetition::stepsOfChoice(_expansions->size());
  return expansionForKey(keyForOccurrence(occurrence)).get();
}

std::string ConditionalProduction::keyForOccurrence(const SimpleSlotSequence* occurrence) const {
  std::string joined;
  bool isFirst = true;
  if (!_signature || !occurrence) return joined;
  for (const std::shared_ptr<AttributeKey>& key : *_signature) {
    const AttributeValue* value = occurrence->valueForAttributeKey(*key);
    // Continues past the longest key, because each AttributeKey must be checked to lie within the
    // occurrence.
    if (!value || joined.size() > _longestKey) continue;
    if (!isFirst) joined += _delimiter.value_or("");
    isFirst = false;
    const std::string* const text = value->asString();
    if (text) {
      joined.append(*text, 0, _longestKey + 1);
    } else {
      joined += value->text();
    }
  }
  return joined;
}

std::shared_ptr<NewProduction> ConditionalProduction::expansionForKey(std::string_view key) const {
  if (!_expansions) return nullptr;
  for (const auto& [held, production] : *_expansions) {
    if (*held == key) return production;
  }
  return nullptr;
}

std::string ConditionalProduction::description() const {
  std::string text;
  if (!_expansions) return text;
  for (const auto& [key, production] : *_expansions) {
    text += formatted("\n %@: %@", {*key, production});
  }
  return text;
}

}  // namespace marlune
