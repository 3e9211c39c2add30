#include "marlune/decompose/decomposition_memo.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <stdexcept>

#include "marlune/decompose/key_hash.h"

namespace marlune {

namespace {

constexpr std::size_t kTextBlock = std::size_t{16} * 1024;

template <typename Number>
Number checked(std::size_t number) {
  if (number > std::numeric_limits<Number>::max()) throw std::length_error("DecompositionMemo");
  return static_cast<Number>(number);
}

}  // namespace

void DecompositionMemo::addRecording(std::string_view name) {
  _entry(findOrAdd({name, key_hash::ofText(name)})).isRecording = true;
  _longestRecording = std::max(_longestRecording, name.size());
}

std::uint32_t DecompositionMemo::_tag(std::uint64_t hash) {
  hash ^= hash >> 32;
  return static_cast<std::uint32_t>((hash * 0xd6e8feb86659fd93u) >> 32);
}

std::size_t DecompositionMemo::_slotOf(const Key& key) const {
  const std::uint32_t tag = _tag(key.hash);
  const std::size_t mask = _slots.size() - 1;
  for (std::size_t at = tag & mask;; at = (at + 1) & mask) {
    const Slot& slot = _slots[at];
    if (slot.id == 0) return at;
    if (slot.tag == tag && text(slot.id) == key.text) return at;
  }
}

DecompositionMemo::Id DecompositionMemo::find(const Key& key) const {
  return _slots[_slotOf(key)].id;
}

DecompositionMemo::Id DecompositionMemo::findOrAdd(const Key& key) {
  std::size_t at = _slotOf(key);
  if (_slots[at].id != 0) return _slots[at].id;
  if (3 * (_used + 1) > 2 * _slots.size()) {
    _grow();
    at = _slotOf(key);
  }
  Entry entry;
  entry.text = key.text.data();
  entry.length = checked<std::uint32_t>(key.text.size());
  const Id id = _add(entry);
  _slots[at] = {_tag(key.hash), id};
  ++_used;
  return id;
}

DecompositionMemo::Id DecompositionMemo::_add(const Entry& entry) {
  const Id id = checked<Id>(_entryCount);
  if (id / kBlock == _blocks.size()) _blocks.push_back(std::make_unique<Entry[]>(kBlock));
  _entry(id) = entry;
  ++_entryCount;
  return id;
}

void DecompositionMemo::_grow() {
  std::vector<Slot> slots(2 * _slots.size());
  for (const Slot& slot : _slots) {
    if (slot.id == 0) continue;
    std::size_t at = slot.tag & (slots.size() - 1);
    while (slots[at].id != 0) at = (at + 1) & (slots.size() - 1);
    slots[at] = slot;
  }
  _slots = std::move(slots);
}

const char* DecompositionMemo::keep(std::string_view text) {
  if (text.size() > _freeTextSize) {
    const std::size_t size = std::max(text.size(), kTextBlock);
    _texts.push_back(std::make_unique<char[]>(size));
    _freeText = _texts.back().get();
    _freeTextSize = size;  // not before there is such a block
  }
  char* const kept = _freeText;
  if (!text.empty()) std::memcpy(kept, text.data(), text.size());
  _freeText += text.size();
  _freeTextSize -= text.size();
  return kept;
}

DecompositionMemo::Id DecompositionMemo::rememberFailure(Id id, const Key& key) {
  Entry answer;
  answer.state = State::failed;
  return _remember(id, key, answer);
}

DecompositionMemo::Id DecompositionMemo::rememberRecording(Id id, const Key& key, Id recording) {
  Entry answer;
  answer.state = State::recorded;
  answer.fileCount = 1;
  answer.first = recording;
  return _remember(id, key, answer);
}

DecompositionMemo::Id DecompositionMemo::rememberSplit(Id id, const Key& key, Id first, Id second) {
  Entry answer;
  answer.state = State::split;
  answer.fileCount = fileCount(first) + fileCount(second);
  answer.first = first;
  answer.second = second;
  return _remember(id, key, answer);
}

DecompositionMemo::Id DecompositionMemo::rememberGiven(Id id, const Key& key, Decomposition files) {
  Entry answer;
  answer.state = State::given;
  answer.fileCount = checked<std::uint32_t>(files->size());
  answer.list = checked<std::uint32_t>(_lists.size());
  _lists.push_back(std::move(files));
  return _remember(id, key, answer);
}

DecompositionMemo::Id DecompositionMemo::_remember(Id id, const Key& key, const Entry& answer) {
  Entry& entry = _entry(id);
  if (entry.state != State::open) return _supersede(key, answer);
  entry.fileCount = answer.fileCount;
  entry.first = answer.first;
  entry.second = answer.second;
  entry.list = answer.list;
  entry.state = answer.state;
  return id;
}

// Rare: a stretch with the very same key stood inside this one, or a delegate asked meanwhile.
DecompositionMemo::Id DecompositionMemo::_supersede(const Key& key, const Entry& answer) {
  const std::size_t at = _slotOf(key);
  const Id earlier = _slots[at].id;
  Entry entry = _entry(earlier);
  const bool bothFail = entry.state == State::failed && answer.state == State::failed;
  const bool bothSay = entry.state != State::failed && answer.state != State::failed;
  if (bothFail || (bothSay && _files(entry) == _files(answer))) return earlier;

  entry.fileCount = answer.fileCount;
  entry.first = answer.first;
  entry.second = answer.second;
  entry.list = answer.list;
  entry.state = answer.state;
  const Id id = _add(entry);
  _slots[at].id = id;
  _superseded.push_back(earlier);
  return id;
}

std::vector<std::string> DecompositionMemo::_files(const Entry& answer) const {
  std::vector<std::string> files;
  files.reserve(answer.fileCount);
  std::vector<const Entry*> pending{&answer};  // a stack: halves can be nested a phrase deep
  while (!pending.empty()) {
    const Entry& entry = *pending.back();
    pending.pop_back();
    if (entry.list != 0) {
      files.insert(files.end(), _lists[entry.list]->begin(), _lists[entry.list]->end());
    } else if (entry.state == State::recorded) {
      files.emplace_back(text(entry.first));
    } else {
      pending.push_back(&_entry(entry.second));
      pending.push_back(&_entry(entry.first));
    }
  }
  return files;
}

const Decomposition& DecompositionMemo::decomposition(Id id) {
  Entry& entry = _entry(id);
  if (entry.list == 0 && entry.state != State::failed) {
    const std::uint32_t list = checked<std::uint32_t>(_lists.size());
    _lists.push_back(std::make_shared<const std::vector<std::string>>(_files(entry)));
    entry.list = list;
  }
  return _lists[entry.list];
}

void DecompositionMemo::forEachRemembered(
    const std::function<void(std::string_view key, Id id)>& visit) const {
  for (const Slot& slot : _slots) {
    if (slot.id != 0 && state(slot.id) != State::open) visit(text(slot.id), slot.id);
  }
}

}  // namespace marlune
