// Uses the desktop's property lists, whose reader needs a library of its own. Succeeds when the
// file that does not exist is refused with a reason.
#include "marlune/desktop/plist/property_list_file.h"

int main() {
  const marlune::PropertyListFile reader;
  return reader.readFile("no-such-file.plist").error.empty() ? 1 : 0;
}
