#include "marlune/grammar/file/grammar_loader.h"

#include <utility>

#include "marlune/grammar/base/grammar_error.h"
#include "marlune/grammar/base/special_characters.h"
#include "marlune/grammar/file/insert_circles.h"
#include "marlune/grammar/file/insert_directive.h"
#include "marlune/platform/platform.h"
#include "marlune/util/tq_utils.h"

namespace marlune {

namespace {

Result<Value> readFile(const std::string& path) {
  const auto reader = Platform::shared().propertyListReader;
  if (reader) return reader->readFile(path);
  return Failure::unavailable("there is no property-list reader");
}

// The same value in its own container; the elements stay shared.
Value oneLevelCopy(const Value& value) {
  if (value.asDictionary()) return Value::dictionary(value.asDictionary()->oneLevelCopy());
  if (value.asArray()) return Value::array(std::make_shared<Array>(*value.asArray()));
  return value;
}

}  // namespace

Result<Value> GrammarLoader::treeOfFile(const std::string& path) {
  Result<Value> read = readFile(path);
  if (!read.succeeded()) {
    TQUtils::systemLog("ERROR loading grammar from plist: %@", read.failure().message);
    return read;
  }
  GrammarLoader loader(std::move(read.value()));
  const std::size_t valuesRead = loader._printedValues(loader._root, 0);
  loader._mostValues = kMostValues + kMostValuesPerValueRead * valuesRead;
  if (loader._mayHoldDirectives) InsertCircles(loader._root).requireNone();

  for (bool inserted = true; inserted;) {
    loader._valuesVisited = 0;
    inserted = loader._mayHoldDirectives && loader._pass(loader._root, 0);
    if (inserted) loader._requireBounds();
    TQUtils::forDefaultLog(ZKPlistNotificationDefault, "%@", loader._root);
  }
  return std::move(loader._root);
}

bool GrammarLoader::insertStatements(const Value& original, const Value& intoBranch) {
  return GrammarLoader(original)._pass(intoBranch, 0);
}

bool GrammarLoader::_pass(const Value& branch, std::size_t depth) {
  _requireSize(++_valuesVisited);
  if (!branch.asDictionary()) return false;
  _requireDepth(depth);
  Dictionary& dictionary = *branch.asDictionary();

  // Applied at the end, so that the dictionary does not change while it is traversed and searched.
  std::vector<std::pair<Dictionary::Key, Value>> replacements;
  bool changed = false;
  for (const auto& [key, value] : dictionary.entries()) {
    GrammarError::within(*key, [&, &key = key, &value = value] {
      if (isInsertDirective(value)) {
        replacements.emplace_back(key, _chunkFor(*value.asString()));
      } else if (_pass(value, depth + 1)) {
        changed = true;
      }
    });
  }
  for (auto& [key, chunk] : replacements) dictionary.setValueForKey(std::move(chunk), *key);
  return changed || !replacements.empty();
}

Value GrammarLoader::_chunkFor(const std::string& directive) {
  const std::vector<std::string> parts = piecesOf(directive, ' ');
  if (parts.size() < 2) throw GrammarError("", "an insert directive without a path");
  const std::string& path = parts[1];
  Value chunk = oneLevelCopy(valueAtPath(piecesOf(path, '.'), _root));
  if (chunk.isAbsent()) {
    TQUtils::log("\n\n ERROR: No plist chunk found at path '%@'.", path);
    throw GrammarError("", "an insert directive whose path '" + path + "' leads to nothing");
  }
  const std::int32_t order = parts.size() < 3 ? -1 : Value::string(parts[2]).integerValue();
  if (chunk.asDictionary()) {
    if (order >= 0) {
      chunk.asDictionary()->setValueForKey(Value::integer(order), SpecialCharacters::orderKey());
    }
    _valuesCopied += chunk.asDictionary()->count();
  } else if (chunk.asArray()) {
    _valuesCopied += chunk.asArray()->count();
  }
  _requireSize(_valuesCopied);
  return chunk;
}

Value GrammarLoader::valueAtPath(std::span<const std::string> keys, const Value& tree) {
  Value found = tree;
  for (const std::string& key : keys) {
    if (found.isAbsent()) return found;
    if (!found.asDictionary()) {
      throw GrammarError("", "a path that looks up '" + key + "' in a value that is not a " +
                                 "dictionary: " + std::string(found.kindName()));
    }
    found = Value(found.asDictionary()->valueForKey(key));
  }
  return found;
}

std::size_t GrammarLoader::_printedValues(const Value& value, std::size_t depth) {
  std::size_t count = 1;
  if (value.asDictionary()) {
    _requireDepth(depth);
    for (const auto& [key, nested] : value.asDictionary()->entries()) {
      _requireSize(count += _printedValues(nested, depth + 1));
    }
  } else if (value.asArray()) {
    _requireDepth(depth);
    for (const Value& nested : value.asArray()->elements()) {
      _requireSize(count += _printedValues(nested, depth + 1));
    }
  } else if (isInsertDirective(value)) {
    _mayHoldDirectives = true;
  }
  return count;
}

void GrammarLoader::_requireBounds() { _requireSize(_printedValues(_root, 0)); }

void GrammarLoader::_requireSize(std::size_t values) const {
  if (values <= _mostValues) return;
  throw GrammarError("", "with its inserts the grammar file grows past " +
                             std::to_string(_mostValues) + " values");
}

void GrammarLoader::_requireDepth(std::size_t depth) {
  if (depth < kDeepest) return;
  throw GrammarError("", "the grammar file, with its inserts, is nested deeper than " +
                             std::to_string(kDeepest) + " levels");
}

}  // namespace marlune
