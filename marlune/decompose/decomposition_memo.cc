#include "marlune/decompose/decomposition_memo.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>
#include <stdexcept>

#include "marlune/decompose/key_hash.h"
#include "marlune/util/open_addressing.h"

namespace marlune {

namespace {

// Prefetches memory that will be read soon.
void prefetch([[maybe_unused]] const void* memory) {
#if defined(__GNUC__)
  __builtin_prefetch(memory);
#endif
}

constexpr std::size_t kSmallTable = std::size_t{8} * 1024;  // slots
constexpr std::size_t kTextBlock = std::size_t{16} * 1024;

// Appends `key` without the brackets "[" and "]" and the text between them, at most `limit` bytes.
// Returns whether it fitted.
bool appendWithoutBrackets(std::string& text, std::string_view key, std::size_t limit) {
  bool inside = false;
  for (const char c : key) {
    if (c == '[' || c == ']') {
      inside = c == '[';
    } else if (!inside) {
      if (text.size() == limit) return false;
      text.push_back(c);
    }
  }
  return true;
}

std::uint32_t checked(std::size_t number, std::size_t most) {
  if (number > most) throw std::length_error("DecompositionMemo");
  return static_cast<std::uint32_t>(number);
}

constexpr std::size_t kMostEntries = std::numeric_limits<DecompositionMemo::Id>::max();
constexpr std::size_t kMostText = std::numeric_limits<std::uint32_t>::max();

}  // namespace

// Runs once: optimise it for size.
[[gnu::cold]] void DecompositionMemo::addRecordings(std::span<const std::string> names) {
  _makeRoomFor(2 * names.size());
  _makeTextBlock(kTextBlock);
  for (const std::string& name : names) {
    _entry(findOrAdd({name, key_hash::ofText(name)})).isRecording = true;
    _longestRecording = std::max(_longestRecording, name.size());
  }
}

DecompositionMemo::Id DecompositionMemo::recordingWithoutBrackets(std::string_view key) {
  _stripped.clear();
  if (!appendWithoutBrackets(_stripped, key, _longestRecording)) return 0;
  if (_stripped.size() == key.size()) return 0;  // no brackets
  const Id id = find({_stripped, key_hash::ofText(_stripped)});
  return isRecording(id) ? id : 0;
}

std::uint32_t DecompositionMemo::_tag(std::uint64_t hash) {
  hash ^= hash >> 32;
  return static_cast<std::uint32_t>((hash * 0xd6e8feb86659fd93u) >> 32);
}

std::size_t DecompositionMemo::_slotOf(std::string_view key, std::uint32_t tag) const {
  return slotFor(tag, _slots.size(), [&](std::size_t at) {
    const Slot& slot = _slots[at];
    return slot.id == 0 || (slot.tag == tag && text(slot.id) == key);
  });
}

DecompositionMemo::Id DecompositionMemo::find(const Key& key) const {
  return _slots[_slotOf(key)].id;
}

DecompositionMemo::Id DecompositionMemo::findOrAdd(const Key& key) {
  _makeRoomFor(1);
  const std::size_t at = _slotOf(key);
  return _slots[at].id != 0 ? _slots[at].id : _addAt(at, key.text, _tag(key.hash));
}

void DecompositionMemo::findOrAdd(std::span<const Key> keys, Id* ids) {
  _makeRoomFor(keys.size());
  const std::size_t mask = _slots.size() - 1;
  for (std::size_t i = 0; i < keys.size(); ++i) {
    const std::uint32_t tag = _tag(keys[i].hash);
    prefetch(&_slots[tag & mask]);
    ids[i] = tag;  // holds the tag until the second loop
  }
  for (std::size_t i = 0; i < keys.size(); ++i) {
    const std::uint32_t tag = ids[i];
    const std::size_t at = _slotOf(keys[i].text, tag);
    ids[i] = _slots[at].id != 0 ? _slots[at].id : _addAt(at, keys[i].text, tag);
  }
}

DecompositionMemo::Id DecompositionMemo::_addAt(std::size_t slot, std::string_view text,
                                                std::uint32_t tag) {
  Entry entry;
  entry.text = text.data();
  entry.length = checked(text.size(), kMostText);
  const Id id = _add(entry);
  _slots[slot] = {tag, id};
  ++_used;
  return id;
}

DecompositionMemo::Id DecompositionMemo::_add(const Entry& entry) {
  const Id id = checked(_entryCount, kMostEntries);
  if (id / kBlock == _blocks.size()) _blocks.push_back(std::make_unique<Entry[]>(kBlock));
  _entry(id) = entry;
  ++_entryCount;
  return id;
}

void DecompositionMemo::_makeRoomFor(std::size_t keys) {
  if (2 * (_used + keys) <= _slots.size()) [[likely]]
    return;
  // A small table grows by a larger factor: this costs little memory and saves most of the
  // rehashing.
  const std::size_t room = _slots.size() <= kSmallTable ? 4 : 2;
  std::vector<Slot> slots(std::bit_ceil(room * (_used + keys)));
  // Compacts the used slots first, because slot occupancy is unpredictable to the branch predictor.
  std::size_t used = 0;
  for (const Slot& slot : _slots) {
    _slots[used] = slot;
    used += slot.id != 0;
  }
  for (std::size_t i = 0; i < used; ++i) {
    const std::size_t at =
        slotFor(_slots[i].tag, slots.size(), [&](std::size_t slot) { return slots[slot].id == 0; });
    slots[at] = _slots[i];
  }
  _slots = std::move(slots);
}

void DecompositionMemo::_makeTextBlock(std::size_t size) {
  _texts.push_back(std::make_unique<char[]>(size));
  _freeText = _texts.back().get();
  _freeTextSize = size;  // only once the block exists
}

const char* DecompositionMemo::keep(std::string_view text) {
  if (text.size() > _freeTextSize) _makeTextBlock(std::max(text.size(), kTextBlock));
  char* const kept = _freeText;
  if (!text.empty()) std::memcpy(kept, text.data(), text.size());
  _freeText += text.size();
  _freeTextSize -= text.size();
  return kept;
}

DecompositionMemo::Id DecompositionMemo::rememberFailure(Id id, const Key& key) {
  return _remember(id, key, _answer(State::failed));
}

DecompositionMemo::Id DecompositionMemo::rememberRecording(Id id, const Key& key, Id recording) {
  return _remember(id, key, _answer(State::recorded, 1, recording));
}

DecompositionMemo::Id DecompositionMemo::rememberSplit(Id id, const Key& key, Id first, Id second) {
  const std::size_t files = std::size_t{fileCount(first)} + fileCount(second);
  return _remember(id, key, _answer(State::split, checked(files, kMostFiles), first, second));
}

DecompositionMemo::Id DecompositionMemo::rememberGiven(Id id, const Key& key, Decomposition files) {
  const std::uint32_t count = checked(files->size(), kMostFiles);
  const Id place = checked(_given.size(), kMostEntries);
  _given.push_back(std::move(files));
  return _remember(id, key, _answer(State::given, count, place));
}

DecompositionMemo::Id DecompositionMemo::_remember(Id id, const Key& key, const Entry& answer) {
  if (state(id) != State::open) return _supersede(key, answer);
  _setAnswer(_entry(id), answer);
  return id;
}

// Rare: this stretch contained another with the same key, or a delegate called the decomposer.
[[gnu::cold]] DecompositionMemo::Id DecompositionMemo::_supersede(const Key& key,
                                                                  const Entry& answer) {
  const std::size_t at = _slotOf(key);
  const Id earlier = _slots[at].id;
  Entry entry = _entry(earlier);
  const bool wasSaid = state(earlier) != State::failed;
  const bool isSaid = answer.state != static_cast<std::uint32_t>(State::failed);
  if (wasSaid == isSaid && (!isSaid || _files(entry) == _files(answer))) return earlier;

  _setAnswer(entry, answer);
  _superseded.reserve(_superseded.size() + 1);
  const Id id = _add(entry);
  _slots[at].id = id;
  _superseded.push_back(earlier);
  return id;
}

// Once per new phrase: optimise it for size.
[[gnu::cold]] std::vector<std::string> DecompositionMemo::_files(const Entry& answer) const {
  std::vector<std::string> files;
  files.reserve(answer.fileCount);
  std::vector<const Entry*> pending{&answer};  // a stack: halves nest up to a phrase deep
  while (!pending.empty()) {
    const Entry& entry = *pending.back();
    pending.pop_back();
    switch (static_cast<State>(entry.state)) {
      case State::given: {
        const std::vector<std::string>& given = *_given[entry.first];
        files.insert(files.end(), given.begin(), given.end());
        break;
      }
      case State::recorded:
        files.emplace_back(text(entry.first));
        break;
      default:
        pending.push_back(&_entry(entry.second));
        pending.push_back(&_entry(entry.first));
    }
  }
  return files;
}

Decomposition DecompositionMemo::decomposition(Id id) const {
  const Entry& entry = _entry(id);
  if (state(id) == State::failed) return nullptr;
  if (state(id) == State::given) return _given[entry.first];
  return std::make_shared<const std::vector<std::string>>(_files(entry));
}

void DecompositionMemo::forEachRemembered(
    const std::function<void(std::string_view key, Id id)>& visit) const {
  for (const Slot& slot : _slots) {
    if (slot.id != 0 && state(slot.id) != State::open) visit(text(slot.id), slot.id);
  }
}

}  // namespace marlune
