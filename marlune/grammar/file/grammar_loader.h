#ifndef MARLUNE_GRAMMAR_FILE_GRAMMAR_LOADER_H_
#define MARLUNE_GRAMMAR_FILE_GRAMMAR_LOADER_H_

#include <cstddef>
#include <span>
#include <string>

#include "marlune/platform/failure.h"
#include "marlune/platform/value.h"

namespace marlune {

// Reads a grammar file and replaces insert directives by the chunks that they name. Works on one
// tree; Parser keeps the result.
//
// A directive copies one level of its chunk and shares everything below, so a small file can
// represent an enormous tree, and a chunk that inserts itself would create a cycle. Circles are
// therefore detected in the directives before anything is inserted, and the size of the tree is
// measured as the number of values it would print, again after each pass. No function here descends
// below kDeepest.
class GrammarLoader {
 public:
  static constexpr std::size_t kDeepest = 256;

  // The number of values that the tree may print: this many, or this multiple of the file's values
  // if that is more.
  static constexpr std::size_t kMostValues = 100000;
  static constexpr std::size_t kMostValuesPerValueRead = 16;

  // The tree of the file at `path`, inserts resolved. Fails, after a line straight to the system
  // log, when the file cannot be read. Throws GrammarError for a circle, a tree too large or too
  // deep, and an invalid directive.
  static Result<Value> treeOfFile(const std::string& path);

  // One pass over the branch, for Parser.
  static bool insertStatements(const Value& original, const Value& intoBranch);

  // The value at the keys from the tree's root, for Parser.
  static Value valueAtPath(std::span<const std::string> keys, const Value& tree);

 private:
  explicit GrammarLoader(Value root) : _root(std::move(root)) {}

  bool _pass(const Value& branch, std::size_t depth);
  Value _chunkFor(const std::string& directive);
  std::size_t _printedValues(const Value& value, std::size_t depth);
  void _requireBounds();
  void _requireSize(std::size_t values) const;
  static void _requireDepth(std::size_t depth);

  Value _root;
  bool _mayHoldDirectives = false;  // once a directive was found, even in an array
  std::size_t _mostValues = static_cast<std::size_t>(-1);

  // Both contribute to the printed size, so they reveal early that the tree grows too large.
  std::size_t _valuesCopied = 0;   // by directives, in all passes
  std::size_t _valuesVisited = 0;  // in this pass
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_FILE_GRAMMAR_LOADER_H_
