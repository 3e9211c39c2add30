#ifndef MARLUNE_TOOLS_MARLUNE_SPEAKING_OUTPUT_FILE_H_
#define MARLUNE_TOOLS_MARLUNE_SPEAKING_OUTPUT_FILE_H_

#include <string>

#include "marlune/desktop/services/folder_bundle.h"

namespace marlune::tool {

// Throws InputError if sound cannot be rendered to `path`: the extension is not that of a sound
// file, its folder is missing or not writable, or `path` leads to one of the recordings.
void requireUsableOutput(const std::string& path, const FolderBundle& recordings);

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_SPEAKING_OUTPUT_FILE_H_
