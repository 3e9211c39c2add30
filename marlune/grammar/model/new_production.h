#ifndef MARLUNE_GRAMMAR_MODEL_NEW_PRODUCTION_H_
#define MARLUNE_GRAMMAR_MODEL_NEW_PRODUCTION_H_

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "marlune/grammar/model/generic_production.h"
#include "marlune/grammar/model/simple_slot_sequence.h"
#include "marlune/platform/visibility.h"

namespace marlune {

// A list of slots to produce, each an overlay on a new, empty slot or on a matched one. Overlays
// and indices should have the same length; the indices determine how many slots are produced.
class MARLUNE_API NewProduction : public GenericProduction {
 public:
  using Indices = std::vector<std::int32_t>;

  // From an array. A string makes a new slot with that content. A dictionary overlays its entries
  // on the matched slot at its "_index" (negative: on a new slot); a nested dictionary is read as
  // an AttributeKey. Other elements are skipped. Reading stops at the first dictionary without a
  // number under "_index". Anything but an array gives neither indices nor overlays. Throws
  // GrammarError when an AttributeKey cannot be read.
  static std::shared_ptr<NewProduction> initFromPlist(const Value& plist);
  static std::shared_ptr<NewProduction> instanceFromPlist(const Value& plist);

  // Produces new slots with the attributes of the sequence's slots. Shares the sequence.
  static std::shared_ptr<NewProduction> initWithSimpleSlotSequence(
      std::shared_ptr<SimpleSlotSequence> sequence);
  static std::shared_ptr<NewProduction> productionWithSimpleSlotSequence(
      std::shared_ptr<SimpleSlotSequence> sequence);

  // Shares both.
  static std::shared_ptr<NewProduction> initWithOverlays(
      std::shared_ptr<SimpleSlotSequence> overlays, std::shared_ptr<Indices> indices);

  Kind kind() const override { return Kind::newProduction; }
  const NewProduction* _productionFor(const SimpleSlotSequence*, std::uint64_t&) const override {
    return this;
  }

  // For each produced slot, the position in the occurrence, from 0, of the slot that it is made
  // from; negative: a new one. Null when absent, which counts as none. The setters share their
  // arguments.
  const std::shared_ptr<Indices>& indices() const { return _indices; }
  void setIndices(std::shared_ptr<Indices> indices) { _indices = std::move(indices); }
  const std::shared_ptr<SimpleSlotSequence>& overlays() const { return _overlays; }
  void setOverlays(std::shared_ptr<SimpleSlotSequence> overlays) {
    _overlays = std::move(overlays);
  }

  std::string description() const override;

 protected:
  NewProduction(std::shared_ptr<SimpleSlotSequence> overlays, std::shared_ptr<Indices> indices)
      : _indices(std::move(indices)), _overlays(std::move(overlays)) {}

 private:
  std::shared_ptr<Indices> _indices;
  std::shared_ptr<SimpleSlotSequence> _overlays;
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_MODEL_NEW_PRODUCTION_H_
