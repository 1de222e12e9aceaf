// What the page shows besides findings, as JSON.
#pragma once

#include <string>

#include "lsp/analysis.h"
#include "lsp/document.h"

namespace kztns {

// Of a text that was checked: see kztns/check.
std::string checked_json(const lsp::Analysis &analysis, const lsp::Document &document);

// See kztns/entries.
std::string entries_json(const lsp::Analysis &analysis, const lsp::Document &document);

// See kztns/entry; null for one that is not built.
std::string entry_json(const lsp::AnalysedEntry &entry, const std::string &text);

// See kztns/format.
std::string format_json(const lsp::Document &document, Span shown);

// See kztns/fix.
std::string fix_json(const lsp::Document &document, Span shown);

// One lookup in a text.
std::string why_json(const std::string &identifier, const std::string &text);

// See kztns/words.
std::string words_json();

}  // namespace kztns
