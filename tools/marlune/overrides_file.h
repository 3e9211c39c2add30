#ifndef MARLUNE_TOOLS_MARLUNE_OVERRIDES_FILE_H_
#define MARLUNE_TOOLS_MARLUNE_OVERRIDES_FILE_H_

#include <string>

#include "marlune/decompose/decomposer_delegate.h"

namespace marlune::tool {

// What an overrides file says: by the key of a phrase ("at_the_finish[x]"), the recordings that
// are to say it; one table for whole phrases, one for parts of phrases.
struct Overrides {
  DecomposerDelegate::Overrides whole;
  DecomposerDelegate::Overrides parts;
};

// Reads a property list with two dictionaries, "whole" and "parts", either of which may be left
// out. Throws InputError with the file, the key and the cause for anything else in it, also for a
// key that no phrase can have: better than an override that silently never applies.
Overrides readOverridesFile(const std::string& path);

}  // namespace marlune::tool

#endif  // MARLUNE_TOOLS_MARLUNE_OVERRIDES_FILE_H_
