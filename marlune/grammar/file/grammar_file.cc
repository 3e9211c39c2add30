#include "marlune/grammar/file/grammar_file.h"

#include <map>
#include <new>

#include "marlune/grammar/file/grammar_loader.h"

namespace marlune {

Result<GrammarFile*> GrammarFile::atPath(const std::string& path) {
  // Locked while the file is read, so that concurrent parsers read it only once.
  const std::lock_guard lock(making());
  // Never destroyed, since parsers share the files. Each path is read only once.
  static auto* const kFiles = new std::map<std::string, GrammarFile>;
  const auto known = kFiles->find(path);
  if (known != kFiles->end()) return &known->second;
  Result<Value> tree = GrammarLoader::treeOfFile(path);
  if (!tree.succeeded()) return tree.failure();
  return &kFiles->try_emplace(path, std::move(tree.value())).first->second;
}

std::recursive_mutex& GrammarFile::making() {
  static auto* const kMutex = new std::recursive_mutex;  // never destroyed, like the files
  return *kMutex;
}

const Value& GrammarFile::tree() {
  const std::lock_guard lock(_mutex);
  const Value& tree = _unpacked();
  _isGivenOut = true;
  return tree;
}

const Value& GrammarFile::opened() {
  const std::lock_guard lock(_mutex);
  return _unpacked();
}

std::shared_ptr<const PackedList> GrammarFile::putAway(std::shared_ptr<const Vocabulary> known) {
  const std::lock_guard lock(_mutex);
  if (_isGivenOut) return nullptr;
  try {
    if (!_packed || _isChanged) {
      auto packed = PackedList::pack(_unpacked(), std::move(known));
      if (!packed) {
        _isGivenOut = true;
        return nullptr;
      }
      _packed = std::move(packed);
      _isChanged = false;
    }
    _tree = Value();
    return _packed;
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

const Value& GrammarFile::_unpacked() {
  if (_tree.isAbsent()) _tree = _packed->unpacked();
  return _tree;
}

}  // namespace marlune
