// What why says: forms of identifiers, further entries of a name, and its JSON.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "lookup/identifier_form.h"
#include "lookup/lookup_json.h"
#include "support/json_schema.h"

namespace {

using nlohmann::json;

const std::string sales =
    "sales = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1))(CONNECT_DATA = (SID = s)))\n";

json json_of(const std::string &identifier, const kztns::Lookup &lookup,
             const kztns::LookupReport &report, const std::string &link = "") {
  const json object = json::parse(kztns::lookup_json({identifier, lookup, report, false, link}));
  const std::string schema = KZOCI_SOURCE_DIR "/docs/why.schema.json";
  EXPECT_EQ(support::JsonSchema::of_file(schema).violations(object), std::vector<std::string>());
  return object;
}

}  // namespace

TEST(IdentifierForm, OfAPlainNameSaysNothing) {
  for (const char *const name : {"sales", "sales.example.com", "a:b", "a:", ""})
    EXPECT_EQ(kztns::form_of(name).note, "") << name;
}

TEST(IdentifierForm, OfHostAndService) {
  for (const char *const text : {"h:1521/s", "//h/s", "h:1521", "h/s", "[::1]:1521/s"}) {
    EXPECT_TRUE(kztns::form_of(text).note.starts_with("HOST:PORT/SERVICE is looked up as a name"))
        << text;
    EXPECT_EQ(kztns::form_of(text).name, "") << text;
  }
}

TEST(IdentifierForm, OfCredentials) {
  for (const char *const text : {"u/p@sales", "u@sales", "u/p@q@ sales", "/@sales"}) {
    EXPECT_TRUE(kztns::form_of(text).note.starts_with("USER/PASSWORD@NAME is looked up as a name"))
        << text;
    EXPECT_EQ(kztns::form_of(text).name, "sales") << text;
  }
  EXPECT_EQ(kztns::form_of("u/p@h:1/s").name, "");
  EXPECT_NE(kztns::form_of("u/p@h:1/s").note.find("HOST:PORT/SERVICE"), std::string::npos);
}

TEST(IdentifierForm, OfDescriptorsThatAreNone) {
  for (const char *const text :
       {"(DESCRIPTION_LIST=(DESCRIPTION=(X=y@z)))", " (ADDRESS = (HOST = h))"})
    EXPECT_TRUE(kztns::form_of(text).note.starts_with("only (DESCRIPTION = ...)")) << text;
}

TEST(IdentifierForm, OfBlanksAroundAName) {
  EXPECT_NE(kztns::form_of(" sales").note, "");
  EXPECT_EQ(kztns::form_of("\tsales \n").name, "sales");
}

TEST(Password, IsHidden) {
  EXPECT_EQ(kztns::without_password("user/secret@sales"), "user/***@sales");
  EXPECT_EQ(kztns::without_password("user/ti@g/er@sales"), "user/***@sales");
  EXPECT_EQ(kztns::without_password("/secret@h:1/s"), "/***@h:1/s");
  EXPECT_EQ(kztns::without_password("user@sales/x"), "user@sales/x");
  EXPECT_EQ(kztns::without_password("h:1/s"), "h:1/s");
  EXPECT_EQ(kztns::without_password("sales"), "sales");
}

TEST(LookupReport, OfCredentialsLooksUpTheNameInThem) {
  const kztns::LookupReport report = kztns::report_of_name("u/p@sales", sales + sales);
  ASSERT_EQ(report.near.size(), 1u);
  EXPECT_EQ(report.near[0].clause, "there is an entry \"sales\" at 1:1");
  EXPECT_NE(report.note, "");
}

TEST(LookupReport, OfANameThatIsThereHasNoNote) {
  EXPECT_EQ(kztns::report_of_name("u/p@sales", "u/p@" + sales).note, "");
}

TEST(LookupReport, NamesFourNearEntries) {
  std::string text;
  for (const char end : {'1', '2', '3', '4', '5', '6'})
    text += "sale" + std::string(1, end) + sales.substr(sales.find(' '));
  EXPECT_EQ(kztns::report_of_name("sales", text).near.size(), 4u);
}

TEST(LookupReport, TellsFurtherEntriesOfTheName) {
  const kztns::LookupReport report =
      kztns::report_of_name("sales", sales + "x" + sales + sales + sales);
  ASSERT_EQ(report.shadowed.size(), 2u);
  EXPECT_EQ(to_string(report.shadowed[0]), "3:1");
  EXPECT_EQ(to_string(report.shadowed[1]), "4:1");
  EXPECT_TRUE(kztns::report_of_name("xsales", sales + "x" + sales).shadowed.empty());
}

TEST(LookupJson, OfAnEntryThatIsFound) {
  kztns::Lookup lookup;
  lookup.outcome = kztns::Outcome::found;
  lookup.variable = "TNS_ADMIN";
  lookup.file_name = "names\xFF.ora";
  const json object = json_of(
      "sales", lookup, kztns::report_of_name("sales", "a = (X = 1)\n" + sales + sales), "h:1/s");
  EXPECT_EQ(object["outcome"], "found");
  EXPECT_EQ(object["link"], "h:1/s");
  EXPECT_EQ(object["skipped"], 1);
  EXPECT_EQ(object["entry"], json::parse(R"({"line": 2, "column": 1})"));
  EXPECT_EQ(object["shadowed"], json::parse(R"([{"line": 3, "column": 1}])"));
  EXPECT_EQ(object["file"]["path"], "names\\xff.ora");
  EXPECT_EQ(object["file"]["chosen_by"], "TNS_ADMIN");
  EXPECT_EQ(object["fault"], nullptr);
}

TEST(LookupJson, OfOneThatIsRefused) {
  kztns::Lookup lookup;
  lookup.outcome = kztns::Outcome::malformed;
  lookup.is_literal = true;
  const json object = json_of("(DESCRIPTION=(SERVER=x))", lookup,
                              kztns::report_of_literal("(DESCRIPTION=(SERVER=x))"));
  EXPECT_EQ(object["outcome"], "malformed");
  EXPECT_EQ(object["file"], nullptr);
  EXPECT_EQ(object["entry"], nullptr);
  EXPECT_EQ(object["fault"]["column"], 15);
  EXPECT_EQ(object["fault"]["rule"], "unknown-key");
  EXPECT_EQ(object["fault"]["text"], "DESCRIPTION: unknown key SERVER");
}

TEST(Lookups, OfALiteralSpeakOfItsText) {
  const auto fault = [](const std::string &literal) {
    return kztns::report_of_literal(literal).fault->text;
  };
  EXPECT_EQ(
      fault("(DESCRIPTION=(ADDRESS=(HOST=h)"),
      "DESCRIPTION: ADDRESS is not closed: expected \")\" before the end of the text at 1:31");
  EXPECT_EQ(fault("(DESCRIPTION=(ADDRESS=(HOST=\"h"),
            "DESCRIPTION/ADDRESS: unterminated quote: the text ends at 1:31");
}

TEST(LookupJson, HoldsNoPassword) {
  const json object =
      json_of("user/secret@sales", {}, kztns::report_of_name("user/secret@sales", sales));
  EXPECT_EQ(object["outcome"], "not found");
  EXPECT_EQ(object["identifier"], "user/***@sales");
  EXPECT_EQ(object.dump().find("secret"), std::string::npos);
}
