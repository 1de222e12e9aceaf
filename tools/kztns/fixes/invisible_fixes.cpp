#include "fixes/invisible_fixes.h"

#include <algorithm>

#include "scan/tokens.h"
#include "text/characters.h"
#include "text/spelling.h"

namespace kztns {
namespace {

// What stands for an invisible character that is meant as a blank, or as nothing.
std::optional<std::string_view> visible_instead(std::string_view odd) {
  if (is_one_of(odd, {byte_order_mark, zero_width_space, soft_hyphen})) return "";
  const bool control = odd.size() == 1 && odd[0] != '\xA0';
  if (control && odd != "\f" && odd != "\v") return std::nullopt;
  return " ";
}

// Puts blanks for invisible characters in a word, those in quotes excepted.
bool make_visible(std::string_view word, Offset at, std::vector<Edit> &edits) {
  bool in_quotes = false;
  for (std::size_t from = 0; from < word.size();) {
    const std::string_view odd = odd_character(word.substr(from));
    if (odd.empty()) return true;
    const std::size_t place = static_cast<std::size_t>(odd.data() - word.data());
    for (; from < place; ++from) in_quotes ^= word[from] == '"';
    from += odd.size();
    if (in_quotes) continue;
    const auto instead = visible_instead(odd);
    if (!instead) return false;
    const Offset begin = at + static_cast<Offset>(place);
    edits.push_back({begin, begin + static_cast<Offset>(odd.size()), std::string(*instead)});
  }
  return true;
}

Fix all_visible(const FaultPlace &place) {
  const std::vector<Item> &items = place.trace().items();
  const Offset from = items.empty() ? place.fault().at : items.front().open;
  std::vector<Edit> edits;
  TokenReader tokens(place.text(), from);
  for (Token token = tokens.next(); token.kind != TokenKind::end; token = tokens.next())
    if (token.kind == TokenKind::word &&
        !make_visible(place.slice(token.span), token.span.begin, edits))
      return {};
  return edits.empty() ? Fix() : safe_fix(std::move(edits));
}

// Whether an invisible character has a width.
bool is_space(std::string_view odd) {
  return odd != byte_order_mark && odd != zero_width_space && odd != soft_hyphen && odd[0] != '\0';
}

}  // namespace

std::optional<Diagnosis> diagnose_invisible(const FaultPlace &place) {
  if (place.rule() == Rule::unclosed_quote || place.rule() == Rule::unclosed_block)
    return std::nullopt;
  TokenReader tokens(place.text(),
                     std::min<Offset>(place.fault().at, static_cast<Offset>(place.text().size())));
  const Token token = tokens.next();
  if (token.kind != TokenKind::word || token.span.begin != place.fault().at) return std::nullopt;
  const std::string_view odd = odd_character(place.slice(token.span));
  Fix fix = odd.empty() ? Fix() : all_visible(place);
  if (!fix) return std::nullopt;
  Diagnosis told = place.diagnosis();
  told.at = static_cast<Offset>(odd.data() - place.text().data());
  if (told.rule != Rule::odd_bytes)
    told.text = "the invisible character " + visible(odd) + " is no blank here";
  told.rule = Rule::odd_bytes;
  told.remedy = visible_instead(odd) == " " ? "write a blank instead" : "";
  told.fix = std::move(fix);
  return told;
}

Fix fix_of_invisible(std::string_view text, Offset begin, Offset end) {
  std::vector<Edit> edits;
  bool safe = true;
  bool at_begin = true;
  for (Offset at = begin; at < end;) {
    const std::string_view rest = text.substr(at, end - at);
    const std::string_view odd = odd_character(rest);
    if (odd.empty()) break;
    const auto place = static_cast<Offset>(odd.data() - text.data());
    const Offset after = place + static_cast<Offset>(odd.size());
    at_begin = at_begin && place == at;
    const bool at_end = after == end || is_blank(text[after]);
    if (is_blank(odd[0])) {
      at = after;
      continue;
    }
    const bool blank = is_space(odd) && (at_begin || at_end);
    safe = safe && (blank || !is_space(odd));
    edits.push_back({place, after, blank ? " " : ""});
    at = after;
  }
  if (edits.empty()) return {};
  return safe ? safe_fix(std::move(edits)) : unsafe_fix(std::move(edits));
}

}  // namespace kztns
