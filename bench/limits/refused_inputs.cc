#include "limits/refused_inputs.h"

#include "marlune/desktop/plist/property_list_limits.h"
#include "marlune/desktop/plist/xml_list_writer.h"
#include "support/plist_notation.h"

namespace marlune {

std::string endlessRules() {
  return *writePropertyListXml(PlistNotation::parse(R"(
    {
      Count = {
        _lhs = {_significantSlots = ['?', '?']}; _repeat = #1;
        _rhs = {
          _signature = [{_index = #0; _attribute = content}, {_index = #1; _attribute = content}];
          _expansions = {'t 0' = [t, 1]; 't 1' = [t, c]; 'c 0' = [0, 1]; 'c 1' = [0, c]}
        }
      };
      Settle = {
        _lhs = {_significantSlots = [a, b]}; _repeat = #1; _rhs = [{_index = #1}, {_index = #0}]
      };
      Grow = {
        _lhs = {_significantSlots = ['?']; _postContext = [[*, [*, [*, a]]], [*, [*, a]], c]};
        _repeat = #1;
        _rhs = {_signature = [{_index = #0; _attribute = content}]; _expansions = {b = [b, a]}}
      };
      GrowAndTell = {
        _lhs = {_significantSlots = ['?']; _postContext = [[*, {#x- = a}], [*, {#x- = a}], c]};
        _repeat = #1;
        _rhs = {_signature = [{_index = #0; _attribute = content}]; _expansions = {b = [b, a]}}
      }
    })"));
}

std::string explodingInserts() {
  constexpr int kChunks = 20;
  std::string text = "{Main = {Part = '#insert Chunk0'}";
  for (int i = 0; i < kChunks; ++i) {
    const std::string next = "'#insert Chunk" + std::to_string(i + 1) + "'";
    text += "; Chunk" + std::to_string(i) + " = {A = " + next + "; B = " + next + "}";
  }
  text += "; Chunk" + std::to_string(kChunks) + " = {_lhs = {}}}";
  return *writePropertyListXml(PlistNotation::parse(text));
}

std::string largestListOf(std::string_view element) {
  constexpr std::string_view kHead = "<plist version=\"1.0\"><array>\n",
                             kTail = "</array></plist>\n";
  const std::size_t room = kMostPropertyListBytes - kHead.size() - kTail.size();
  std::string list(kHead);
  list.reserve(kMostPropertyListBytes);
  for (std::size_t i = room / element.size(); i > 0; --i) list += element;
  list += kTail;
  return list;
}

}  // namespace marlune
