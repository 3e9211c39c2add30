#ifndef MARLUNE_DESKTOP_TEXT_NORMAL_FORM_H_
#define MARLUNE_DESKTOP_TEXT_NORMAL_FORM_H_

#include <string>
#include <string_view>

namespace marlune {

// UTF-8 text in Unicode's normal form C (NFC): a letter and its marks are one character wherever
// there is such a character. Text that is not valid UTF-8 is returned unchanged. Takes
// O(n log n) time for any text, a long run of marks included. Threads: any, at any time.
std::string inNormalFormC(std::string_view text);

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_TEXT_NORMAL_FORM_H_
