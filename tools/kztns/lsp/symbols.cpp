#include <nlohmann/json.hpp>

#include "lsp/capabilities.h"
#include "lsp/outline.h"
#include "mend/inline_files.h"
#include "scan/written_items.h"
#include "text/escape.h"

namespace kztns::lsp {
namespace {

// Kinds of symbols.
constexpr int of_entry = 23;  // a structure
constexpr int of_block = 19;  // an object
constexpr int of_file = 1;

std::string name_in(const Document &document, Span name) {
  const std::string_view text = document.text();
  return visible(unquoted(text.substr(name.begin, name.end - name.begin)));
}

// The depth of an outline has a limit.
Json symbol_of(const Document &document, const Outline &outline, int kind, bool nested) {
  Json symbol = {{"name", name_in(document, outline.name)},
                 {"kind", kind},
                 {"range", json_of(document.range(outline.whole))},
                 {"selectionRange", json_of(document.range(outline.name))}};
  if (!nested) return symbol;
  Json inner = Json::array();
  for (const Outline &block : outline.inner)
    inner.push_back(symbol_of(document, block, of_block, nested));
  symbol["children"] = std::move(inner);
  return symbol;
}

Json symbol_of(const Document &document, const IncludeLine &line) {
  const Json range = json_of(document.range(line.whole));
  return {{"name", "IFILE = " + visible(line.file)},
          {"kind", of_file},
          {"range", range},
          {"selectionRange", range}};
}

// For a client that does not know symbols in symbols.
Json with_location(Json symbol, const std::string &uri) {
  return {{"name", std::move(symbol["name"])},
          {"kind", std::move(symbol["kind"])},
          {"location", {{"uri", uri}, {"range", std::move(symbol["range"])}}}};
}

// Blocks that begin and end on the lines of what they stand in are folded with it.
void add_folds(const Document &document, const Outline &outline, const LineRange &around,
               Json &folds) {
  const LineRange range = document.range(outline.whole);
  const bool same_lines =
      range.begin.line == around.begin.line && range.end.line == around.end.line;
  if (range.end.line > range.begin.line && !same_lines)
    folds.push_back({{"startLine", range.begin.line}, {"endLine", range.end.line}});
  for (const Outline &block : outline.inner) add_folds(document, block, range, folds);
}

}  // namespace

Json document_symbols(const Question &question) {
  const Document &document = question.document;
  const std::vector<Outline> entries = outline_of(document.text());
  const std::vector<IncludeLine> lines = include_lines(document.text());
  const bool nested = question.client.nested_symbols && entries.size() <= most_nested_entries;
  Json symbols = Json::array();
  const auto add = [&](Json symbol) {
    symbols.push_back(question.client.nested_symbols
                          ? std::move(symbol)
                          : with_location(std::move(symbol), question.uri));
  };
  auto line = lines.begin();
  for (const Outline &entry : entries) {
    for (; line != lines.end() && line->whole.begin < entry.whole.begin; ++line)
      add(symbol_of(document, *line));
    add(symbol_of(document, entry, of_entry, nested));
  }
  for (; line != lines.end(); ++line) add(symbol_of(document, *line));
  return symbols;
}

Json folding_ranges(const Question &question) {
  Json folds = Json::array();
  for (const Outline &entry : outline_of(question.document.text()))
    add_folds(question.document, entry, {}, folds);
  for (const Span &run : comment_runs(question.document.text())) {
    const LineRange range = question.document.range(run);
    if (range.end.line > range.begin.line)
      folds.push_back(
          {{"startLine", range.begin.line}, {"endLine", range.end.line}, {"kind", "comment"}});
  }
  return folds;
}

}  // namespace kztns::lsp
