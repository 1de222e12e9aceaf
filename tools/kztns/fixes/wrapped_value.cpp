#include "fixes/wrapped_value.h"

#include <algorithm>
#include <string>
#include <utility>

#include "text/characters.h"
#include "text/spelling.h"

namespace kztns {
namespace {

// The word on the next line with which a value goes on to its ")"; absent where there is none.
std::optional<Span> rest_of_value(const FaultPlace &place) {
  const Offset end = place.item()->value.end;
  const Span rest = place.word_at(place.after(blanks, end));
  const std::string_view between = place.slice({end, rest.begin});
  const bool is_wrapped = std::count(between.begin(), between.end(), '\n') == 1;
  if (!is_wrapped || !place.has_sign(place.after_blanks(rest.end), ')')) return std::nullopt;
  return rest;
}

// Whether a word has nothing that must be in quotes, or that belongs to something else.
bool is_one_plain_word(std::string_view word) {
  return has_word_character(word) && word.find_first_of("#\"',;<>[]{}|\\/@$&") == word.npos;
}

// What a value is as one word; empty where that is none of its key's values.
std::string_view joined_value(const Key &key, std::string_view word) {
  if (key.type == LB_PROTOCOL) return equal_but_for_case(word, "TCP") ? word : "";
  if (!choices(key).empty()) return word_read_as(key, word);
  const bool is_number = key.value.kind == ValueKind::integer || key.type == LB_PORT;
  if (is_number && !std::all_of(word.begin(), word.end(), is_digit)) return {};
  return is_one_plain_word(word) ? word : "";
}

}  // namespace

std::optional<Mending> mend_wrapped_value(const FaultPlace &place) {
  const Key *const key = place.trace().row_of(*place.item());
  const std::optional<Span> rest = rest_of_value(place);
  if (key == nullptr || !rest) return std::nullopt;
  const Span value = place.item()->value;
  std::string word(place.slice(value));
  word += place.slice(*rest);
  std::string joined(joined_value(*key, word));
  if (joined.empty()) return std::nullopt;
  std::string remedy = "did you mean " + joined + "?";
  return Mending{unsafe_fix({{value.begin, rest->end, std::move(joined)}}), std::move(remedy)};
}

}  // namespace kztns
