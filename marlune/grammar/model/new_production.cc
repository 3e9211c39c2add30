#include "marlune/grammar/model/new_production.h"

#include <optional>
#include <utility>

#include "marlune/grammar/base/grammar_error.h"
#include "marlune/grammar/base/make_shared_of.h"
#include "marlune/grammar/format/production_form.h"
#include "marlune/grammar/model/simple_slot.h"
#include "marlune/util/tq_utils.h"

namespace marlune {

namespace {

constexpr std::string_view kTrace = ZKPlistNotificationDefault;

// A plist for printing only: a dictionary without its index and with its attribute keys read.
class PrintedAttributes : public Describable {
 public:
  explicit PrintedAttributes(const AttributeDictionary& attributes) : _attributes(attributes) {}
  std::string description() const override { return formatted("%@", {_attributes.asPlist()}); }

 private:
  const AttributeDictionary& _attributes;
};

// The attribute for an entry of a production's dictionary.
AttributeValue attributeOf(const std::string& name, const Value& plist) {
  if (!plist.asDictionary()) return AttributeValue::fromPlist(plist);
  return GrammarError::within(name, [&plist] {
    auto key = AttributeKey::instanceFromPlist(plist);
    if (!key) throw GrammarError("", "an attribute key without its index or its name");
    return AttributeValue(std::move(key));
  });
}

std::shared_ptr<Slot> literalSlot(std::shared_ptr<AttributeDictionary> attributes) {
  return SimpleSlot::simpleSlotWithCell(Cell::_literalOver(std::move(attributes)));
}

// The overlay that a dictionary describes, without its index.
std::shared_ptr<Slot> overlayOf(const Dictionary& plist) {
  auto attributes = std::make_shared<AttributeDictionary>();
  attributes->reserve(plist.count() - 1);
  for (const auto& [name, value] : plist.entries()) {
    if (!ProducedForm::isAttribute(*name)) continue;
    attributes->setValueForKey(attributeOf(*name, value), name);
  }
  TQUtils::forDefaultLog(kTrace, "Testing dictTemp: %@", PrintedAttributes(*attributes));
  return literalSlot(std::move(attributes));
}

std::shared_ptr<Slot> overlayOfWord(const Value& word) {
  auto attributes = std::make_shared<AttributeDictionary>();
  attributes->reserve(1);
  attributes->setValueForKey(word.sharedString(), AttributeDictionary::contentName());
  return literalSlot(std::move(attributes));
}

}  // namespace

std::shared_ptr<NewProduction> NewProduction::initFromPlist(const Value& plist) {
  if (!plist.asArray()) return makeSharedOf<NewProduction>(nullptr, nullptr);
  auto indices = std::make_shared<Indices>();
  SlotArray overlays;
  const std::vector<Value>& entries = plist.asArray()->elements();
  indices->reserve(entries.size());
  overlays.reserve(entries.size());
  for (std::size_t i = 0; i < entries.size(); ++i) {
    const ProducedForm form = ProducedForm::of(entries[i]);
    if (form.kind == ProducedForm::Kind::ignored) continue;
    if (form.kind == ProducedForm::Kind::last) {
      TQUtils::forDefaultLog(kTrace, "NO INDEX!");
      break;
    }
    indices->push_back(form.index);
    if (form.kind == ProducedForm::Kind::word) {
      overlays.push_back(overlayOfWord(entries[i]));
    } else {
      TQUtils::forDefaultLog(kTrace, "*** intValue: %i", form.index);
      overlays.push_back(GrammarError::within(i, [&form] { return overlayOf(*form.overlay); }));
    }
  }
  return initWithOverlays(SimpleSlotSequence::initWithArray(std::move(overlays)),
                          std::move(indices));
}

std::shared_ptr<NewProduction> NewProduction::instanceFromPlist(const Value& plist) {
  return initFromPlist(plist);
}

std::shared_ptr<NewProduction> NewProduction::initWithSimpleSlotSequence(
    std::shared_ptr<SimpleSlotSequence> sequence) {
  auto indices = std::make_shared<Indices>();
  const std::size_t count = sequence ? sequence->count() : 0;
  for (std::size_t i = 0; i < count; ++i) {
    TQUtils::forDefaultLog(kTrace, "adding a blank");
    indices->push_back(-1);
  }
  return initWithOverlays(std::move(sequence), std::move(indices));
}

std::shared_ptr<NewProduction> NewProduction::productionWithSimpleSlotSequence(
    std::shared_ptr<SimpleSlotSequence> sequence) {
  return initWithSimpleSlotSequence(std::move(sequence));
}

std::shared_ptr<NewProduction> NewProduction::initWithOverlays(
    std::shared_ptr<SimpleSlotSequence> overlays, std::shared_ptr<Indices> indices) {
  return makeSharedOf<NewProduction>(std::move(overlays), std::move(indices));
}

std::string NewProduction::description() const {
  return formatted("\n\t indices: %@ \n\t overlays: %@",
                   {_indices ? FormatArgument(*_indices) : FormatArgument(nullptr), _overlays});
}

}  // namespace marlune
