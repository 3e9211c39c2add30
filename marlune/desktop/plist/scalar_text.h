#ifndef MARLUNE_DESKTOP_PLIST_SCALAR_TEXT_H_
#define MARLUNE_DESKTOP_PLIST_SCALAR_TEXT_H_

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "marlune/platform/value.h"

// Numbers, dates and bytes as the XML form spells them. What is read may stand between blanks. The
// reading functions throw PropertyListError, saying what was expected and what was found.
namespace marlune {

// Decimal or, after "0x", hexadecimal, with an optional sign; in the range of 64 bits.
std::int64_t integerFromText(std::string_view text);

// Decimal with an optional exponent, or "nan", "inf", "infinity" in any case, signed or not.
double realFromText(std::string_view text);
std::string textFromReal(double number);

// "2014-03-03T10:07:05Z", with an optional fraction of which the milliseconds are kept. In seconds
// since the start of 2001. Years run from 1 to 9999.
double dateFromText(std::string_view text);
std::string textFromDate(double secondsSince2001);

// The date in whole milliseconds, as any form of list holds it; nothing outside those years.
std::optional<double> dateInRange(double secondsSince2001);

// Base64, blanks anywhere in it.
std::string bytesFromBase64(std::string_view text);
std::string base64FromBytes(std::string_view bytes);

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_PLIST_SCALAR_TEXT_H_
