#include "lookup/lookup_json.h"

#include <cstdlib>

#include <nlohmann/json.hpp>

#include "kzoci/oci_tnsname/names_file.h"
#include "lookup/identifier_form.h"
#include "text/escape.h"

namespace kztns {
namespace {

using Json = nlohmann::ordered_json;

Json json_of(Position position) { return {{"line", position.line}, {"column", position.column}}; }

Json json_of(const Remark &remark) {
  Json object = json_of(remark.position);
  object["text"] = remark.text;
  object["remedy"] = remark.remedy;
  object["rule"] = remark.rule;
  return object;
}

Json json_of(const NearEntry &near) { return near.clause; }

template <class Part>
Json list_of(const std::vector<Part> &parts) {
  Json list = Json::array();
  for (const Part &part : parts) list.push_back(json_of(part));
  return list;
}

template <class Part>
Json json_or_null(const std::optional<Part> &part) {
  return part ? json_of(*part) : Json(nullptr);
}

Json file_of(const ExplainedLookup &explained) {
  const Lookup &lookup = explained.lookup;
  if (!lookup.file_name) return nullptr;
  const bool given = explained.file_given;
  return {{"path", valid_utf8(*lookup.file_name)},
          {"chosen_by", given ? "--file" : lookup.variable},
          {"ignored", given ? std::vector<std::string>() : ignored_variables(lookup)},
          {"fault", lookup.file_fault.text}};
}

const char *name_of(Outcome outcome) {
  switch (outcome) {
    case Outcome::found:
      return "found";
    case Outcome::malformed:
      return "malformed";
    default:
      return "not found";
  }
}

}  // namespace

std::vector<std::string> ignored_variables(const Lookup &lookup) {
  std::vector<std::string> ignored;
  bool chosen = false;
  for (const auto &source : kzoci::tns::names_file_sources) {
    if (chosen && std::getenv(source.variable) != nullptr) ignored.push_back(source.variable);
    chosen = chosen || lookup.variable == source.variable;
  }
  return ignored;
}

std::string lookup_json(const ExplainedLookup &explained) {
  const LookupReport &report = explained.report;
  const Json object = {
      {"identifier", valid_utf8(without_password(explained.identifier))},
      {"literal", explained.lookup.is_literal},
      {"file", file_of(explained)},
      {"skipped", report.passed},
      {"entry", json_or_null(report.entry)},
      {"outcome", name_of(explained.lookup.outcome)},
      {"link", valid_utf8(explained.link)},
      {"fault", json_or_null(report.fault)},
      {"warnings", list_of(report.warnings)},
      {"shadowed", list_of(report.shadowed)},
      {"note", report.note},
      {"near", list_of(report.near)},
  };
  return visible_json(object.dump(2)) + "\n";
}

}  // namespace kztns
