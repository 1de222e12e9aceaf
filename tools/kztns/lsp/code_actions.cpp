#include <algorithm>

#include <nlohmann/json.hpp>

#include "lsp/capabilities.h"
#include "mend/mend_file.h"
#include "text/original_edits.h"

namespace kztns::lsp {
namespace {

constexpr char quick_fix[] = "quickfix";
constexpr char fix_all[] = "source.fixAll.kztns";

// Whether a client that asks for some kinds of actions only wants this one: "source" stands
// for "source.fixAll", too.
bool is_wanted(const Json &params, std::string_view kind) {
  const Json &only = member(params, "context", "only");
  if (!only.is_array()) return true;
  return std::any_of(only.begin(), only.end(), [&](const Json &value) {
    const std::string asked = text_in(value).value_or("-");
    return asked.empty() || kind == asked || kind.starts_with(asked + ".");
  });
}

// The diagnostics of the client that are this finding.
Json fixed_diagnostics(const Question &question, const Finding &finding) {
  Json list = Json::array();
  for (const Json &diagnostic : member(question.params, "context", "diagnostics")) {
    const std::optional<LineRange> range = range_in(member(diagnostic, "range"));
    if (range && question.document.offset(range->begin) == finding.at &&
        text_in(member(diagnostic, "code")) == std::string(row_of(finding.rule).id))
      list.push_back(diagnostic);
  }
  return list;
}

Json fix_of(const Question &question, const Finding &finding) {
  return {{"title", title_of_fix(finding)},
          {"kind", quick_fix},
          {"diagnostics", fixed_diagnostics(question, finding)},
          {"isPreferred", finding.fix.applicability == Applicability::safe},
          {"edit", workspace_edit(question.uri, json_of(finding.fix.edits, question.document))}};
}

// On which line of the document the place is, from a range's first to its last.
bool is_on_lines_of(const Document &document, LineRange range, Offset at) {
  const std::uint32_t line = document.position(at).line;
  return range.begin.line <= line && line <= range.end.line;
}

// Whether kztns fix applies a fix without guesses.
bool has_safe_fix(const Analysis &analysis) {
  return std::any_of(
      analysis.report.findings.begin(), analysis.report.findings.end(),
      [](const Finding &finding) { return finding.applied_among == Applicability::safe; });
}

// What kztns fix changes in a text, without guesses: sorted.
std::vector<Edit> edits_of_mending(const std::string &content) {
  const NamesText text(content);
  Mender mender(text, {"names"});
  mender.apply_fixes();
  if (mender.edited() == nullptr) return {};
  return original_edits(*mender.edited(), static_cast<Offset>(content.size()));
}

Json edit_of_all(const Question &question, const std::vector<Edit> &edits) {
  return workspace_edit(question.uri, json_of(edits, question.document));
}

// Adds the action that mends all; where its edits are asked for at once, not without any.
void offer_all(const Question &question, Json &actions) {
  Json action = {{"title", "Fix all that kztns fix mends safely"}, {"kind", fix_all}};
  if (question.client.resolves_edits) {
    action["data"] = {{"uri", question.uri}, {"version", question.document.version()}};
  } else {
    const std::vector<Edit> edits = edits_of_mending(question.document.text());
    if (edits.empty()) return;
    action["edit"] = edit_of_all(question, edits);
  }
  actions.push_back(std::move(action));
}

}  // namespace

std::string title_of_fix(const Finding &finding) {
  const bool guesses = finding.fix.applicability == Applicability::unsafe;
  return std::string(guesses ? "Fix (a guess): " : "Fix: ") + finding.remedy + " [" +
         std::string(row_of(finding.rule).id) + "]";
}

Json code_actions(const Question &question) {
  const std::optional<LineRange> range = range_in(member(question.params, "range"));
  if (!range) return question.refuse(invalid_params, "expected a range");
  Json actions = Json::array();
  if (!question.client.code_action_objects) return actions;
  const std::shared_ptr<const Analysis> analysis = question.analyse();
  if (is_wanted(question.params, quick_fix))
    for (const Finding &finding : analysis->report.findings)
      if (finding.fix && is_on_lines_of(question.document, *range, finding.at))
        actions.push_back(fix_of(question, finding));
  if (is_wanted(question.params, fix_all) && has_safe_fix(*analysis)) offer_all(question, actions);
  return actions;
}

Json resolved_action(const Question &question) {
  Json action = question.params;
  if (integer_in(member(action, "data", "version")) == question.document.version())
    action["edit"] = edit_of_all(question, edits_of_mending(question.document.text()));
  return action;
}

}  // namespace kztns::lsp
