// Uses the property-list reader, which needs another library. Succeeds if a missing file is refused
// with a reason.
#include "marlune/desktop/plist/property_list_file.h"

int main() {
  const marlune::PropertyListFile reader;
  return reader.readFile("no-such-file.plist").succeeded() ? 1 : 0;
}
