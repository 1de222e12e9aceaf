#include <algorithm>

#include <nlohmann/json.hpp>

#include "kzoci/oci_tnsname/reserved_entry.h"
#include "lsp/capabilities.h"
#include "mend/inline_files.h"
#include "scan/reserved_names.h"
#include "text/escape.h"
#include "text/spelling.h"
#include "text/words.h"

namespace kztns::lsp {
namespace {

// The name of the system variables means them, and that of an IFILE line is none.
bool has_name_to_change(const Document &document, const AnalysedEntry &entry) {
  return !equal_but_for_case(entry.name, kzoci::tns::reserved_name) &&
         included_file(document.line_at(entry.name_span.begin)).empty();
}

// The entry to rename at the position that is asked about; null for none.
const AnalysedEntry *entry_of(const Question &question, const Analysis &analysis) {
  const std::optional<LinePosition> position = position_in(member(question.params, "position"));
  if (!position) return nullptr;
  const Offset at = question.document.offset(*position);
  const AnalysedEntry *const entry = analysis.entry_at_or_before(at);
  if (entry == nullptr || at > entry->name_span.end) return nullptr;
  return has_name_to_change(question.document, *entry) ? entry : nullptr;
}

// Why an entry cannot have a name; empty for nothing.
std::string fault_of(const std::string &name, const Analysis &analysis) {
  if (name.empty()) return "a name is expected";
  if (name.size() >= longest_token) return "a name has at most 255 characters";
  if (name.find_first_of(std::string_view(" \t\r\n()=\"#\0", 10)) != std::string::npos)
    return "a name has no blanks, parentheses, quotes, \"=\" and \"#\"";
  if (is_reserved(name))
    return kztns::quoted(name) + " is reserved: the entry would be read as system variables";
  if (analysis.first_of(name) != nullptr)
    return "there is an entry " + kztns::quoted(name) + " already";
  return {};
}

constexpr char no_name[] = "there is no name of an entry here that could be another one";

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
