#ifndef MARLUNE_GRAMMAR_FILE_GRAMMAR_FILE_H_
#define MARLUNE_GRAMMAR_FILE_GRAMMAR_FILE_H_

#include <memory>
#include <mutex>
#include <string>
#include <utility>

#include "marlune/grammar/file/packed_list.h"
#include "marlune/platform/value.h"

namespace marlune {

// A grammar file that the process has read: its tree, inserts resolved, which is packed while no
// grammar is built from it. Once the tree has been given out it stays: whoever holds it may change
// it, and must find it the same.
class GrammarFile {
 public:
  // The file at the path, read now if it has not been; it lives as long as the process. nullptr,
  // with a line straight to the system log, when it cannot be read; GrammarError when it is broken.
  static GrammarFile* atPath(const std::string& path);

  // Held while a file is read and while a grammar is built, which writes into the file's tree: one
  // at a time in a process. Recursive, since the lines of loading go to the app's log, which may
  // make a parser itself.
  static std::recursive_mutex& making();

  explicit GrammarFile(Value tree) : _tree(std::move(tree)) {}

  // The tree, for good. On any thread.
  const Value& tree();

  // The tree, to build a grammar from, which writes into it. Holds until putAway(). REQUIRES: the
  // caller holds making() until then.
  const Value& opened();

  // What the tree was packed to, and can be made of again. nullptr when it stays: it has been given
  // out, its reader or a grammar's object holds a part of it, or memory is too short to pack it.
  std::shared_ptr<const PackedList> putAway();

 private:
  const Value& _unpacked();

  Value _tree;  // absent while it is packed
  std::shared_ptr<const PackedList> _packed;
  bool _isGivenOut = false;
  std::mutex _mutex;  // for tree(): parsers on one file may be on several threads
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_FILE_GRAMMAR_FILE_H_
