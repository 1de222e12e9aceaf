// What the page shows besides findings, as JSON.
#pragma once

#include <string>

#include "lsp/analysis.h"
#include "lsp/document.h"

namespace kztns {

// Of a text that was checked: see kztns/check.
std::string checked_json(const lsp::Analysis &analysis, const std::string &text);

// See kztns/entries.
std::string entries_json(const lsp::Analysis &analysis, const std::string &text);

// See kztns/entry; null for one that is not built.
std::string entry_json(const lsp::AnalysedEntry &entry, const std::string &text);

// See kztns/format.
std::string format_json(const lsp::Document &document);

// One lookup in a text.
std::string why_json(const std::string &identifier, const std::string &text);

}  // namespace kztns
