#ifndef MARLUNE_GRAMMAR_FILE_GRAMMAR_FILE_H_
#define MARLUNE_GRAMMAR_FILE_GRAMMAR_FILE_H_

#include <memory>
#include <mutex>
#include <string>
#include <utility>

#include "marlune/grammar/file/packed_list.h"
#include "marlune/platform/failure.h"
#include "marlune/platform/value.h"

namespace marlune {

// A grammar file that the process has read: its tree with inserts resolved, which is packed except
// while a grammar is built from it. Once the tree has been handed out it stays in memory, because
// its holders may change it and must see their changes.
class GrammarFile {
 public:
  // The file at the path, read if it has not been read before; it lives as long as the process.
  // When it cannot be read, writes a line straight to the system log and fails. Throws GrammarError
  // when it is broken.
  static Result<GrammarFile*> atPath(const std::string& path);

  // Locked while a file is read and while a grammar is built, which writes into the file's tree:
  // one at a time in the process. Recursive, because the lines of loading go to the app's log,
  // which may create a parser.
  static std::recursive_mutex& making();

  explicit GrammarFile(Value tree) : _tree(std::move(tree)) {}

  // The tree, kept in memory from now on. Any thread.
  const Value& tree();

  // The tree, for building a grammar, which writes into it. Valid until putAway(). REQUIRES: the
  // caller holds making() until then.
  const Value& opened();

  // To be set when the tree is changed. REQUIRES: the caller holds making().
  bool& isChanged() { return _isChanged; }

  // Drops the tree and returns its packed form, which is made anew if the tree was changed, and
  // then shares the texts of `known`. nullptr when the tree stays in memory: it has been handed
  // out, its reader or a grammar's object holds part of it, or memory is too short to pack it.
  std::shared_ptr<const PackedList> putAway(std::shared_ptr<const Vocabulary> known);

 private:
  const Value& _unpacked();

  Value _tree;  // absent while packed
  std::shared_ptr<const PackedList> _packed;
  bool _isGivenOut = false;
  bool _isChanged = false;  // since it was packed
  std::mutex _mutex;        // for tree(): several threads may have parsers on one file
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_FILE_GRAMMAR_FILE_H_
