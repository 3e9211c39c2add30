#include "marlune/grammar/model/cell.h"

#include <algorithm>

#include "marlune/grammar/base/content_comparison.h"
#include "marlune/grammar/base/make_shared_of.h"
#include "marlune/grammar/base/special_characters.h"
#include "marlune/grammar/format/slot_form.h"
#include "marlune/util/tq_utils.h"
#include "marlune/util/utf16.h"

namespace marlune {

namespace {

constexpr std::string_view kPre = "pre";
constexpr std::string_view kPost = "post";
constexpr std::string_view kFirstTone = "firstTone";
constexpr std::string_view kLastTone = "lastTone";

const AttributeValue& emptyText() {
  static const AttributeValue kText(std::string{});
  return kText;
}

std::string textOr(const Cell& cell, std::string_view name, std::string_view otherwise) {
  const AttributeValue* value = cell.valueForKey(name);
  return value ? value->text() : std::string(otherwise);
}

}  // namespace

Cell::Cell(CellType type, std::shared_ptr<AttributeDictionary> attributes)
    : _type(type), _attributes(std::move(attributes)) {}

std::shared_ptr<Cell> Cell::init() {
  return makeSharedOf<Cell>(CellTypeWildcard, std::make_shared<AttributeDictionary>());
}

std::shared_ptr<Cell> Cell::initAsWildcard() { return init(); }

std::shared_ptr<Cell> Cell::initAsBlank() {
  return makeSharedOf<Cell>(CellTypeBlank, std::make_shared<AttributeDictionary>());
}

std::shared_ptr<Cell> Cell::initWithAttributesDictionary(const AttributeDictionary& attributes) {
  return _literalOver(attributes.oneLevelCopy());
}

std::shared_ptr<Cell> Cell::initWithAttributesDictionary(const Dictionary& attributes) {
  return _literalOver(AttributeDictionary::fromPlist(attributes));
}

std::shared_ptr<Cell> Cell::initWithContentString(std::string content) {
  return _literalWithContent(std::make_shared<const std::string>(std::move(content)));
}

std::shared_ptr<Cell> Cell::_literalOver(std::shared_ptr<AttributeDictionary> attributes) {
  return makeSharedOf<Cell>(CellTypeLiteral, std::move(attributes));
}

std::shared_ptr<Cell> Cell::_literalWithContent(std::shared_ptr<const std::string> content) {
  auto attributes = std::make_shared<AttributeDictionary>();
  attributes->reserve(1);
  attributes->setValueForKey(std::move(content), AttributeDictionary::contentName());
  return _literalOver(std::move(attributes));
}

std::shared_ptr<Cell> Cell::initFromPlist(const Value& plist) {
  switch (cellFormOf(plist)) {
    case CellForm::wildcard:
      return initAsWildcard();
    case CellForm::blank:
      return initAsBlank();
    case CellForm::word:
      return _literalWithContent(plist.sharedString());
    case CellForm::attributes:
      return initWithAttributesDictionary(*plist.asDictionary());
    case CellForm::other:
      break;
  }
  return makeSharedOf<Cell>(CellTypeWildcard, nullptr);
}

std::shared_ptr<Cell> Cell::cell() { return init(); }
std::shared_ptr<Cell> Cell::wildcard() { return initAsWildcard(); }
std::shared_ptr<Cell> Cell::blank() { return initAsBlank(); }
std::shared_ptr<Cell> Cell::cellWithContentString(std::string content) {
  return initWithContentString(std::move(content));
}
std::shared_ptr<Cell> Cell::instanceFromPlist(const Value& plist) { return initFromPlist(plist); }
std::shared_ptr<Cell> Cell::cellWithCell(const Cell& cell) { return cell.copyWithZone(); }
std::shared_ptr<Cell> Cell::literalCellWithCell(const Cell& cell) { return cell.literalCell(); }

void Cell::setAttributes(std::shared_ptr<AttributeDictionary> attributes) {
  _attributes = std::move(attributes);
}

const AttributeValue* Cell::valueForKey(std::string_view name) const {
  return _attributes ? _attributes->valueForKey(name) : nullptr;
}

const std::string* Cell::attributeForKey(std::string_view name) const {
  const AttributeValue* value = valueForKey(name);
  return value ? value->asString() : nullptr;
}

void Cell::setAttribute(std::optional<AttributeValue> value, std::string_view forKey) {
  if (value && _attributes) _attributes->setValueForKey(*std::move(value), forKey);
}

void Cell::setAttribute(std::optional<AttributeValue> value,
                        const AttributeDictionary::Name& forKey) {
  if (value && _attributes) _attributes->setValueForKey(*std::move(value), forKey);
}

const std::string* Cell::content() const {
  return attributeForKey(SpecialCharacters::contentKey());
}
const std::string* Cell::pre() const { return attributeForKey(kPre); }
const std::string* Cell::post() const { return attributeForKey(kPost); }

void Cell::setContent(std::optional<std::string> content) {
  setAttribute(std::move(content), AttributeDictionary::contentName());
}
void Cell::setPre(std::optional<std::string> pre) { setAttribute(std::move(pre), kPre); }
void Cell::setPost(std::optional<std::string> post) { setAttribute(std::move(post), kPost); }

bool Cell::hasContent() const {
  return _type == CellTypeLiteral && valueForKey(SpecialCharacters::contentKey()) != nullptr;
}

std::vector<std::string> Cell::flattened() const {
  std::vector<std::string> texts;
  for (const std::string* text : {pre(), content(), post()}) {
    if (text) texts.push_back(*text);
  }
  return texts;
}

std::shared_ptr<Cell> Cell::literalCell() const {
  return initWithAttributesDictionary(_attributes ? *_attributes : AttributeDictionary());
}

std::shared_ptr<Cell> Cell::copyWithZone() const {
  switch (_type) {
    case CellTypeWildcard:
      TQUtils::forDefaultLog(ZKPlistNotificationDefault, "## Wildcard!!!");
      return initAsWildcard();
    case CellTypeBlank:
      TQUtils::forDefaultLog(ZKPlistNotificationDefault, "## Blank!!!");
      return initAsBlank();
    case CellTypeLiteral:
      break;
  }
  TQUtils::forDefaultLog(ZKPlistNotificationDefault, "## Literal!!!!");
  return literalCell();
}

bool Cell::matches(const Cell* target) const {
  const CellType targetType = target ? target->_type : CellTypeWildcard;
  if (const auto decided = _matchOfTypes(_type, targetType)) return *decided;
  if (!_attributes) return true;
  return std::ranges::all_of(_attributes->entries(), [&](const auto& attribute) {
    return _attributeMatches(attribute, target);
  });
}

bool Cell::_attributeMatches(const AttributeDictionary::Entry& attribute,
                             const Cell* target) const {
  const auto& [name, value] = attribute;
  const auto equalsCharacters = [&value = value](std::optional<std::string_view> characters) {
    return characters && value.asString() && *value.asString() == *characters;
  };
  const ContentComparison comparison = contentComparisonOf(*name);
  if (comparison == ContentComparison::prefix) {
    const std::string* content = target ? target->content() : nullptr;
    const std::size_t length = comparedLength(*name);
    const auto start = content ? utf16Prefix(*content, length) : std::nullopt;
    TQUtils::comparisonLog("Prefix! (unsigned long)chars = %lu   This: %@    Other: %@", length,
                           value.text(), start ? FormatArgument(*start) : FormatArgument(nullptr));
    if (!equalsCharacters(start)) return false;
    TQUtils::comparisonLog("MATCH!");
    return true;
  }
  if (comparison == ContentComparison::suffix) {
    const std::string* content = target ? target->content() : nullptr;
    return content && equalsCharacters(utf16Suffix(*content, comparedLength(*name)));
  }
  const AttributeValue* theirs = target ? target->valueForKey(*name) : nullptr;
  return value.equals(theirs ? *theirs : emptyText());
}

std::shared_ptr<Cell> Cell::overlayedOn(const Cell& underlying) const {
  constexpr std::string_view kTrace = ZKPlistNotificationDefault;
  TQUtils::forDefaultLog(kTrace, "\t\treceiver: %@", underlying);
  std::shared_ptr<Cell> result = literalCellWithCell(underlying);
  TQUtils::forDefaultLog(kTrace, "\t\tbefore overlay: %@", result);
  if (_attributes) {
    for (const auto& [name, value] : _attributes->entries()) {
      TQUtils::forDefaultLog(kTrace, "\t\t\tattributeName: %@", *name);
      result->setAttribute(value, name);
    }
  }
  TQUtils::forDefaultLog(kTrace, "\t\tafter overlay: %@", result);
  return result;
}

std::string Cell::description() const {
  if (_type == CellTypeWildcard) return SpecialCharacters::wildcardSymbol();
  if (_type == CellTypeBlank) return SpecialCharacters::blankSymbol();
  return formatted("%@(%@[%@]%@)%@", {textOr(*this, kFirstTone, ""), textOr(*this, kPre, ""),
                                      textOr(*this, SpecialCharacters::contentKey(), "_"),
                                      textOr(*this, kPost, ""), textOr(*this, kLastTone, "")});
}

bool Cell::_writesLines() const {
  return _type == CellTypeLiteral && _attributes &&
         std::ranges::any_of(_attributes->entries(), [](const auto& attribute) {
           return contentComparisonOf(*attribute.first) == ContentComparison::prefix;
         });
}

}  // namespace marlune
