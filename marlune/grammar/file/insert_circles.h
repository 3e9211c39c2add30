#ifndef MARLUNE_GRAMMAR_FILE_INSERT_CIRCLES_H_
#define MARLUNE_GRAMMAR_FILE_INSERT_CIRCLES_H_

#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

#include "marlune/platform/value.h"

namespace marlune {

// Looks for insert directives that would go on for ever: a chunk that holds, at any depth, a
// directive that leads back to it, directly or through other chunks. Works on the tree as it was
// read, by following from dictionaries to what they hold and from directives to their chunks.
class InsertCircles {
 public:
  // The tree must stay as it is while the object is used.
  explicit InsertCircles(const Value& root) : _root(root) {}

  // Throws a GrammarError that names the circle. Paths that lead nowhere are no circle; inserting
  // finds them.
  void requireNone();

 private:
  // A dictionary or directive being followed, and how far.
  struct Step {
    const Value* value;
    std::string place;  // its path in the file
    std::size_t next;   // the entry of the dictionary to follow next; 1 when a directive was
  };

  void _visit(const Value& value, std::string place);
  void _follow(std::size_t step);
  const Value* _chunkAtPath(const std::string& path, std::size_t directivesPassed) const;
  [[noreturn]] void _throwCircle(const void* start) const;

  const Value& _root;
  std::vector<Step> _steps;
  std::unordered_map<const void*, bool> _isDone;  // dictionaries and directives met so far
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_FILE_INSERT_CIRCLES_H_
