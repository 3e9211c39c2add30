#ifndef MARLUNE_UTIL_FORMAT_H_
#define MARLUNE_UTIL_FORMAT_H_

#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "marlune/platform/value.h"
#include "marlune/platform/visibility.h"
#include "marlune/util/describable.h"

namespace marlune {

struct FormatPlaceholder;

// One argument of a log format: a typed reference to the caller's object. Constructing one copies
// and allocates nothing; the object is described only when a line is written. It must not outlive
// the full expression that creates it.
//
// Threads: any, while no other thread changes the referenced object.
class MARLUNE_API FormatArgument {
 public:
  FormatArgument(std::nullptr_t) {}  // absent: prints "(null)"
  // A template, so that a pointer does not convert to a boolean.
  template <std::same_as<bool> Boolean>
  FormatArgument(Boolean truth)
      : _kind(Kind::integer), _bytes(sizeof truth), _integer(truth ? 1 : 0) {}
  template <std::signed_integral Integer>
  FormatArgument(Integer number) : _kind(Kind::integer), _bytes(sizeof number), _integer(number) {}
  template <std::unsigned_integral Integer>
  requires(!std::same_as<Integer, bool>) FormatArgument(Integer number)
      : _kind(Kind::natural), _bytes(sizeof number), _natural(number) {}
  FormatArgument(double number) : _kind(Kind::real), _real(number) {}

  FormatArgument(const char* text) {
    if (text) *this = FormatArgument(std::string_view(text));
  }
  FormatArgument(std::string_view text) : _kind(Kind::text), _text(text) {}
  FormatArgument(const std::string& text) : FormatArgument(std::string_view(text)) {}
  FormatArgument(const std::optional<std::string>& text) {
    if (text) *this = FormatArgument(*text);
  }

  FormatArgument(const Describable* object) {
    if (object) *this = FormatArgument(*object);
  }
  FormatArgument(const Describable& object) : FormatArgument(object, &_appendDescription) {}
  template <std::derived_from<Describable> Object>
  FormatArgument(const std::shared_ptr<Object>& object) : FormatArgument(object.get()) {}

  FormatArgument(const Value& value) : FormatArgument(value, &_appendValue) {}
  FormatArgument(const std::vector<std::string>& words) : FormatArgument(words, &_appendWords) {}
  template <typename Object>
  requires std::derived_from<std::remove_const_t<Object>, Describable> FormatArgument(
      const std::vector<std::shared_ptr<Object>>& objects)
      : FormatArgument(objects, &_appendObjects<Object>) {}
  FormatArgument(const std::vector<std::int32_t>& numbers)
      : FormatArgument(numbers, &_appendNumbers) {}

  // Appends the text that "%@" shows for the argument.
  void appendTo(std::string& text) const;

  // Appends the text that the placeholder shows. A placeholder for another kind of argument shows
  // the same as "%@", with its own width and precision.
  void appendTo(std::string& text, const FormatPlaceholder& placeholder) const;

  // The value of a width or precision given as "*": the integer, clamped to the range of int; 0 for
  // any other kind.
  int asNumber() const;

 private:
  bool _appendNumber(std::string& text, const FormatPlaceholder& placeholder) const;

  enum class Kind : unsigned char { absent, integer, natural, real, text, object };
  using Append = void (*)(std::string& text, const void* object);

  template <typename Object>
  FormatArgument(const Object& object, Append append)
      : _kind(Kind::object), _object{&object, append} {}

  static void _appendDescription(std::string& text, const void* object);
  static void _appendValue(std::string& text, const void* object);
  static void _appendWords(std::string& text, const void* object);
  static void _appendNumbers(std::string& text, const void* object);
  static void _appendList(std::string& text, const std::vector<std::string>& descriptions);
  template <typename Object>
  static void _appendObjects(std::string& text, const void* object) {
    std::vector<std::string> descriptions;
    for (const auto& each : *static_cast<const std::vector<std::shared_ptr<Object>>*>(object)) {
      descriptions.push_back(each ? each->description() : "(null)");
    }
    _appendList(text, descriptions);
  }

  struct Object {
    const void* object;
    Append append;
  };
  Kind _kind = Kind::absent;
  unsigned char _bytes = 0;  // the size of the integer's own type
  union {
    std::int64_t _integer = 0;
    std::uint64_t _natural;
    double _real;
    std::string_view _text;
    Object _object;
  };
};

// `format` with each placeholder replaced by the next argument. "%@" shows an argument of any type.
// The other placeholders are those of the C library, with its flags, widths, precisions ("*" as
// well) and lengths, and give the same text: "%d", "%i", "%u", "%o", "%x", "%X" and "%c" for
// integers, "%f", "%e", "%g", "%a" and their capitals for reals, "%s" for text; "%%" gives "%".
//
// The argument's own type always counts. Only "h" and "hh" truncate an integer to the placeholder's
// size. A placeholder for another kind of argument, or one not listed here, shows the same as "%@",
// with its width and precision. A placeholder without an argument prints "(null)"; a surplus
// argument is ignored. An unfinished placeholder at the end is copied unchanged. A width or
// precision is at most 100,000.
//
// A dictionary or array prints as an old-style property list: "{\n    key = value;\n}" and "(\n
// one,\n    two\n)", nested ones indented by four more blanks. Text inside it is quoted unless it
// consists only of ASCII letters, digits and "_".
MARLUNE_API std::string formatted(std::string_view format,
                                  std::initializer_list<FormatArgument> arguments);

}  // namespace marlune

#endif  // MARLUNE_UTIL_FORMAT_H_
