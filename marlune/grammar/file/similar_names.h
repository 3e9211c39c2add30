#ifndef MARLUNE_GRAMMAR_FILE_SIMILAR_NAMES_H_
#define MARLUNE_GRAMMAR_FILE_SIMILAR_NAMES_H_

#include <string>
#include <string_view>
#include <vector>

#include "marlune/platform/value.h"

namespace marlune {

// Names of dictionaries in the tree that were probably meant by `name`, a name in dot notation that
// selects none: up to three, the most similar first. Only its last known dictionary is searched.
// Bounded in work for names of any length.
std::vector<std::string> similarNames(std::string_view name, const Value& tree);

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_FILE_SIMILAR_NAMES_H_
