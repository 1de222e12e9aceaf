#include <algorithm>

#include <nlohmann/json.hpp>

#include "lsp/capabilities.h"
#include "lsp/context.h"
#include "lsp/key_documents.h"
#include "text/characters.h"

namespace kztns::lsp {
namespace {

// Kinds of completion items.
constexpr int property = 10;
constexpr int enum_member = 20;

Json item(std::string label, int kind, std::string text, const KeyDocument &document,
          const LineRange &range) {
  return {{"label", std::move(label)},
          {"kind", kind},
          {"detail", document.meaning},
          {"documentation", markdown(document.text())},
          {"textEdit", {{"range", json_of(range)}, {"newText", std::move(text)}}}};
}

// What a choice replaces of a word that goes on after the cursor: all of it, but not the
// quotes around the cursor.
Span word_around(std::string_view text, Span before_cursor) {
  const auto [begin, cursor] = before_cursor;
  const std::string_view before = text.substr(begin, cursor - begin);
  const bool inside = std::count(before.begin(), before.end(), '"') % 2 == 1;
  const Offset from = begin + (inside && before.front() == '"' ? 1 : 0);
  if (before.empty() && text.substr(cursor).starts_with('#')) return {cursor, cursor};
  bool in_quotes = inside;
  for (Offset end = cursor; end < text.size() && text[end] != '\r' && text[end] != '\n'; ++end) {
    if (!in_quotes && (is_blank(text[end]) || is_sign(text[end]))) return {from, end};
    if (text[end] != '"') continue;
    if (inside) return {from, end};
    in_quotes = !in_quotes;
  }
  // At the end of the line; quotes that are not closed there end with the word.
  const std::size_t end = text.find_first_of(in_quotes ? " \t\r\n()=" : "\r\n", cursor);
  return {from, static_cast<Offset>(std::min(end, text.size()))};
}

// Whether an "=" follows a word that is there already.
bool has_equal(std::string_view text, Offset after) {
  const std::size_t next = text.find_first_not_of(" \t\r\n", after);
  return next != std::string_view::npos && text[next] == '=';
}

// The keys that may stand in a block, with the "(" where there is none yet.
Json keys(const Place &place, std::string_view text, Span replaced, const LineRange &range) {
  const std::string before = place.kind == PlaceKind::item ? "(" : "";
  const bool quote_follows = replaced.end < text.size() && text[replaced.end] == '"';
  const std::string after = quote_follows || has_equal(text, replaced.end) ? "" : " = ";
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
  if (place.after_word) return Json::array();
  const bool in_item = place.kind == PlaceKind::key || place.kind == PlaceKind::value;
  const Span replaced = in_item ? word_around(text, place.word) : place.word;
  const LineRange range = question.document.range(replaced);
  if (place.kind == PlaceKind::value) return words(place, range);
  if (place.kind == PlaceKind::key) return keys(place, text, replaced, range);
  // A word that stands where an item belongs is none of its keys.
  const bool between = place.kind == PlaceKind::item && place.word.begin == place.word.end;
  return between ? keys(place, text, replaced, range) : Json::array();
}

}  // namespace kztns::lsp
