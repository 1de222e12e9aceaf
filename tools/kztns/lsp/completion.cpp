#include <nlohmann/json.hpp>

#include "lsp/capabilities.h"
#include "lsp/context.h"
#include "lsp/key_documents.h"

namespace kztns::lsp {
namespace {

// Kinds of completion items.
constexpr int property = 10;
constexpr int enum_member = 20;

std::string documentation_of(const KeyDocument &document) {
  std::string text = document.meaning + "\n\nValue: " + document.value;
  if (!document.by_default.empty()) text += "; default: " + document.by_default;
  return text;
}

Json item(std::string label, int kind, std::string text, const KeyDocument &document,
          const LineRange &range) {
  return {{"label", std::move(label)},
          {"kind", kind},
          {"detail", document.meaning},
          {"documentation", markdown(documentation_of(document))},
          {"textEdit", {{"range", json_of(range)}, {"newText", std::move(text)}}}};
}

// Whether an "=" follows a word that is there already.
bool has_equal(std::string_view text, Offset after) {
  const std::size_t next = text.find_first_not_of(" \t\r\n", after);
  return next != std::string_view::npos && text[next] == '=';
}

// The keys that may stand in a block, with the "(" where there is none yet.
Json keys(const Place &place, std::string_view text, const LineRange &range) {
  const std::string before = place.kind == PlaceKind::item ? "(" : "";
  const std::string after = has_equal(text, place.word.end) ? "" : " = ";
  Json items = Json::array();
  if (place.around.kind != Content::block) return items;
  for (const Key &key : kzoci::tns::grammar)
    if (key.block == place.around.inner)
      items.push_back(item(key.word, property, before + key.word + after,
                           document_of(key.block, key.word), range));
  return items;
}

Json words(const Place &place, const LineRange &range) {
  Json items = Json::array();
  const Key *const key = row_of(place.key, place.around);
  if (key == nullptr) return items;
  std::vector<std::string_view> all = choices(*key);
  if (key->type == LB_PROTOCOL) all = {"TCP"};
  for (const std::string_view word : all)
    items.push_back(item(std::string(word), enum_member, std::string(word),
                         document_of(key->block, key->word), range));
  return items;
}

}  // namespace

Json completion(const Question &question) {
  const std::optional<LinePosition> position = position_in(member(question.params, "position"));
  if (!position) return question.refuse(invalid_params, "expected a position");
  const std::string &text = question.document.text();
  const Place place = place_at(text, question.document.offset(*position), false);
  const LineRange range = question.document.range(place.word);
  if (place.kind == PlaceKind::value) return words(place, range);
  if (place.kind == PlaceKind::key) return keys(place, text, range);
  // A word that stands where an item belongs is none of its keys.
  const bool between = place.kind == PlaceKind::item && place.word.begin == place.word.end;
  return between ? keys(place, text, range) : Json::array();
}

}  // namespace kztns::lsp
