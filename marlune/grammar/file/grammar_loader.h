#ifndef MARLUNE_GRAMMAR_FILE_GRAMMAR_LOADER_H_
#define MARLUNE_GRAMMAR_FILE_GRAMMAR_LOADER_H_

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "marlune/platform/value.h"

namespace marlune {

// Reads a grammar file and puts the chunks that its insert directives name in their place. Works
// on one tree; Parser keeps the result.
//
// A directive copies one level of its chunk, so what is below is shared and a small file can stand
// for an enormous tree; and a chunk that inserts itself would make a ring. Circles are therefore
// looked for in the directives before anything is inserted, and the tree's size is taken as what
// it would print to, again after each pass. Nothing here works on a tree deeper than kDeepest.
class GrammarLoader {
 public:
  static constexpr std::size_t kDeepest = 256;

  // How many values the tree may print to: so many, and so many times what the file holds.
  static constexpr std::size_t kMostValues = 100000;
  static constexpr std::size_t kMostValuesPerValueRead = 16;

  // The tree of the file at `path`, inserts resolved; absent, with a line straight to the system
  // log, when it cannot be read. GrammarError for a circle, a tree too large or too deep, and what
  // is wrong with a directive.
  static Value treeOfFile(const std::string& path);

  // One pass over the branch, as Parser offers it.
  static bool insertStatements(const Value& original, const Value& intoBranch);

  // The value at the keys from the tree's root, as Parser offers it.
  static Value valueAtPath(std::span<const std::string> keys, const Value& tree);

  // Whether the value is a string that begins as an insert directive does.
  static bool isDirective(const Value& value);

  // The text cut at every `separator`; one piece at least.
  static std::vector<std::string> pieces(std::string_view text, char separator);

 private:
  explicit GrammarLoader(Value root) : _root(std::move(root)) {}

  bool _pass(const Value& branch, std::size_t depth);
  Value _chunkFor(const std::string& directive);
  std::size_t _printedValues(const Value& value, std::size_t depth);
  void _requireBounds();
  void _requireSize(std::size_t values) const;
  static void _requireDepth(std::size_t depth);

  Value _root;
  bool _mayHoldDirectives = false;  // as soon as one was seen, be it in an array
  std::size_t _mostValues = static_cast<std::size_t>(-1);

  // Both are part of what the tree prints to, so they tell early that it grows too large.
  std::size_t _valuesCopied = 0;   // by directives, in all passes
  std::size_t _valuesVisited = 0;  // in this pass
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_FILE_GRAMMAR_LOADER_H_
