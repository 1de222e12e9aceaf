#include "report/check_formats.h"

#include <algorithm>

#include <nlohmann/json.hpp>

#include "kzoci/version.h"
#include "report/fingerprints.h"
#include "report/rule_text.h"
#include "text/uri.h"
#include "text/utf8.h"

namespace kztns {
namespace {

using Json = nlohmann::ordered_json;

Json artifact(const std::string &uri) { return {{"uri", uri}}; }

Json rules() {
  Json list = Json::array();
  for (std::size_t i = 0; i < rule_count; ++i) {
    const auto id = static_cast<Rule>(i);
    const RuleRow &rule = row_of(id);
    list.push_back({{"id", rule.id},
                    {"shortDescription", {{"text", rule.text}}},
                    {"help", {{"text", explanation(id)}, {"markdown", section_of(id)}}},
                    {"defaultConfiguration", {{"level", name_of(rule.severity)}}}});
  }
  return list;
}

std::string message(const Finding &finding) {
  std::string text;
  if (!finding.entry.empty()) text += excerpt(finding.entry) + ": ";
  if (!finding.path.empty()) text += finding.path + ": ";
  return text + finding.text + "; " + finding.remedy;
}

Json replacement(const Edit &edit, const EditPlace &place) {
  const Json region = {{"startLine", place.begin.line},
                       {"startColumn", place.begin_character},
                       {"endLine", place.end.line},
                       {"endColumn", place.end_character}};
  Json change = {{"deletedRegion", region}};
  if (!edit.text.empty()) change["insertedContent"] = {{"text", edit.text}};
  return change;
}

// Whether SARIF can tell the finding's fix: its texts are UTF-8, and its columns are
// counted in characters, which is not done for very long lines.
bool has_fix_to_show(const Finding &finding) {
  const auto is_countable = [](const EditPlace &place) {
    return std::max(place.begin.column, place.end.column) <= NamesText::longest_counted_line;
  };
  return finding.fix && !finding.places.empty() &&
         std::all_of(finding.places.begin(), finding.places.end(), is_countable) &&
         std::all_of(finding.fix.edits.begin(), finding.fix.edits.end(),
                     [](const Edit &edit) { return is_utf8(edit.text); });
}

Json fixes(const std::string &uri, const Finding &finding) {
  Json replacements = Json::array();
  for (std::size_t i = 0; i < finding.places.size(); ++i)
    replacements.push_back(replacement(finding.fix.edits[i], finding.places[i]));
  const Json change = {{"artifactLocation", artifact(uri)},
                       {"replacements", std::move(replacements)}};
  const Json fix = {{"description", {{"text", finding.remedy}}},
                    {"artifactChanges", Json::array({change})},
                    {"properties", {{"applicability", name_of(finding.fix.applicability)}}}};
  return Json::array({fix});
}

Json result(const std::string &uri, const Finding &finding, const std::string &fingerprint) {
  const Json region = {{"startLine", finding.position.line}, {"startColumn", finding.character}};
  const Json location = {
      {"physicalLocation", {{"artifactLocation", artifact(uri)}, {"region", region}}}};
  Json object = {{"ruleId", row_of(finding.rule).id},
                 {"ruleIndex", static_cast<std::size_t>(finding.rule)},
                 {"level", name_of(finding.severity)},
                 {"message", {{"text", message(finding)}}},
                 {"locations", Json::array({location})},
                 {"partialFingerprints", {{"primaryLocationLineHash", fingerprint}}}};
  if (has_fix_to_show(finding)) object["fixes"] = fixes(uri, finding);
  return object;
}

Json notification(const char *level, const std::string &text, const std::string &file) {
  const Json location = {{"physicalLocation", {{"artifactLocation", artifact(uri_of(file))}}}};
  return {{"level", level}, {"message", {{"text", text}}}, {"locations", Json::array({location})}};
}

void tell_what_is_left_out(const CheckReport &report, Json &notifications) {
  for (std::size_t i = 0; i < rule_count; ++i) {
    const std::size_t more = left_out(report, static_cast<Rule>(i));
    if (more == 0) continue;
    const std::string id(row_of(static_cast<Rule>(i)).id);
    Json told = notification(
        "warning",
        visible(report.file) + ": " + std::to_string(more) + " more of [" + id + "] are left out",
        report.file);
    told["associatedRule"] = {{"id", id}, {"index", i}};
    notifications.push_back(std::move(told));
  }
}

// What a reader of the results has to know of how they came about.
Json invocation(const CheckRun &run) {
  Json notifications = Json::array();
  for (const CheckReport &report : run.reports) tell_what_is_left_out(report, notifications);
  for (const UnreadFile &unread : run.unread)
    notifications.push_back(
        notification("error", visible(unread.file) + " " + unread.fault, unread.file));
  return {{"executionSuccessful", run.unread.empty()},
          {"toolExecutionNotifications", std::move(notifications)}};
}

Json results(const CheckRun &run) {
  Json list = Json::array();
  for (const CheckReport &report : run.reports) {
    const std::string uri = uri_of(report.file);
    Fingerprints fingerprints;
    for (const Finding &finding : report.findings)
      list.push_back(result(uri, finding, fingerprints.next(finding)));
  }
  return list;
}

}  // namespace

// Code review tools read it.
std::string render_sarif(const CheckRun &run, const TextStyle &) {
  const Json driver = {{"name", "kztns"}, {"version", KZOCI_VERSION}, {"rules", rules()}};
  const Json object = {{"tool", {{"driver", driver}}},
                       {"invocations", Json::array({invocation(run)})},
                       {"columnKind", "unicodeCodePoints"},
                       {"results", results(run)}};
  const Json log = {{"$schema", "https://json.schemastore.org/sarif-2.1.0.json"},
                    {"version", "2.1.0"},
                    {"runs", Json::array({object})}};
  return visible_json(log.dump(2)) + "\n";
}

}  // namespace kztns
