// The validator that the tests of the command's reports rely on.
#include "support/json_schema.h"

#include <gtest/gtest.h>

namespace {

using nlohmann::json;
using Violations = std::vector<std::string>;

struct Row {
  const char *schema;
  const char *instance;
  Violations violations;
};

void expect_rows(const std::vector<Row> &rows) {
  for (const Row &row : rows) {
    SCOPED_TRACE(std::string(row.schema) + " over " + row.instance);
    const support::JsonSchema schema(json::parse(row.schema));
    EXPECT_EQ(schema.violations(json::parse(row.instance)), row.violations);
  }
}

TEST(JsonSchema, Type) {
  expect_rows({
      {R"({"type": "integer"})", "1", {}},
      {R"({"type": "integer"})", "-9223372036854775808", {}},
      {R"({"type": "integer"})", "1.5", {": number is not \"integer\""}},
      {R"({"type": "number"})", "1.5", {}},
      {R"({"type": "string"})", "\"1\"", {}},
      {R"({"type": "string"})", "1", {": number is not \"string\""}},
      {R"({"type": "boolean"})", "false", {}},
      {R"({"type": "array"})", "[]", {}},
      {R"({"type": ["object", "null"]})", "{}", {}},
      {R"({"type": ["object", "null"]})", "null", {}},
      {R"({"type": ["object", "null"]})", "[]", {R"(: array is not ["object","null"])"}},
  });
}

TEST(JsonSchema, Values) {
  expect_rows({
      {R"({"enum": ["a", 1]})", "1", {}},
      {R"({"enum": ["a", 1]})", "\"1\"", {R"(: "1" is none of ["a",1])"}},
      {R"({"const": "2.1.0"})", "\"2.1.0\"", {}},
      {R"({"const": "2.1.0"})", "2", {R"(: 2 is none of ["2.1.0"])"}},
      {R"({"minimum": 1})", "1", {}},
      {R"({"minimum": 1})", "0", {": 0 is less than 1"}},
      {R"({"minimum": 1})", "\"0\"", {}},
  });
}

TEST(JsonSchema, ObjectsAndArrays) {
  expect_rows({
      {R"({"required": ["a", "b"]})", R"({"a": 0})", {": b is missing"}},
      {R"({"properties": {"a": {"type": "string"}}})",
       R"({"a": 0, "b": 0})",
       {"/a: number is not \"string\""}},
      {R"({"properties": {"a": {}}, "additionalProperties": false})", R"({"a": 0})", {}},
      {R"({"properties": {"a": {}}, "additionalProperties": false})",
       R"({"b": 0})",
       {"/b: nothing may stand here"}},
      {R"({"additionalProperties": {"type": "integer"}})",
       R"({"b": "c"})",
       {"/b: string is not \"integer\""}},
      {R"({"items": {"type": "integer"}})",
       R"([0, "a", {}])",
       {"/1: string is not \"integer\"", "/2: object is not \"integer\""}},
      {R"({"minItems": 1})", "[0]", {}},
      {R"({"minItems": 1})", "[]", {": fewer than 1 elements"}},
      {R"({"required": ["a"], "items": {"type": "null"}, "minItems": 1})", "5", {}},
  });
}

TEST(JsonSchema, References) {
  const char *const list = R"({"$ref": "#/$defs/list", "$defs": {"list": {
      "type": "array", "items": {"$ref": "#/$defs/list"}}}})";
  expect_rows({{list, "[[], [[]]]", {}}, {list, "[[0]]", {"/0/0: number is not \"array\""}}});
}

TEST(JsonSchema, Alternatives) {
  const char *const either = R"({"oneOf": [{"type": "integer"}, {"type": "array", "minItems": 2,
      "items": {"type": "integer"}}]})";
  expect_rows({{either, "1", {}},
               {either, "[1, 2]", {}},
               {either, "\"a\"", {": string is not \"integer\""}},
               {R"({"oneOf": [{"type": "integer"}, {"minimum": 1}]})",
                "1",
                {": more than one alternative fits"}}});
}

TEST(JsonSchema, RulesBesideAReferenceCountToo) {
  expect_rows({{R"({"$ref": "#/$defs/text", "enum": ["a"], "$defs": {"text": {"type": "string"}}})",
                "\"b\"",
                {R"(: "b" is none of ["a"])"}}});
}

TEST(JsonSchema, UnknownKeywordIsAViolation) {
  expect_rows({{R"({"title": "t", "pattern": "a"})",
                "\"a\"",
                {": the schema's keyword pattern is not known"}}});
}

TEST(JsonSchema, FileThatIsNotThere) {
  EXPECT_THROW(support::JsonSchema::of_file("/nonexistent/schema.json"), std::runtime_error);
}

}  // namespace
