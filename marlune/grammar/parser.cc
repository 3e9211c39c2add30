#include "marlune/grammar/parser.h"

#include <map>
#include <stdexcept>

#include "marlune/grammar/compiled_grammar.h"
#include "marlune/grammar/grammar_error.h"
#include "marlune/grammar/grammar_loader.h"
#include "marlune/util/tq_utils.h"

namespace marlune {

Parser::Parser() = default;
Parser::~Parser() = default;

std::unique_ptr<Parser> Parser::initWithPlistAtPath(const std::string& path,
                                                    std::optional<std::string_view> grammar) {
  std::unique_ptr<Parser> parser(new Parser);
  parser->_grammarsPlist = loadGrammarsFromPlistAtPath(path);
  parser->setGrammar(grammar);
  parser->_debugging = true;
  return parser;
}

Value Parser::loadGrammarsFromPlistAtPath(const std::string& path) {
  // Never destroyed, and a path's tree never replaced: parsers share it.
  static auto* const kTrees = new std::map<std::string, Value>;
  const auto cached = kTrees->find(path);
  if (cached != kTrees->end()) return cached->second;
  Value tree = GrammarLoader::treeOfFile(path);
  if (!tree.isAbsent()) kTrees->emplace(path, tree);
  return tree;
}

bool Parser::insertStatementsFromOriginal(const Value& original, const Value& intoBranch) {
  return GrammarLoader::insertStatements(original, intoBranch);
}

Value Parser::retrievePlistForStringInDotNotation(std::optional<std::string_view> path,
                                                  const Value& from) {
  if (!path) return from;
  return GrammarLoader::valueAtPath(GrammarLoader::pieces(*path, '.'), from);
}

Value Parser::retrievePlistForPathArray(std::optional<std::span<const std::string>> path,
                                        const Value& from) {
  if (!path) return from;
  if (path->empty()) throw std::out_of_range("a path without keys");
  return GrammarLoader::valueAtPath(*path, from);
}

void Parser::setGrammar(std::optional<std::string_view> name) {
  if (!name) return;
  _theGrammar = GrammarError::within(*name, [&] {
    return GrammarPart::instanceFromPlist(
        retrievePlistForStringInDotNotation(name, _grammarsPlist));
  });
  _compiled = CompiledGrammar::compile(_theGrammar);
  TQUtils::forDefaultLog(ZKPlistNotificationDefault, "productionRules for %@: %@", *name,
                         _theGrammar);
}

std::shared_ptr<SimpleSlotSequence> Parser::resultOfRulesAppliedToStrings(
    const std::vector<std::string>& strings) const {
  if (_worksCompiled()) return _compiled->appliedToStrings(strings);
  return resultOfRulesAppliedTo(*SimpleSlotSequence::blankBufferedSlotSequenceWithStrings(strings));
}

std::shared_ptr<SimpleSlotSequence> Parser::resultOfRulesAppliedTo(
    const SimpleSlotSequence& phrase) const {
  if (_worksCompiled()) return _compiled->appliedTo(phrase);
  return _theGrammar ? _theGrammar->appliedTo(phrase) : nullptr;
}

// The compiled grammar skips what only the trace would show.
bool Parser::_worksCompiled() const {
  return _compiled && !TQUtils::isWantedForDefault(ZKPlistNotificationDefault);
}

}  // namespace marlune
