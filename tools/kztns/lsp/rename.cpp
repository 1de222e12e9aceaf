#include <algorithm>

#include <nlohmann/json.hpp>

#include "lsp/capabilities.h"
#include "scan/file_scan.h"
#include "text/escape.h"

namespace kztns::lsp {
namespace {

// The entry whose name is at the position that is asked about; null for none.
const AnalysedEntry *entry_of(const Question &question, const Analysis &analysis) {
  const std::optional<LinePosition> position = position_in(member(question.params, "position"));
  if (!position) return nullptr;
  const Offset at = question.document.offset(*position);
  const AnalysedEntry *const entry = analysis.entry_at_or_before(at);
  return entry == nullptr || at > entry->name_span.end ? nullptr : entry;
}

// Why an entry cannot have a name; empty for nothing.
std::string fault_of(const std::string &name, const Analysis &analysis) {
  if (name.empty()) return "a name is expected";
  if (name.size() >= longest_token) return "a name has at most 255 characters";
  if (name.find_first_of(std::string_view(" \t\r\n()=\"#\0", 10)) != std::string::npos)
    return "a name has no blanks, parentheses, quotes, \"=\" and \"#\"";
  if (ends_lookups(name)) return kztns::quoted(name) + " is reserved: it would end every lookup";
  if (analysis.first_of(name) != nullptr)
    return "there is an entry " + kztns::quoted(name) + " already";
  return {};
}

constexpr char no_name[] = "there is no name of an entry here";

}  // namespace

Json prepare_rename(const Question &question) {
  const std::shared_ptr<const Analysis> analysis = question.analyse();
  const AnalysedEntry *const entry = entry_of(question, *analysis);
  if (entry == nullptr) return nullptr;
  return {{"range", json_of(question.document.range(entry->name_span))},
          {"placeholder", visible(entry->name)}};
}

Json rename(const Question &question) {
  const std::optional<std::string> name = text_in(member(question.params, "newName"));
  if (!name) return question.refuse(invalid_params, "expected a new name");
  const std::shared_ptr<const Analysis> analysis = question.analyse();
  const AnalysedEntry *const entry = entry_of(question, *analysis);
  if (entry == nullptr) return question.refuse(request_failed, no_name);
  const std::string fault = *name == entry->name ? "" : fault_of(*name, *analysis);
  if (!fault.empty()) return question.refuse(request_failed, fault);
  const Span span = entry->name_span;
  return workspace_edit(question.uri, json_of({{span.begin, span.end, *name}}, question.document));
}

}  // namespace kztns::lsp
