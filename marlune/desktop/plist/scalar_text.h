#ifndef MARLUNE_DESKTOP_PLIST_SCALAR_TEXT_H_
#define MARLUNE_DESKTOP_PLIST_SCALAR_TEXT_H_

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "marlune/platform/value.h"

// Conversion of numbers, dates and bytes from and to their XML form. Blanks around the text are
// ignored. The reading functions throw PropertyListError with what was expected and what was found.
namespace marlune {

// Decimal, or hexadecimal after "0x", with an optional sign; 64 bits.
std::int64_t integerFromText(std::string_view text);

// Decimal with an optional exponent, or "nan", "inf", "infinity" in any case, with an optional
// sign.
double realFromText(std::string_view text);
std::string textFromReal(double number);

// "2014-03-03T10:07:05Z", with an optional fraction, kept to the millisecond. In seconds since the
// start of 2001. Years 1 to 9999.
double dateFromText(std::string_view text);
std::string textFromDate(double secondsSince2001);

// The date rounded to milliseconds, the resolution of every form of list; nothing outside those
// years.
std::optional<double> dateInRange(double secondsSince2001);

// Base64; blanks are allowed anywhere.
std::string bytesFromBase64(std::string_view text);
std::string base64FromBytes(std::string_view bytes);

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_PLIST_SCALAR_TEXT_H_
