#include "fixes/bare_items.h"

#include <algorithm>
#include <optional>

#include "fixes/foreign_fixes.h"
#include "scan/item_text.h"
#include "text/characters.h"
#include "text/words.h"

namespace kztns {
namespace {

constexpr std::string_view separators = ",;";

// The end of the value that begins at a place; absent for none.
std::optional<Offset> end_of_value(std::string_view text, Offset value) {
  if (text.substr(value).starts_with('(')) return end_of_items(text, value);
  const std::string_view word = text.substr(value, end_of_word(text, value) - value);
  const std::size_t after_quotes = word.find_last_of('"') + 1;
  const std::size_t length = std::min(word.find_first_of(separators, after_quotes), word.size());
  return length > 0 ? std::optional(value + static_cast<Offset>(length)) : std::nullopt;
}

}  // namespace

std::vector<BareItem> bare_items(std::string_view text, Offset at,
                                 const std::function<bool(std::string_view)> &may_be_key) {
  std::vector<BareItem> items;
  do {
    const Offset key_end = end_of_word(text, at);
    const Offset equal = pass_blanks(text, key_end);
    const std::string_view key = text.substr(at, key_end - at);
    if (!text.substr(equal).starts_with('=') || !may_be_key(key)) return {};
    const auto end = end_of_value(text, pass_blanks(text, equal + 1));
    if (!end) return {};
    const Offset signs = pass_blanks(text, *end);
    const auto after =
        static_cast<Offset>(std::min(text.find_first_not_of(separators, signs), text.size()));
    items.push_back({{at, *end}, after > signs ? after : *end, is_dropped(key)});
    at = pass_blanks(text, after);
  } while (at < text.size() && !is_sign(text[at]));
  return items;
}

std::vector<Edit> separated(std::string_view text, const std::vector<BareItem> &items) {
  std::vector<Edit> edits;
  Offset end = items.front().span.end;  // of the last item that is kept
  Offset next = end;                    // after it and those that are dropped
  const auto loses_comment = [&] {
    return text.substr(end, next - end).find('#') != std::string_view::npos;
  };
  for (std::size_t i = 0; i < items.size(); ++i) {
    const BareItem &item = items[i];
    if (i > 0 && !item.dropped) {
      if (loses_comment()) return {};
      if (text.substr(next, item.span.begin - next).find('\n') == std::string_view::npos) {
        edits.push_back({end, item.span.begin, ")("});
      } else {
        edits.push_back({end, next, ")"});
        edits.push_back({item.span.begin, item.span.begin, "("});
      }
      end = item.span.end;
    }
    next = item.separated;
  }
  if (loses_comment()) return {};
  if (end < next) edits.push_back({end, next, {}});
  return edits;
}

}  // namespace kztns
