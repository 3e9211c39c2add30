#ifndef MARLUNE_PLATFORM_FAILURE_H_
#define MARLUNE_PLATFORM_FAILURE_H_

#include <string>
#include <utility>
#include <variant>

#include "marlune/platform/visibility.h"

namespace marlune {

// Why something failed.
struct MARLUNE_API Failure {
  enum class Kind {
    unreadable,   // a file that does not exist or cannot be read
    malformed,    // a file that can be read and is not what it should be; the message has the place
    unknownName,  // a name that selects nothing; the message has similar ones
    unwritable,   // a file that cannot be written
    unavailable,  // a library, server or device that is missing, gone or refuses its service
    tooLarge,     // a limit of this library is exceeded
    endless,      // a repetition that would not end was stopped
  };

  static Failure unreadable(std::string message) { return {Kind::unreadable, std::move(message)}; }
  static Failure malformed(std::string message) { return {Kind::malformed, std::move(message)}; }
  static Failure unwritable(std::string message) { return {Kind::unwritable, std::move(message)}; }
  static Failure unavailable(std::string message) {
    return {Kind::unavailable, std::move(message)};
  }

  Kind kind = Kind::unreadable;
  // For people. A sentence without a full stop, unless the function that returns it says otherwise.
  // Names in it are as they were given.
  std::string message;

  bool operator==(const Failure&) const = default;
};

// A value, or the failure to get one. Where there is no value to give, functions return an
// std::optional<Failure>.
template <typename Answer>
class Result {
 public:
  Result(Answer value) : _content(std::in_place_index<0>, std::move(value)) {}
  Result(Failure failure) : _content(std::in_place_index<1>, std::move(failure)) {}

  bool succeeded() const { return _content.index() == 0; }

  // REQUIRES: succeeded().
  Answer& value() { return std::get<0>(_content); }
  const Answer& value() const { return std::get<0>(_content); }

  // REQUIRES: not succeeded().
  const Failure& failure() const { return std::get<1>(_content); }

 private:
  std::variant<Answer, Failure> _content;
};

}  // namespace marlune

#endif  // MARLUNE_PLATFORM_FAILURE_H_
