#include "marlune/grammar/file/grammar_file.h"

#include <map>
#include <new>

#include "marlune/grammar/file/grammar_loader.h"

namespace marlune {

GrammarFile* GrammarFile::atPath(const std::string& path) {
  // Held while the file is read, so that parsers made at once read it once.
  const std::lock_guard lock(making());
  // Never destroyed, and a path's file is never read again: parsers share it.
  static auto* const kFiles = new std::map<std::string, GrammarFile>;
  const auto known = kFiles->find(path);
  if (known != kFiles->end()) return &known->second;
  Value tree = GrammarLoader::treeOfFile(path);
  if (tree.isAbsent()) return nullptr;
  return &kFiles->try_emplace(path, std::move(tree)).first->second;
}

std::recursive_mutex& GrammarFile::making() {
  static auto* const kMutex = new std::recursive_mutex;  // never destroyed, as the files
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

std::shared_ptr<const PackedList> GrammarFile::putAway() {
  const std::lock_guard lock(_mutex);
  if (_isGivenOut) return nullptr;
  if (_tree.isAbsent()) return _packed;
  try {
    auto packed = PackedList::pack(_tree);
    if (!packed) {
      _isGivenOut = true;
      return nullptr;
    }
    // Grammars built one after the other leave the same tree, if it is the same grammar.
    if (!_packed || !_packed->equals(*packed)) _packed = std::move(packed);
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
