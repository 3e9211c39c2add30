#ifndef MARLUNE_UTIL_FORMAT_PLACEHOLDER_H_
#define MARLUNE_UTIL_FORMAT_PLACEHOLDER_H_

#include <cstddef>
#include <string>
#include <string_view>

namespace marlune {

// The parts of one placeholder of a log format: "%-8.3ld" has the flag '-', the width 8, the
// precision 3, no length that counts and the conversion 'd'.
struct FormatPlaceholder {
  enum class Length : unsigned char { whole, byte, twoBytes };  // of the number that counts

  // The largest width or precision, which limits the length of the text.
  static constexpr int kLargestNumber = 100'000;

  static constexpr std::string_view kFlags = "-+ #0'";

  bool flags[kFlags.size()] = {};
  int width = 0;
  int precision = -1;  // negative: no precision
  Length length = Length::whole;
  char conversion = '\0';

  bool isSigned() const { return conversion == 'd' || conversion == 'i'; }
  bool isUnsigned() const { return std::string_view("uoxX").find(conversion) != kNone; }
  bool isReal() const { return std::string_view("fFeEgGaA").find(conversion) != kNone; }

  void setWidth(int number);  // negative: left-aligned
  void addFlag(std::size_t index) { flags[index] = true; }

  // Formats a number or a character as the C library does. REQUIRES: the conversion is of that
  // kind.
  void appendInteger(std::string& text, long long number) const;
  void appendNatural(std::string& text, unsigned long long number) const;
  void appendReal(std::string& text, double number) const;

  // Formats as "%s": cut to the precision and padded with blanks to the width, both in bytes.
  void appendText(std::string& text, std::string_view content) const;

 private:
  static constexpr std::size_t kNone = std::string_view::npos;

  template <typename Number>
  void _appendNumber(std::string& text, std::string_view type, Number number) const;
};

}  // namespace marlune

#endif  // MARLUNE_UTIL_FORMAT_PLACEHOLDER_H_
