#include "marlune/grammar/file/insert_circles.h"

#include "marlune/grammar/base/grammar_error.h"
#include "marlune/grammar/file/insert_directive.h"

namespace marlune {

namespace {

// The limit for following a path through other directives; real paths pass one or two.
constexpr std::size_t kMostDirectivesPassed = 64;

// A dictionary is identified by itself, wherever it is held; a directive by the place that holds
// it.
const void* identityOf(const Value& value) {
  if (value.asDictionary()) return value.asDictionary().get();
  return &value;
}

std::string pathOf(const Value& directive) {
  const auto parts = piecesOf(*directive.asString(), ' ');
  return parts.size() < 2 ? "" : parts[1];
}

}  // namespace

void InsertCircles::requireNone() {
  _visit(_root, "");
  while (!_steps.empty()) _follow(_steps.size() - 1);
}

void InsertCircles::_visit(const Value& value, std::string place) {
  if (!value.asDictionary() && !isInsertDirective(value)) return;
  const auto [met, isNew] = _isDone.try_emplace(identityOf(value), false);
  if (isNew) {
    _steps.push_back({&value, std::move(place), 0});
  } else if (!met->second) {
    _throwCircle(met->first);
  }
}

void InsertCircles::_follow(std::size_t step) {
  const Value& value = *_steps[step].value;
  const std::size_t next = _steps[step].next++;
  if (value.asDictionary() && next < value.asDictionary()->count()) {
    const auto& [key, nested] = value.asDictionary()->entries()[next];
    const std::string& place = _steps[step].place;
    _visit(nested, place.empty() ? *key : place + "." + *key);
  } else if (!value.asDictionary() && next == 0) {
    const std::string path = pathOf(value);
    if (const Value* chunk = _chunkAtPath(path, 0)) _visit(*chunk, path);
  } else {
    _isDone[identityOf(value)] = true;
    _steps.pop_back();
  }
}

const Value* InsertCircles::_chunkAtPath(const std::string& path,
                                         std::size_t directivesPassed) const {
  const Value* found = &_root;
  for (const std::string& key : piecesOf(path, '.')) {
    // By the time of the actual look-up, the directive may have been replaced by its chunk.
    while (found && isInsertDirective(*found)) {
      if (++directivesPassed > kMostDirectivesPassed) return nullptr;
      found = _chunkAtPath(pathOf(*found), directivesPassed);
    }
    if (!found || !found->asDictionary()) return nullptr;
    found = &found->asDictionary()->valueForKey(key);
  }
  return found;
}

void InsertCircles::_throwCircle(const void* start) const {
  std::size_t first = _steps.size();
  while (identityOf(*_steps[--first].value) != start) continue;
  std::string place;
  std::string circle;
  for (std::size_t i = first; i < _steps.size(); ++i) {
    if (_steps[i].value->asDictionary()) continue;
    if (circle.empty()) {
      place = _steps[i].place;
    } else {
      circle += ", ";
    }
    circle += _steps[i].place + " inserts " + pathOf(*_steps[i].value);
  }
  throw GrammarError(place, "inserts go in a circle: " + circle);
}

}  // namespace marlune
