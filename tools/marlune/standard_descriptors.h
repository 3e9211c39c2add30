#ifndef MARLUNE_TOOLS_MARLUNE_STANDARD_DESCRIPTORS_H_
#define MARLUNE_TOOLS_MARLUNE_STANDARD_DESCRIPTORS_H_

namespace marlune::tool {

// Occupies those of the descriptors 0, 1 and 2 that the process was started without, so that no
// file opened later gets the number and is read as phrases or written with answers and messages.
// Reading or writing them still fails with "bad file descriptor". Call it first.
void occupyStandardDescriptors();

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_STANDARD_DESCRIPTORS_H_
