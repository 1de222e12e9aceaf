#include "fixes/wrapped_value.h"

#include <algorithm>
#include <string>
#include <utility>

#include "scan/stray_text.h"
#include "text/characters.h"
#include "text/escape.h"
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

bool is_number(std::string_view word) { return std::all_of(word.begin(), word.end(), is_digit); }

// Whether a word has nothing that must be in quotes, or that belongs to something else.
bool is_one_plain_word(std::string_view word) {
  return has_word_character(word) && word.find_first_of(":#\"',;<>[]{}|\\/@$&") == word.npos;
}

// Of addresses of numbers each may be whole.
bool is_host(std::string_view word, std::string_view rest) {
  return is_one_plain_word(word) && !is_number(rest) && !is_foreign_comment(rest) &&
         word.find_first_not_of("0123456789.") != word.npos;
}

// What a value is with its rest on the next line; empty where that is none of its key's values, or
// where both may be whole.
std::string_view joined_value(const Key &key, std::string_view word, std::string_view rest) {
  if (key.type == LB_PROTOCOL) return equal_but_for_case(word, "TCP") ? word : "";
  if (!choices(key).empty()) return word_read_as(key, word);
  if (key.type == LB_HOST) return is_host(word, rest) ? word : "";
  if (key.type == LB_SERVICE_NAME || key.type == LB_SID)
    return is_one_plain_word(word) && word.size() <= key.value.limit ? word : "";
  constexpr std::size_t most_digits = 9;  // longer numbers might not fit
  if (!is_number(word) || word.size() > most_digits) return {};
  const bool is_port = key.type == LB_PORT && std::stol(std::string(word)) <= 65535;
  return is_port || key.value.kind == ValueKind::integer ? word : "";
}

}  // namespace

std::optional<Mending> mend_wrapped_value(const FaultPlace &place) {
  const Key *const key = place.trace().row_of(*place.item());
  const std::optional<Span> rest = rest_of_value(place);
  if (key == nullptr || !rest) return std::nullopt;
  const Span value = place.item()->value;
  std::string word(place.slice(value));
  word += place.slice(*rest);
  std::string joined(joined_value(*key, word, place.slice(*rest)));
  if (joined.empty()) return std::nullopt;
  std::string remedy = "did you mean " + excerpt(joined) + "?";
  return Mending{unsafe_fix({{value.begin, rest->end, std::move(joined)}}), std::move(remedy)};
}

}  // namespace kztns
