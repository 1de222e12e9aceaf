#include "report/check_formats.h"

#include <nlohmann/json.hpp>

namespace kztns {
namespace {

using Json = nlohmann::ordered_json;

Json json_of(Position position, Offset at) {
  return {{"line", position.line}, {"column", position.column}, {"offset", at}};
}

Json json_of(const Finding &finding, std::size_t i) {
  const Edit &edit = finding.fix.edits[i];
  const EditPlace &place = finding.places[i];
  return {{"begin", json_of(place.begin, edit.begin)},
          {"end", json_of(place.end, edit.end)},
          {"text", valid_utf8(edit.text)}};
}

Json fix_of(const Finding &finding) {
  Json edits = Json::array();
  for (std::size_t i = 0; i < finding.places.size(); ++i) edits.push_back(json_of(finding, i));
  return {{"applicability", name_of(finding.fix.applicability)}, {"edits", std::move(edits)}};
}

Json json_of(const Finding &finding) {
  const RuleRow &rule = row_of(finding.rule);
  Json object = {{"line", finding.position.line},
                 {"column", finding.position.column},
                 {"severity", name_of(finding.severity)},
                 {"rule", rule.id},
                 {"entry", valid_utf8(finding.entry)},
                 {"path", finding.path},
                 {"text", finding.text},
                 {"remedy", finding.remedy}};
  if (finding.fix) object["fix"] = fix_of(finding);
  return object;
}

Json json_of(const ReportEntry &entry) {
  return {{"name", valid_utf8(entry.name)},
          {"line", entry.position.line},
          {"column", entry.position.column},
          {"verdict", name_of(entry.verdict)}};
}

Json json_of(const UnreadFile &unread) {
  return {{"file", valid_utf8(unread.file)}, {"text", unread.fault}};
}

// A list of objects, one a line. Made piece by piece: as one value it would take
// a hundred times the memory.
template <class Parts>
void append_list(std::string &to, const Parts &parts) {
  to += "[";
  for (std::size_t i = 0; i < parts.size(); ++i)
    to += (i > 0 ? ",\n    " : "\n    ") + visible_json(json_of(parts[i]).dump());
  to += parts.empty() ? "]" : "\n  ]";
}

Json left_out_of(const CheckReport &report) {
  Json counts = Json::object();
  for (std::size_t i = 0; i < rule_count; ++i)
    if (const std::size_t more = left_out(report, static_cast<Rule>(i)); more > 0)
      counts[std::string(row_of(static_cast<Rule>(i)).id)] = more;
  return counts;
}

Json summary_of(const RunTotals &totals) {
  Json counts = Json::object();
  std::size_t all = 0;
  for (const std::size_t count : totals.verdicts) all += count;
  counts["entries"] = all;
  for (std::size_t i = 0; i < verdict_count; ++i)
    counts[std::string(name_of(static_cast<Verdict>(i)))] = totals.verdicts[i];
  for (const Severity severity : {Severity::error, Severity::warning, Severity::note})
    counts[std::string(name_of(severity)) + "s"] =
        totals.severities[static_cast<std::size_t>(severity)];
  return counts;
}

void append_report(std::string &to, const CheckReport &report) {
  to += "{\n  \"file\": " + visible_json(Json(valid_utf8(report.file)).dump()) +
        ",\n  \"findings\": ";
  append_list(to, report.findings);
  to += ",\n  \"left_out\": " + left_out_of(report).dump() + ",\n  \"entries\": ";
  append_list(to, report.entries);
  to += ",\n  \"summary\": " + summary_of(totals_of(report)).dump() + "\n}";
}

}  // namespace

// docs/check.schema.json describes it.
std::string render_json(const CheckRun &run, const TextStyle &) {
  std::string text;
  if (!run.several) {
    for (const CheckReport &report : run.reports) append_report(text, report);
    return text + (text.empty() ? "" : "\n");
  }
  text = "{\"files\": [";
  for (const CheckReport &report : run.reports) {
    text += &report == run.reports.data() ? "\n" : ",\n";
    append_report(text, report);
  }
  text += run.reports.empty() ? "],\n" : "\n],\n";
  text += "\"unread\": ";
  append_list(text, run.unread);
  return text + ",\n\"summary\": " + summary_of(totals_of(run)).dump() + "}\n";
}

}  // namespace kztns
