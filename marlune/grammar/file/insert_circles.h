#ifndef MARLUNE_GRAMMAR_FILE_INSERT_CIRCLES_H_
#define MARLUNE_GRAMMAR_FILE_INSERT_CIRCLES_H_

#include <cstddef>
#include <string>
#include <unordered_map>
#include <vector>

#include "marlune/platform/value.h"

namespace marlune {

// Finds insert directives that would never end: a chunk that contains, at any depth, a directive
// that leads back to it, directly or through other chunks. Works on the tree as read, and follows
// dictionaries to their contents and directives to their chunks.
class InsertCircles {
 public:
  // The tree must not change while the object is used.
  explicit InsertCircles(const Value& root) : _root(root) {}

  // Throws a GrammarError that names the circle. A path that leads to nothing is not a circle; it
  // is reported during insertion.
  void requireNone();

 private:
  // A dictionary or directive being followed, and the progress in it.
  struct Step {
    const Value* value;
    std::string place;  // its path in the file
    std::size_t next;   // the dictionary's next entry to follow; 1 once a directive was followed
  };

  void _visit(const Value& value, std::string place);
  void _follow(std::size_t step);
  const Value* _chunkAtPath(const std::string& path, std::size_t directivesPassed) const;
  [[noreturn]] void _throwCircle(const void* start) const;

  const Value& _root;
  std::vector<Step> _steps;
  std::unordered_map<const void*, bool> _isDone;  // dictionaries and directives visited so far
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_FILE_INSERT_CIRCLES_H_
