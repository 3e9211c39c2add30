#ifndef MARLUNE_TOOLS_MARLUNE_VOICE_OVERRIDES_FILE_H_
#define MARLUNE_TOOLS_MARLUNE_VOICE_OVERRIDES_FILE_H_

#include <string>

#include "marlune/decompose/decomposer_delegate.h"

namespace marlune::tool {

// The contents of an overrides file: the recordings to use for the key of a phrase, such as
// "at_the_finish[x]". One table is for whole phrases, the other for parts of phrases.
struct Overrides {
  DecomposerDelegate::Overrides whole;
  DecomposerDelegate::Overrides parts;
};

// Reads a property list with two optional dictionaries, "whole" and "parts". Throws InputError,
// with the file, the key and the cause, if the file contains anything else. That includes a key
// that no phrase can have: such an override would silently never apply.
Overrides readOverridesFile(const std::string& path);

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_VOICE_OVERRIDES_FILE_H_
