#include <nlohmann/json.hpp>

#include "lsp/capabilities.h"
#include "lsp/outline.h"
#include "scan/written_items.h"
#include "text/escape.h"

namespace kztns::lsp {
namespace {

// Kinds of symbols.
constexpr int of_entry = 23;  // a structure
constexpr int of_block = 19;  // an object

std::string name_in(const Document &document, Span name) {
  const std::string_view text = document.text();
  return visible(unquoted(text.substr(name.begin, name.end - name.begin)));
}

// The depth of an outline has a limit.
Json symbol_of(const Document &document, const Outline &outline, int kind) {
  Json inner = Json::array();
  for (const Outline &block : outline.inner) inner.push_back(symbol_of(document, block, of_block));
  return {{"name", name_in(document, outline.name)},
          {"kind", kind},
          {"range", json_of(document.range(outline.whole))},
          {"selectionRange", json_of(document.range(outline.name))},
          {"children", std::move(inner)}};
}

void add_folds(const Document &document, const Outline &outline, Json &folds) {
  const LineRange range = document.range(outline.whole);
  if (range.end.line > range.begin.line)
    folds.push_back({{"startLine", range.begin.line}, {"endLine", range.end.line}});
  for (const Outline &block : outline.inner) add_folds(document, block, folds);
}

}  // namespace

Json document_symbols(const Question &question) {
  Json symbols = Json::array();
  for (const Outline &entry : outline_of(question.document.text())) {
    if (question.client.nested_symbols) {
      symbols.push_back(symbol_of(question.document, entry, of_entry));
      continue;
    }
    const LineRange range = question.document.range(entry.whole);
    symbols.push_back({{"name", name_in(question.document, entry.name)},
                       {"kind", of_entry},
                       {"location", location_of(question.uri, range)}});
  }
  return symbols;
}

Json folding_ranges(const Question &question) {
  Json folds = Json::array();
  for (const Outline &entry : outline_of(question.document.text()))
    add_folds(question.document, entry, folds);
  for (const Span &run : comment_runs(question.document.text())) {
    const LineRange range = question.document.range(run);
    if (range.end.line > range.begin.line)
      folds.push_back(
          {{"startLine", range.begin.line}, {"endLine", range.end.line}, {"kind", "comment"}});
  }
  return folds;
}

}  // namespace kztns::lsp
