#ifndef MARLUNE_GRAMMAR_FILE_INSERT_DIRECTIVE_H_
#define MARLUNE_GRAMMAR_FILE_INSERT_DIRECTIVE_H_

#include <string>
#include <string_view>
#include <vector>

#include "marlune/platform/value.h"

// How an insert directive is written: "#insert path.to.chunk", optionally followed by an order.
namespace marlune {

// Whether the value is a string that begins like an insert directive.
bool isInsertDirective(const Value& value);

// The text split at every `separator`; always at least one piece.
std::vector<std::string> piecesOf(std::string_view text, char separator);

}  // namespace marlune

#endif  // MARLUNE_GRAMMAR_FILE_INSERT_DIRECTIVE_H_
