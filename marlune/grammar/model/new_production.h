#ifndef MARLUNE_GRAMMAR_MODEL_NEW_PRODUCTION_H_
#define MARLUNE_GRAMMAR_MODEL_NEW_PRODUCTION_H_

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "marlune/grammar/model/generic_production.h"
#include "marlune/grammar/model/simple_slot_sequence.h"

namespace marlune {

// A list of slots to produce: each an overlay on either a new, empty slot or one of the matched.
// Overlays and indices are meant to be of one length; the indices decide how many slots come out.
class NewProduction : public GenericProduction {
 public:
  using Indices = std::vector<std::int32_t>;

  // From an array: a string is a new slot with that content; a dictionary lays its entries on the
  // matched slot at its "_index" (negative: on a new one), a nested dictionary being read as an
  // AttributeKey; other entries are passed over. Reading stops for good at a dictionary without a
  // number under "_index". From anything but an array: neither indices nor overlays. GrammarError
  // when an AttributeKey cannot be read.
  static std::shared_ptr<NewProduction> initFromPlist(const Value& plist);
  static std::shared_ptr<NewProduction> instanceFromPlist(const Value& plist);

  // Produces new slots with the attributes of the sequence's. The sequence is shared.
  static std::shared_ptr<NewProduction> initWithSimpleSlotSequence(
      std::shared_ptr<SimpleSlotSequence> sequence);
  static std::shared_ptr<NewProduction> productionWithSimpleSlotSequence(
      std::shared_ptr<SimpleSlotSequence> sequence);

  // Shares both.
  static std::shared_ptr<NewProduction> initWithOverlays(
      std::shared_ptr<SimpleSlotSequence> overlays, std::shared_ptr<Indices> indices);

  Kind kind() const override { return Kind::newProduction; }

  // For each produced slot the position in the occurrence, from 0, of the slot that it is made
  // from; negative: a new one. Null when absent, which counts as none. The setters share.
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
