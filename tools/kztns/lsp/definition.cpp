#include <filesystem>

#include <nlohmann/json.hpp>

#include "lsp/capabilities.h"
#include "mend/inline_files.h"
#include "text/uri.h"

namespace kztns::lsp {
namespace {

std::string without_dots(const std::string &path) {
  return std::filesystem::path(path).lexically_normal().string();
}

}  // namespace

Json definition(const Question &question) {
  const std::optional<LinePosition> position = position_in(member(question.params, "position"));
  if (!position) return question.refuse(invalid_params, "expected a position");
  const Offset at = question.document.offset(*position);
  const std::string included(included_file(question.document.line_at(at)));
  const std::optional<std::string> path = path_of(question.uri);
  if (!included.empty() && path)
    return location_of(uri_of(without_dots(from_folder_of(*path, included))), LineRange{});
  const std::shared_ptr<const Analysis> analysis = question.analyse();
  const AnalysedEntry *const entry = analysis->entry_at_or_before(at);
  if (entry == nullptr || at > entry->name_span.end) return nullptr;
  const AnalysedEntry &first = *analysis->first_of(entry->name);
  return location_of(question.uri, question.document.range(first.name_span));
}

}  // namespace kztns::lsp
