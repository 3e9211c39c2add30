#ifndef MARLUNE_DECOMPOSE_DECOMPOSITION_MEMO_H_
#define MARLUNE_DECOMPOSE_DECOMPOSITION_MEMO_H_

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "marlune/decompose/decomposition.h"

namespace marlune {

// Everything known about decomposition keys, in one table: which keys name a recording, and the
// answers found for them, including failures. Only grows.
//
// An entry is a few numbers. Its key is a slice of a text shared with the phrase's other stretches;
// a split refers to the entries of its two halves. Lists are built when they are returned.
class DecompositionMemo {
 public:
  // Identifies an entry for the memo's lifetime; 0 means no entry.
  using Id = std::uint32_t;

  // A key with its hash (key_hash::ofText of the whole key).
  struct Key {
    std::string_view text;
    std::uint64_t hash;
  };

  enum class State : std::uint8_t {
    open,      // no answer remembered
    failed,    // remembered: cannot be said
    recorded,  // said by one recording, whose entry is `first`
    split,     // said by `first`, then `second`
    given      // said by a list from outside
  };

  // Marks the names as recordings, and reserves room for as many other keys so that the table does
  // not grow during the first phrases. REQUIRES: the texts outlive the memo.
  void addRecordings(std::span<const std::string> names);

  // The recording whose name is the key without brackets and the text between them; 0 when there is
  // none, or the key has no brackets.
  Id recordingWithoutBrackets(std::string_view key);

  // The entry of the key. If there is none, `findOrAdd` adds an open one, which refers to the key's
  // text. REQUIRES for `findOrAdd`: the text outlives the memo (see `keep`).
  Id find(const Key& key) const;
  Id findOrAdd(const Key& key);

  // The same for many keys; prefetches their slots first. `ids` has room for one entry per key.
  void findOrAdd(std::span<const Key> keys, Id* ids);

  // A copy of the text that lives as long as the memo.
  const char* keep(std::string_view text);

  State state(Id id) const { return static_cast<State>(_entry(id).state); }
  bool isRecording(Id id) const { return id != 0 && _entry(id).isRecording; }
  std::uint32_t fileCount(Id id) const { return _entry(id).fileCount; }  // 0 when failed
  std::string_view text(Id id) const { return {_entry(id).text, _entry(id).length}; }

  // Store the answer of an open entry.
  void answerWithFailure(Id id) { _setAnswer(_entry(id), _answer(State::failed)); }
  void answerWithRecording(Id id, Id recording) {
    _setAnswer(_entry(id), _answer(State::recorded, 1, recording));
  }
  void answerWithSplit(Id id, Id first, Id second, std::uint32_t files) {
    _setAnswer(_entry(id), _answer(State::split, files, first, second));
  }

  // Store the answer found for the key, whose entry was `id` when the search began. Return the
  // entry that holds the answer now. This is `id`, unless the key was answered during the search:
  // then the last answer replaces the earlier one for the key, and the earlier entry joins
  // `superseded`. Splits found with the earlier entry still refer to it.
  Id rememberFailure(Id id, const Key& key);
  Id rememberRecording(Id id, const Key& key, Id recording);
  Id rememberSplit(Id id, const Key& key, Id first, Id second);
  Id rememberGiven(Id id, const Key& key, Decomposition files);
  const std::vector<Id>& superseded() const { return _superseded; }

  // The remembered answer; null when failed. Builds a new list, except for one from outside.
  // REQUIRES: the entry is not open.
  Decomposition decomposition(Id id) const;

  // Calls `visit` for every remembered key and its entry, in no particular order.
  void forEachRemembered(const std::function<void(std::string_view key, Id id)>& visit) const;

 private:
  struct Entry {
    const char* text = nullptr;
    std::uint32_t length = 0;
    Id first = 0;  // or the index in _given of a list from outside
    Id second = 0;
    std::uint32_t fileCount : 28 = 0;
    std::uint32_t state : 3 = 0;
    std::uint32_t isRecording : 1 = 0;
  };
  static constexpr std::uint32_t kMostFiles = (1u << 28) - 1;
  // Part of the hash is stored with the entry's number, so that most misses end here.
  struct Slot {
    std::uint32_t tag = 0;
    Id id = 0;
  };

  // Entries are stored in blocks: the memo grows without moving them or allocating twice its size.
  static constexpr std::size_t kBlock = 128;
  const Entry& _entry(Id id) const { return _blocks[id / kBlock][id % kBlock]; }
  Entry& _entry(Id id) { return _blocks[id / kBlock][id % kBlock]; }
  Id _add(const Entry& entry);

  static std::uint32_t _tag(std::uint64_t hash);
  // The key's slot, or the free slot in which to put it.
  std::size_t _slotOf(std::string_view text, std::uint32_t tag) const;
  std::size_t _slotOf(const Key& key) const { return _slotOf(key.text, _tag(key.hash)); }
  Id _addAt(std::size_t slot, std::string_view text, std::uint32_t tag);
  void _makeRoomFor(std::size_t keys);
  void _makeTextBlock(std::size_t size);
  static Entry _answer(State state, std::uint32_t files = 0, Id first = 0, Id second = 0) {
    Entry answer;
    answer.first = first;
    answer.second = second;
    answer.fileCount = files & kMostFiles;
    answer.state = static_cast<std::uint32_t>(state) & 7u;
    return answer;
  }
  static void _setAnswer(Entry& entry, const Entry& answer) {
    entry.first = answer.first;
    entry.second = answer.second;
    entry.fileCount = answer.fileCount;
    entry.state = answer.state;
  }
  Id _remember(Id id, const Key& key, const Entry& answer);
  Id _supersede(const Key& key, const Entry& answer);
  std::vector<std::string> _files(const Entry& answer) const;

  std::vector<std::unique_ptr<Entry[]>> _blocks;
  std::size_t _entryCount = 1;                       // entry 0 means none and is never read
  std::vector<Slot> _slots = std::vector<Slot>(16);  // a power of two, at most half used
  std::size_t _used = 0;
  std::vector<Decomposition> _given;
  std::vector<Id> _superseded;
  std::vector<std::unique_ptr<char[]>> _texts;
  char* _freeText = nullptr;
  std::size_t _freeTextSize = 0;
  std::size_t _longestRecording = 0;  // in bytes
  std::string _stripped;
};

}  // namespace marlune

#endif  // MARLUNE_DECOMPOSE_DECOMPOSITION_MEMO_H_
