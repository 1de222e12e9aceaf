#include <algorithm>

#include <nlohmann/json.hpp>

#include "format/pieces.h"
#include "lsp/capabilities.h"
#include "text/escape.h"

namespace kztns::lsp {
namespace {

// Errors, warnings and notes, as the protocol counts them.
int severity_of(Severity severity) {
  constexpr int information = 3;
  return severity == Severity::note ? information : static_cast<int>(severity) + 1;
}

// The token at a place, as far as it is on the same line; at least one character.
Span token_at(const std::string &text, Offset at) {
  const auto size = static_cast<Offset>(text.size());
  if (at >= size) return {size, size};
  const std::vector<Piece> pieces = pieces_of(text, at, at + 1);
  if (pieces.empty()) return {at, at + 1};
  const auto end_of_line =
      static_cast<Offset>(std::min(text.find_first_of("\r\n", at), text.size()));
  return {at, std::max(at, std::min(pieces.front().span.end, end_of_line))};
}

std::string message_of(const Finding &finding) {
  std::string text;
  if (!finding.entry.empty()) text += excerpt(finding.entry) + ": ";
  if (!finding.path.empty()) text += finding.path + ": ";
  return text + finding.text + "; " + finding.remedy;
}

std::string message_of_place(const Finding &finding) {
  if (finding.rule == Rule::duplicate) return "the first entry of this name";
  if (finding.rule == Rule::after_reserved) return "every lookup ends here";
  if (finding.rule == Rule::half_comment) return "the name of the block";
  return "the other place";
}

}  // namespace

Json diagnostics_of(const Analysis &analysis, const std::string &uri, const Document &document,
                    const ClientFeatures &client, const std::string &documents) {
  Json list = Json::array();
  for (const Finding &finding : analysis.report.findings) {
    const std::string id(row_of(finding.rule).id);
    Json diagnostic = {{"range", json_of(document.range(token_at(document.text(), finding.at)))},
                       {"severity", severity_of(finding.severity)},
                       {"code", id},
                       {"source", "kztns"},
                       {"message", message_of(finding)}};
    if (client.code_descriptions && !documents.empty())
      diagnostic["codeDescription"] = {{"href", documents + "#" + id}};
    if (client.related_places && finding.related) {
      const LineRange range = document.range(token_at(document.text(), *finding.related));
      diagnostic["relatedInformation"] = Json::array(
          {{{"location", location_of(uri, range)}, {"message", message_of_place(finding)}}});
    }
    list.push_back(std::move(diagnostic));
  }
  return list;
}

}  // namespace kztns::lsp
