#ifndef MARLUNE_BENCH_SUPPORT_ELEMENT_COUNT_H_
#define MARLUNE_BENCH_SUPPORT_ELEMENT_COUNT_H_

#include <expat.h>

#include <cstddef>
#include <string_view>

namespace marlune {

// The yardstick for reading a property list: only the XML library, counting elements.
inline std::size_t elementCount(std::string_view bytes) {
  std::size_t elements = 0;
  const XML_Parser parser = XML_ParserCreate(nullptr);
  XML_SetUserData(parser, &elements);
  XML_SetStartElementHandler(parser, [](void* count, const XML_Char*, const XML_Char**) {
    ++*static_cast<std::size_t*>(count);
  });
  XML_Parse(parser, bytes.data(), static_cast<int>(bytes.size()), /*isFinal=*/1);
  XML_ParserFree(parser);
  return elements;
}

}  // namespace marlune

#endif  // MARLUNE_BENCH_SUPPORT_ELEMENT_COUNT_H_
