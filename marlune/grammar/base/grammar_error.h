#ifndef MARLUNE_GRAMMAR_BASE_GRAMMAR_ERROR_H_
#define MARLUNE_GRAMMAR_BASE_GRAMMAR_ERROR_H_

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "marlune/platform/visibility.h"

namespace marlune {

// Why a grammar cannot be loaded: a place in the file and the cause. The only exception that
// loading a grammar throws, apart from std::bad_alloc.
class MARLUNE_API GrammarError : public std::runtime_error {
 public:
  // `place` is a path such as "Main.Units._rhs[1]": keys joined by ".", positions in arrays from 0.
  // It may be empty until `within` has completed it.
  GrammarError(std::string place, std::string reason)
      : std::runtime_error(_message(place, reason)),
        _place(std::move(place)),
        _reason(std::move(reason)) {}

  const std::string& place() const { return _place; }
  const std::string& reason() const { return _reason; }

  // Returns the result of `read`. Adds `key`, or the array position, to the front of the place of a
  // GrammarError thrown by it: each reader adds the position in its own container, which builds the
  // whole path.
  template <typename Read>
  static auto within(std::string_view key, Read read) {
    return _within([key] { return std::string(key); }, std::move(read));
  }
  template <typename Read>
  static auto within(std::size_t position, Read read) {
    return _within([position] { return "[" + std::to_string(position) + "]"; }, std::move(read));
  }

 private:
  static std::string _message(const std::string& place, const std::string& reason) {
    return place.empty() ? reason : place + ": " + reason;
  }

  template <typename Piece, typename Read>
  static auto _within(Piece piece, Read read) {
    try {
      return read();
    } catch (const GrammarError& error) {
      const bool joinsDirectly = error._place.empty() || error._place.front() == '[';
      throw GrammarError(piece() + (joinsDirectly ? "" : ".") + error._place, error._reason);
    }
  }

  std::string _place;
  std::string _reason;
};

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_BASE_GRAMMAR_ERROR_H_
