#ifndef MARLUNE_GRAMMAR_MODEL_SIMPLE_SLOT_H_
#define MARLUNE_GRAMMAR_MODEL_SIMPLE_SLOT_H_

#include <memory>
#include <string>
#include <string_view>

#include "marlune/grammar/model/cell.h"
#include "marlune/grammar/model/slot.h"

namespace marlune {

// A slot that holds one cell: a word of a phrase, or a word pattern.
class SimpleSlot : public Slot, public std::enable_shared_from_this<SimpleSlot> {
 public:
  static std::shared_ptr<SimpleSlot> initWithCell(std::shared_ptr<Cell> cell);
  static std::shared_ptr<SimpleSlot> initFromPlist(const Value& plist);  // the cell of the value
  static std::shared_ptr<SimpleSlot> instanceFromPlist(const Value& plist);
  static std::shared_ptr<SimpleSlot> simpleSlotWithCell(std::shared_ptr<Cell> cell);
  static std::shared_ptr<SimpleSlot> blank();  // over a new blank
  static std::shared_ptr<SimpleSlot> empty();  // over a new wildcard without attributes

  // The slot as a simple one, or nullptr when it is of another kind (or null).
  static SimpleSlot* from(Slot* slot);
  static const SimpleSlot* from(const Slot* slot);

  Kind kind() const override { return Kind::simple; }

  const std::shared_ptr<Cell>& cell() const { return _cell; }
  void setCell(std::shared_ptr<Cell> cell) { _cell = std::move(cell); }  // shared

  const std::string* content() const;                               // as the cell's
  const std::string* attributeForKey(std::string_view name) const;  // as the cell's

  // A new slot over the cell's overlay on the other's cell: attributes here win.
  std::shared_ptr<SimpleSlot> overlayedOn(const SimpleSlot& other) const;

  std::string description() const override;

  const std::shared_ptr<Cell>& _cellOrNull() const override { return _cell; }
  bool _matchesAt(const SlotRun& target, std::size_t index) const override;
  bool _writesLines() const override;

 protected:
  explicit SimpleSlot(std::shared_ptr<Cell> cell) : _cell(std::move(cell)) {}

 private:
  std::shared_ptr<Slot> _reversed() override { return shared_from_this(); }

  std::shared_ptr<Cell> _cell;
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_MODEL_SIMPLE_SLOT_H_
