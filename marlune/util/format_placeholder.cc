#include "marlune/util/format_placeholder.h"

#include <algorithm>
#include <cstdio>

namespace marlune {

void FormatPlaceholder::setWidth(int number) {
  if (number < 0) addFlag(kFlags.find('-'));
  const int bounded = std::clamp(number, -kLargestNumber, kLargestNumber);
  width = bounded < 0 ? -bounded : bounded;
}

void FormatPlaceholder::appendInteger(std::string& text, long long number) const {
  if (length == Length::byte) number = ((number & 0xFF) ^ 0x80) - 0x80;  // the low byte, signed
  if (length == Length::twoBytes) number = static_cast<short>(number);
  _appendNumber(text, "lld", number);
}

void FormatPlaceholder::appendNatural(std::string& text, unsigned long long number) const {
  if (length == Length::byte) number = static_cast<unsigned char>(number);
  if (length == Length::twoBytes) number = static_cast<unsigned short>(number);
  const char type[] = {'l', 'l', isUnsigned() ? conversion : 'u'};
  _appendNumber(text, {type, sizeof type}, number);
}

void FormatPlaceholder::appendReal(std::string& text, double number) const {
  _appendNumber(text, {&conversion, 1}, number);
}

// Leaves the formatting to the C library: rebuilds the placeholder with the number's actual type.
template <typename Number>
void FormatPlaceholder::_appendNumber(std::string& text, std::string_view type,
                                      Number number) const {
  char format[kFlags.size() + 12] = "%";
  char* end = format + 1;
  for (std::size_t i = 0; i < kFlags.size(); ++i) {
    if (flags[i]) *end++ = kFlags[i];
  }
  for (const char c : std::string_view("*.*")) *end++ = c;
  end = std::copy(type.begin(), type.end(), end);
  *end = '\0';
  char digits[128];
  const int size = std::snprintf(digits, sizeof digits, format, width, precision, number);
  if (size < 0) return;
  const auto length = static_cast<std::size_t>(size);
  if (length < sizeof digits) {
    text.append(digits, length);
    return;
  }
  const std::size_t start = text.size();
  text.resize(start + length + 1);
  std::snprintf(text.data() + start, length + 1, format, width, precision, number);
  text.pop_back();
}

void FormatPlaceholder::appendText(std::string& text, std::string_view content) const {
  if (precision >= 0) content = content.substr(0, static_cast<std::size_t>(precision));
  const auto wide = static_cast<std::size_t>(width);
  const std::size_t blanks = wide > content.size() ? wide - content.size() : 0;
  const bool isLeft = flags[kFlags.find('-')];
  if (!isLeft) text.append(blanks, ' ');
  text += content;
  if (isLeft) text.append(blanks, ' ');
}

}  // namespace marlune
