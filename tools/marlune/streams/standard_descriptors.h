#ifndef MARLUNE_TOOLS_MARLUNE_STREAMS_STANDARD_DESCRIPTORS_H_
#define MARLUNE_TOOLS_MARLUNE_STREAMS_STANDARD_DESCRIPTORS_H_

namespace marlune::tool {

// Opens each of the descriptors 0, 1 and 2 that is closed when the process starts, so that no file
// opened later gets that number and is mistaken for a standard stream. Reading from or writing to
// such a descriptor still fails with "bad file descriptor". Call it first.
void occupyStandardDescriptors();

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_STREAMS_STANDARD_DESCRIPTORS_H_
