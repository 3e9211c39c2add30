#ifndef MARLUNE_GRAMMAR_MODEL_SIMPLE_SLOT_H_
#define MARLUNE_GRAMMAR_MODEL_SIMPLE_SLOT_H_

#include <memory>
#include <string>
#include <string_view>

#include "marlune/grammar/model/cell.h"
#include "marlune/grammar/model/slot.h"
#include "marlune/platform/visibility.h"

namespace marlune {

// A slot that holds one cell: a word of a phrase, or a word pattern.
class MARLUNE_API SimpleSlot : public Slot, public std::enable_shared_from_this<SimpleSlot> {
 public:
  static std::shared_ptr<SimpleSlot> initWithCell(std::shared_ptr<Cell> cell);
  static std::shared_ptr<SimpleSlot> initFromPlist(const Value& plist);  // from the value's cell
  static std::shared_ptr<SimpleSlot> instanceFromPlist(const Value& plist);
  static std::shared_ptr<SimpleSlot> simpleSlotWithCell(std::shared_ptr<Cell> cell);
  static std::shared_ptr<SimpleSlot> blank();  // holds a new blank
  static std::shared_ptr<SimpleSlot> empty();  // holds a new wildcard without attributes

  // The slot as a simple one; nullptr when it is null or of another kind.
  static SimpleSlot* from(Slot* slot);
  static const SimpleSlot* from(const Slot* slot);

  Kind kind() const override { return Kind::simple; }

  const std::shared_ptr<Cell>& cell() const { return _cell; }
  void setCell(std::shared_ptr<Cell> cell) { _cell = std::move(cell); }  // shared

  const std::string* content() const;                               // the cell's
  const std::string* attributeForKey(std::string_view name) const;  // the cell's

  // A new slot whose cell overlays this slot's cell on the other's: attributes of this slot win.
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
