// What is known of a document's text: what check finds, and what lookups find.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "check/check_report.h"
#include "text/offset.h"

namespace kztns::lsp {

struct AnalysedEntry {
  std::string name;
  Span name_span;
  Offset body;  // after the "="
  Verdict verdict;
  bool built;
  std::string link;  // the link string; empty for none
};

struct Analysis {
  std::int64_t version;
  CheckReport report;
  bool complete;                       // whether the report has all findings
  std::vector<AnalysedEntry> entries;  // in the text's order

  // The last entry whose name begins at a place or before it; null for none.
  const AnalysedEntry *entry_at_or_before(Offset at) const;
  // The first entry of that name; null for none.
  const AnalysedEntry *first_of(const std::string &name) const;
};

// A text to check, away from the document, which may change meanwhile.
struct CheckJob {
  std::string uri;
  std::string text;
  std::int64_t version;
  // What a first walk through a long text found; null for none yet.
  std::shared_ptr<const Analysis> begun;
};

// The first findings of a longer text are shown before all walks are done.
constexpr std::size_t long_text = 256 << 10;

// The analysis; of a long text the findings of one walk first, then those of all walks when
// the job is run again with what has begun.
std::shared_ptr<const Analysis> run(const CheckJob &job);

}  // namespace kztns::lsp
