#include "report/check_formats.h"

#include <nlohmann/json.hpp>

namespace kztns {
namespace {

using Json = nlohmann::ordered_json;

Json json_of(const Finding &finding) {
  const RuleRow &rule = row_of(finding.rule);
  return {{"line", finding.position.line},
          {"column", finding.position.column},
          {"severity", name_of(finding.severity)},
          {"rule", rule.id},
          {"entry", valid_utf8(finding.entry)},
          {"path", finding.path},
          {"text", finding.text},
          {"remedy", finding.remedy}};
}

Json json_of(const ReportEntry &entry) {
  return {{"name", valid_utf8(entry.name)},
          {"line", entry.position.line},
          {"column", entry.position.column},
          {"verdict", name_of(entry.verdict)}};
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

Json left_out(const CheckReport &report) {
  Json counts = Json::object();
  for (std::size_t i = 0; i < rule_count; ++i)
    if (report.left_out[i] > 0)
      counts[std::string(row_of(static_cast<Rule>(i)).id)] = report.left_out[i];
  return counts;
}

Json summary_of(const CheckReport &report) {
  Json counts = Json::object();
  std::size_t all = 0;
  for (const std::size_t count : report.verdicts) all += count;
  counts["entries"] = all;
  for (std::size_t i = 0; i < verdict_count; ++i)
    counts[std::string(name_of(static_cast<Verdict>(i)))] = report.verdicts[i];
  for (const Severity severity : {Severity::error, Severity::warning, Severity::note})
    counts[std::string(name_of(severity)) + "s"] =
        report.severities[static_cast<std::size_t>(severity)];
  return counts;
}

}  // namespace

// docs/check.schema.json describes it.
std::string render_json(const CheckReport &report, const TextStyle &) {
  std::string text = "{\n  \"file\": " + visible_json(Json(valid_utf8(report.file)).dump()) +
                     ",\n  \"findings\": ";
  append_list(text, report.findings);
  text += ",\n  \"left_out\": " + left_out(report).dump() + ",\n  \"entries\": ";
  append_list(text, report.entries);
  return text + ",\n  \"summary\": " + summary_of(report).dump() + "\n}\n";
}

}  // namespace kztns
