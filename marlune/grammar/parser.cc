#include "marlune/grammar/parser.h"

#include <mutex>
#include <stdexcept>
#include <utility>

#include "marlune/grammar/base/grammar_error.h"
#include "marlune/grammar/compiled/grammar.h"
#include "marlune/grammar/file/grammar_file.h"
#include "marlune/grammar/file/grammar_loader.h"
#include "marlune/grammar/file/insert_directive.h"
#include "marlune/grammar/file/similar_names.h"
#include "marlune/grammar/model/rewriting_fault.h"
#include "marlune/util/tq_utils.h"

namespace marlune {

Parser::Parser() = default;
Parser::~Parser() = default;

std::unique_ptr<Parser> Parser::initWithPlistAtPath(const std::string& path,
                                                    std::optional<std::string_view> grammar) {
  std::unique_ptr<Parser> parser(new Parser);
  const Result<GrammarFile*> file = GrammarFile::atPath(path);
  if (file.succeeded()) {
    parser->_file = file.value();
  } else {
    parser->_failure = file.failure();
  }
  parser->setGrammar(grammar);
  parser->_debugging = true;
  return parser;
}

Value Parser::loadGrammarsFromPlistAtPath(const std::string& path) {
  const Result<GrammarFile*> file = GrammarFile::atPath(path);
  return file.succeeded() ? file.value()->tree() : Value();
}

bool Parser::insertStatementsFromOriginal(const Value& original, const Value& intoBranch) {
  return GrammarLoader::insertStatements(original, intoBranch);
}

Value Parser::retrievePlistForStringInDotNotation(std::optional<std::string_view> path,
                                                  const Value& from) {
  if (!path) return from;
  return GrammarLoader::valueAtPath(piecesOf(*path, '.'), from);
}

Value Parser::retrievePlistForPathArray(std::optional<std::span<const std::string>> path,
                                        const Value& from) {
  if (!path) return from;
  if (path->empty()) throw std::out_of_range("a path without keys");
  return GrammarLoader::valueAtPath(*path, from);
}

void Parser::setGrammar(std::optional<std::string_view> name) {
  if (!name) return;
  const bool isTraced = TQUtils::isWantedForDefault(ZKPlistNotificationDefault);
  if (_file) {
    try {
      _compiled = CompiledGrammar::initFromFile(*_file, *name, isTraced);
    } catch (const GrammarError& error) {
      if (!_compiled) _failure = Failure::malformed(error.what());
      throw;
    }
    _failure = _compiled ? std::nullopt : _nameFailure(*name);
  }
  if (!isTraced) return;
  TQUtils::forDefaultLog(ZKPlistNotificationDefault, "productionRules for %@: %@", *name,
                         theGrammar());
}

std::optional<Failure> Parser::_nameFailure(std::string_view name) const {
  std::vector<std::string> names;
  {
    const std::lock_guard making(GrammarFile::making());
    names = similarNames(name, _file->opened());
    _file->putAway(nullptr);
  }
  std::string message = "there is no grammar named " + std::string(name);
  for (std::size_t i = 0; i < names.size(); ++i) {
    message += (i == 0 ? "; did you mean " : i + 1 < names.size() ? ", " : " or ") + names[i];
  }
  if (!names.empty()) message += '?';
  return Failure{Failure::Kind::unknownName, std::move(message)};
}

const Value& Parser::grammarsPlist() const {
  static const Value kNone;
  return _file ? _file->tree() : kNone;
}

const std::shared_ptr<GrammarPart>& Parser::theGrammar() const {
  static const std::shared_ptr<GrammarPart> kNone;
  return _compiled ? _compiled->root() : kNone;
}

std::shared_ptr<SimpleSlotSequence> Parser::resultOfRulesAppliedToStrings(
    const std::vector<std::string>& strings) const {
  if (!_worksCompiled()) {
    return resultOfRulesAppliedTo(
        *SimpleSlotSequence::blankBufferedSlotSequenceWithStrings(strings));
  }
  RewritingFault fault;
  auto result = _compiled->appliedToStrings(strings);
  if (fault.failure || _unfinished) _setUnfinished(fault);
  return result;
}

std::shared_ptr<SimpleSlotSequence> Parser::resultOfRulesAppliedTo(
    const SimpleSlotSequence& phrase) const {
  if (!_compiled) return nullptr;
  RewritingFault fault;
  auto result = _worksCompiled() ? _compiled->appliedTo(phrase) : theGrammar()->appliedTo(phrase);
  if (fault.failure || _unfinished) _setUnfinished(fault);
  return result;
}

void Parser::_setUnfinished(RewritingFault& fault) const {
  _unfinished = std::move(fault.failure);
  _unfinishedRule = std::move(fault.rule);
}

// The compiled grammar skips work that only the trace would show.
bool Parser::_worksCompiled() const {
  return _compiled && !TQUtils::isWantedForDefault(ZKPlistNotificationDefault);
}

}  // namespace marlune
