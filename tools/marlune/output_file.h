#ifndef MARLUNE_TOOLS_MARLUNE_OUTPUT_FILE_H_
#define MARLUNE_TOOLS_MARLUNE_OUTPUT_FILE_H_

#include <string>

#include "marlune/platform/resource_bundle.h"

namespace marlune::tool {

// Throws InputError when no sound can be rendered to `path`: another ending than those of sound
// files, no folder or one that cannot be written to, or a recording of the voice under any name.
void requireUsableOutput(const std::string& path, const ResourceBundle& recordings);

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_OUTPUT_FILE_H_
