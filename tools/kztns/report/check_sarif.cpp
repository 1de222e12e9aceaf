#include "report/check_formats.h"

#include <cctype>
#include <cstdio>

#include <nlohmann/json.hpp>

namespace kztns {
namespace {

using Json = nlohmann::ordered_json;

// A path as a URI: what is no plain character, as "%..".
std::string uri_of(const std::string &path) {
  std::string uri;
  for (const char c : path) {
    const auto byte = static_cast<unsigned char>(c);
    if (std::isalnum(byte) != 0 || std::string_view("-._~/").find(c) != std::string_view::npos) {
      uri += c;
      continue;
    }
    char escaped[4];
    std::snprintf(escaped, sizeof escaped, "%%%02X", byte);
    uri += escaped;
  }
  return uri.starts_with("/") ? "file://" + uri : uri;
}

Json rules() {
  Json list = Json::array();
  for (std::size_t i = 0; i < rule_count; ++i) {
    const RuleRow &rule = row_of(static_cast<Rule>(i));
    list.push_back({{"id", rule.id},
                    {"shortDescription", {{"text", rule.text}}},
                    {"help", {{"text", rule.remedy}}},
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

Json result(const std::string &uri, const Finding &finding) {
  const Json region = {{"startLine", finding.position.line}, {"startColumn", finding.character}};
  const Json location = {
      {"physicalLocation", {{"artifactLocation", {{"uri", uri}}}, {"region", region}}}};
  return {{"ruleId", row_of(finding.rule).id},
          {"ruleIndex", static_cast<std::size_t>(finding.rule)},
          {"level", name_of(finding.severity)},
          {"message", {{"text", message(finding)}}},
          {"locations", Json::array({location})}};
}

}  // namespace

// Code review tools read it.
std::string render_sarif(const CheckReport &report, const TextStyle &) {
  Json results = Json::array();
  const std::string uri = uri_of(report.file);
  for (const Finding &finding : report.findings) results.push_back(result(uri, finding));
  const Json driver = {{"name", "kztns"}, {"rules", rules()}};
  const Json run = {{"tool", {{"driver", driver}}},
                    {"columnKind", "unicodeCodePoints"},
                    {"results", std::move(results)}};
  const Json log = {{"$schema", "https://json.schemastore.org/sarif-2.1.0.json"},
                    {"version", "2.1.0"},
                    {"runs", Json::array({run})}};
  return visible_json(log.dump(2)) + "\n";
}

}  // namespace kztns
