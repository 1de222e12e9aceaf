// Reading a names file as its author may have meant it: only to name what lookups
// do not reach, and to explain. Verdicts come from the library alone.
#pragma once

#include <functional>
#include <optional>
#include <string_view>
#include <vector>

#include "scan/item_words.h"
#include "text/names_text.h"

namespace kztns {

// Of a longer list not every name is worth knowing.
constexpr std::size_t most_names_of_list = 256;

// After a comment in "/*" and "*/" that begins at a place, as other languages have it; absent when
// none does.
std::optional<Offset> end_of_long_comment(std::string_view text, Offset at);

// The key of the item that begins at a place; none where something else begins.
ItemWord key_after(std::string_view text, Offset open);

// A name at the beginning of a line, followed by "=" and "(".
struct WrittenEntry {
  Offset name_begin;
  Offset name_end;
  Offset body;   // after the "="
  bool in_list;  // one of several names
};

// Calls visit for the entries of the text, in their order. Quotes and
// comments are observed; where parentheses or quotes do not balance, reading
// begins anew at a line whose first column begins "NAME = (", or which begins so
// further in with a block's key after the "(". Goes forward only.
void for_each_written_entry(std::string_view text,
                            const std::function<void(const WrittenEntry &)> &visit);

// The lines that begin what only other readers know as an entry: "NAME = host:port/service", a
// descriptor in quotes, and IFILE lines.
std::vector<Offset> foreign_entries(std::string_view text);

// A parenthesis in a comment or in quotes.
struct HiddenParenthesis {
  Offset at;
  bool in_comment;
};

// The first one of its kind, "(" or ")", between two places; the first place is
// outside of both.
std::optional<HiddenParenthesis> find_hidden(std::string_view text, Offset from, Offset to,
                                             char parenthesis);

// The first double quote after a place of a pair that ends before another place and has items, or
// the end of a line, in it: it was to be closed before. Its partner comes second.
std::optional<std::pair<Offset, Offset>> quotes_around_items(std::string_view text, Offset from,
                                                             Offset to);

// The place of the last double quote that opens in a token; absent when all that
// open are closed.
std::optional<Offset> open_quote(std::string_view text, Offset from, Offset to);

}  // namespace kztns
