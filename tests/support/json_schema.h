// A validator for the part of JSON Schema (draft 2020-12) that the schemas under
// docs/ use. A keyword that it does not know is a violation as well, so that no
// rule of a schema goes unchecked.
#pragma once

#include <fstream>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

namespace support {

class JsonSchema {
 public:
  using Json = nlohmann::json;

  explicit JsonSchema(Json schema) : schema_(std::move(schema)) {}

  // Reads the schema from a file; throws when it cannot.
  static JsonSchema of_file(const std::string &path) {
    std::ifstream file(path);
    if (!file) throw std::runtime_error("cannot open " + path);
    return JsonSchema(Json::parse(file));
  }

  // What is wrong with an instance, as "POINTER: what"; empty when it is valid.
  std::vector<std::string> violations(const Json &instance) const {
    std::vector<std::string> found;
    check(schema_, instance, "", found);
    return found;
  }

 private:
  using Found = std::vector<std::string>;

  void check(const Json &schema, const Json &instance, const std::string &at, Found &found) const {
    if (schema.is_boolean()) {
      if (!schema.get<bool>()) found.push_back(at + ": nothing may stand here");
      return;
    }
    for (const auto &[keyword, rule] : schema.items())
      check_keyword(keyword, rule, schema, instance, at, found);
  }

  void check_keyword(const std::string &keyword, const Json &rule, const Json &schema,
                     const Json &instance, const std::string &at, Found &found) const {
    static const std::set<std::string> annotations = {
        "$schema", "$id", "$defs", "$comment", "title", "default", "examples", "description"};
    if (annotations.count(keyword) > 0) return;
    if (keyword == "$ref") return check(referred(rule.get<std::string>()), instance, at, found);
    if (keyword == "oneOf") return check_one_of(rule, instance, at, found);
    if (keyword == "type") return check_type(rule, instance, at, found);
    if (keyword == "enum") return check_enum(rule, instance, at, found);
    if (keyword == "const") return check_enum(Json::array({rule}), instance, at, found);
    if (keyword == "minimum") return check_minimum(rule, instance, at, found);
    if (keyword == "minItems") return check_min_items(rule, instance, at, found);
    if (keyword == "items") return check_items(rule, instance, at, found);
    if (keyword == "required") return check_required(rule, instance, at, found);
    if (keyword == "properties") return check_properties(rule, instance, at, found);
    if (keyword == "additionalProperties")
      return check_others(rule, schema.value("properties", Json::object()), instance, at, found);
    found.push_back(at + ": the schema's keyword " + keyword + " is not known");
  }

  // Where none fits, what is wrong with the one that comes closest is told.
  void check_one_of(const Json &alternatives, const Json &instance, const std::string &at,
                    Found &found) const {
    std::size_t fitting = 0;
    Found closest;
    for (const Json &alternative : alternatives) {
      Found violations;
      check(alternative, instance, at, violations);
      if (violations.empty()) ++fitting;
      if (closest.empty() || violations.size() < closest.size()) closest = violations;
    }
    if (fitting == 0) found.insert(found.end(), closest.begin(), closest.end());
    if (fitting > 1) found.push_back(at + ": more than one alternative fits");
  }

  // A reference is "#/$defs/NAME", or "#" for the whole.
  const Json &referred(const std::string &reference) const {
    return schema_.at(Json::json_pointer(reference.substr(1)));
  }

  static bool is_of_type(const Json &instance, const std::string &type) {
    if (type == "integer") return instance.is_number_integer();
    if (type == "number") return instance.is_number();
    return type == instance.type_name();
  }

  static void check_type(const Json &rule, const Json &instance, const std::string &at,
                         Found &found) {
    const Json types = rule.is_array() ? rule : Json::array({rule});
    for (const Json &type : types)
      if (is_of_type(instance, type.get<std::string>())) return;
    found.push_back(at + ": " + instance.type_name() + " is not " + rule.dump());
  }

  static void check_enum(const Json &rule, const Json &instance, const std::string &at,
                         Found &found) {
    for (const Json &value : rule)
      if (value == instance) return;
    found.push_back(at + ": " + instance.dump() + " is none of " + rule.dump());
  }

  static void check_minimum(const Json &rule, const Json &instance, const std::string &at,
                            Found &found) {
    if (instance.is_number() && instance < rule)
      found.push_back(at + ": " + instance.dump() + " is less than " + rule.dump());
  }

  static void check_min_items(const Json &rule, const Json &instance, const std::string &at,
                              Found &found) {
    if (instance.is_array() && instance.size() < rule.get<std::size_t>())
      found.push_back(at + ": fewer than " + rule.dump() + " elements");
  }

  void check_items(const Json &rule, const Json &instance, const std::string &at,
                   Found &found) const {
    if (!instance.is_array()) return;
    for (std::size_t i = 0; i < instance.size(); ++i)
      check(rule, instance[i], at + "/" + std::to_string(i), found);
  }

  static void check_required(const Json &rule, const Json &instance, const std::string &at,
                             Found &found) {
    if (!instance.is_object()) return;
    for (const Json &name : rule)
      if (!instance.contains(name.get<std::string>()))
        found.push_back(at + ": " + name.get<std::string>() + " is missing");
  }

  void check_properties(const Json &rule, const Json &instance, const std::string &at,
                        Found &found) const {
    if (!instance.is_object()) return;
    for (const auto &[name, value] : rule.items())
      if (instance.contains(name)) check(value, instance.at(name), at + "/" + name, found);
  }

  void check_others(const Json &rule, const Json &named, const Json &instance,
                    const std::string &at, Found &found) const {
    if (!instance.is_object()) return;
    for (const auto &[name, value] : instance.items())
      if (!named.contains(name)) check(rule, value, at + "/" + name, found);
  }

  Json schema_;
};

}  // namespace support
