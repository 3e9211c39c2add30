#ifndef MARLUNE_DESKTOP_TEXT_NORMAL_FORM_H_
#define MARLUNE_DESKTOP_TEXT_NORMAL_FORM_H_

#include <string>
#include <string_view>

#include "marlune/platform/visibility.h"

namespace marlune {

// UTF-8 text in Unicode normal form C (NFC): a letter and its marks form one character if such a
// character exists. Text that is not valid UTF-8 is returned unchanged. Takes O(n log n) time for
// any text, including long runs of marks. If the library that composes cannot be loaded, one line
// is logged and every text is returned unchanged. Threads: any, at any time.
MARLUNE_API std::string inNormalFormC(std::string_view text);

// The same for two texts that differ only by case. Text that is longer than 255 bytes or not valid
// UTF-8 is returned unchanged. Threads: any, at any time.
MARLUNE_API std::string inOneCase(std::string_view text);

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_TEXT_NORMAL_FORM_H_
