// What stands where an entry should, or its value: remarks, comments of other languages, words.
#pragma once

#include <optional>
#include <string_view>

#include "text/offset.h"

namespace kztns {

// Whether a word begins a comment of other readers of such files.
bool is_foreign_comment(std::string_view word);

// After a comment in "/*" and "*/" or "<!--" and "-->" that begins at a place, as other languages
// have it; absent when none does.
std::optional<Offset> end_of_long_comment(std::string_view text, Offset at);

// After the blanks and all comments from a place on, those of other readers too.
Offset pass_comments(std::string_view text, Offset from);

// The "(" of an entry whose "=" is on the line of a place or the next one, before any parenthesis;
// absent for none.
std::optional<Offset> value_on_line(std::string_view text, Offset at);

// The end of text that begins at a place and is no entry: of its line or, when
// parentheses are open there and it is no comment, of the line where they are closed; at
// most a limit.
Offset end_of_stray_text(std::string_view text, Offset at, Offset limit);

// Whether text that is no entry may be one that is written otherwise: a description is in it, or
// follows it and would become a block of the entry before. The rest of an entry whose beginning is
// a comment is none.
bool may_be_entry(std::string_view text, Span span);

// The end of a value that begins at a place and is no block: where a line begins that seems to
// begin another entry.
Offset end_of_bare_value(std::string_view text, Offset at);

}  // namespace kztns
