#include "marlune/desktop/plist/text_pool.h"

#include <utility>

#include "marlune/util/open_addressing.h"
#include "marlune/util/text_hash.h"

namespace marlune {

namespace {

// If a file is crafted so that its texts collide, they are no longer shared, but reading stays
// fast.
constexpr std::size_t kMostProbes = 24;

}  // namespace

std::shared_ptr<const std::string> TextPool::textFor(std::string_view text) {
  if (text.size() > kLongestShared) return _made(text);
  const std::size_t hash = textHash(text);
  Slot* slot = _slotFor(text, hash);
  if (!slot) return _made(text);
  if (slot->text) return slot->text;
  *slot = Slot{_made(text), hash};
  std::shared_ptr<const std::string> made = slot->text;
  if (++_used * 4 > _slots.size() * 3) _grow();
  return made;
}

std::shared_ptr<const std::string> TextPool::_made(std::string_view text) {
  _budget.take(MemoryBudget::costOfText(text.size()));
  return std::make_shared<const std::string>(text);
}

// The slot that contains `text` or is free for it; nullptr if too many other texts occupy its probe
// sequence.
TextPool::Slot* TextPool::_slotFor(std::string_view text, std::size_t hash) {
  std::size_t probes = 0;
  const std::size_t at = slotFor(hash, _slots.size(), [&](std::size_t each) {
    const Slot& slot = _slots[each];
    return !slot.text || (slot.hash == hash && *slot.text == text) || ++probes == kMostProbes;
  });
  return probes == kMostProbes ? nullptr : &_slots[at];
}

void TextPool::_grow() {
  const std::size_t formerBytes = _slots.size() * sizeof(Slot);
  _budget.take(2 * formerBytes);
  std::vector<Slot> old = std::exchange(_slots, std::vector<Slot>(_slots.size() * 2));
  _used = 0;
  for (Slot& each : old) {
    if (!each.text) continue;
    Slot* slot = _slotFor(*each.text, each.hash);
    if (!slot) continue;
    *slot = std::move(each);
    ++_used;
  }
  _budget.giveBack(formerBytes);
}

}  // namespace marlune
