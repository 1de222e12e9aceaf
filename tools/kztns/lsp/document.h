// A text that an editor has open, with its lines.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "text/offset.h"

namespace kztns::lsp {

// What characters of a line are counted in.
enum class Encoding { utf_8, utf_16 };

// Both from 0.
struct LinePosition {
  std::uint32_t line = 0;
  std::uint32_t character = 0;
};

struct LineRange {
  LinePosition begin;
  LinePosition end;
};

class Document {
 public:
  Document(std::string text, std::int64_t version, Encoding encoding);

  const std::string &text() const { return text_; }
  Offset size() const { return static_cast<Offset>(text_.size()); }
  std::int64_t version() const { return version_; }
  void set_version(std::int64_t version) { version_ = version; }

  // Whether its first line feed comes after a carriage return, so that new ones do, too.
  bool has_crlf() const;

  // Replaces all of it, or a part.
  void set(std::string text);
  void replace(LineRange range, std::string_view text);

  // A place after the end of a line is the line's end; one in a character, its beginning.
  Offset offset(LinePosition position) const;
  LinePosition position(Offset at) const;

  // The line that a place is on, up to its line feed.
  std::string_view line_at(Offset at) const;

  Span span(LineRange range) const { return {offset(range.begin), offset(range.end)}; }
  LineRange range(Span span) const { return {position(span.begin), position(span.end)}; }

 private:
  // Appends the beginnings of lines after a place, up to another one.
  void find_lines(Offset from, Offset to, std::vector<Offset> &lines) const;
  std::size_t line_of(Offset at) const;
  std::uint32_t units(char c) const;

  std::string text_;
  std::int64_t version_;
  Encoding encoding_;
  std::vector<Offset> lines_;  // where each begins
  // Of a text with thousands of edits it is asked for each; absent when it has changed since.
  mutable std::optional<bool> has_crlf_;
};

}  // namespace kztns::lsp
