// Any bytes through the command's reports and back: the notation of docs/*.json.
#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "check/check_file.h"
#include "commands/list.h"
#include "lookup/lookup.h"
#include "report/check_formats.h"
#include "report/tree_json.h"
#include "support/random.h"
#include "text/escape.h"

namespace {

using nlohmann::json;
using namespace std::string_literals;

bool is_lower_hex(char c) { return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f'); }

// Written after the schemas: each \xHH is a byte, all else stands for itself.
std::string bytes_of(const std::string &text) {
  std::string bytes;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool escape = text.compare(i, 2, "\\x") == 0 && i + 3 < text.size() &&
                        is_lower_hex(text[i + 2]) && is_lower_hex(text[i + 3]);
    if (!escape) {
      bytes += text[i];
      continue;
    }
    bytes += static_cast<char>(std::stoi(text.substr(i + 2, 2), nullptr, 16));
    i += 3;
  }
  return bytes;
}

// Each byte and each pair of bytes that mean something, and texts put together of
// the pieces that a notation may stumble over.
std::vector<std::string> samples() {
  std::vector<std::string> texts;
  for (int i = 0; i < 256; ++i) texts.push_back("a"s + static_cast<char>(i) + "b");
  const std::vector<std::string> pieces = {
      "\\",   "x",    "\\x", "4",    "41",       "f",       "\xFF",         "\xC3",  "\xC3\xA4",
      "\xE2", "\x80", "\n",  "\x1B", "\xC2\x9B", "\\u202e", "\xE2\x80\xAE", "\\x5c", "A"};
  support::Random random(1);
  for (int i = 0; i < 2000; ++i) {
    std::string text;
    for (int length = 0; length < 6; ++length) text += pieces[random.below(pieces.size())];
    texts.push_back(text);
  }
  return texts;
}

// Whether a terminal would take all of it as letters.
bool is_plain(const std::string &text) { return kztns::visible_json(text) == text; }

}  // namespace

TEST(Bytes, ComeBackFromMessages) {
  for (const std::string &text : samples()) {
    const std::string shown = kztns::visible(text);
    EXPECT_EQ(bytes_of(shown), text);
    EXPECT_TRUE(is_plain(shown) && shown.find('\n') == std::string::npos) << shown;
  }
}

TEST(Bytes, ComeBackFromTheReportOfCheck) {
  for (const std::string &text : samples()) {
    kztns::CheckReport report;
    report.file = text;
    report.entries.push_back({text, {}, kztns::Verdict::ok});
    kztns::Finding finding = {};
    finding.entry = text;
    report.findings.push_back(finding);
    const std::string printed = kztns::render_json(report);
    EXPECT_TRUE(is_plain(printed));
    const json read = json::parse(printed);
    EXPECT_EQ(bytes_of(read["file"]), text);
    EXPECT_EQ(bytes_of(read["entries"][0]["name"]), text);
    EXPECT_EQ(bytes_of(read["findings"][0]["entry"]), text);
  }
}

// Many in one report, which describes every rule.
TEST(Bytes, ComeBackFromTheReportForReviewTools) {
  constexpr std::size_t most = 500;
  const std::vector<std::string> texts = samples();
  for (std::size_t first = 0; first < texts.size(); first += most) {
    const std::size_t count = std::min(most, texts.size() - first);
    kztns::CheckReport report;
    for (std::size_t i = 0; i < count; ++i) {
      kztns::Finding finding = {};
      finding.entry = texts[first + i];
      finding.text = "x";
      finding.remedy = "y";
      report.findings.push_back(finding);
    }
    const std::string printed = kztns::render_sarif(report);
    EXPECT_TRUE(is_plain(printed));
    const json results = json::parse(printed)["runs"][0]["results"];
    ASSERT_EQ(results.size(), count);
    for (std::size_t i = 0; i < count; ++i)
      EXPECT_EQ(bytes_of(results[i]["message"]["text"]), texts[first + i] + ": x; y");
  }
}

TEST(Bytes, ComeBackFromTheList) {
  for (const std::string &text : samples()) {
    const std::string printed =
        kztns::list_line({text, 1, kztns::Verdict::ok, text}, kztns::ListFormat::json, {});
    EXPECT_TRUE(is_plain(printed));
    EXPECT_EQ(bytes_of(json::parse(printed)["name"]), text);
    EXPECT_EQ(bytes_of(json::parse(printed)["link"]), text);
  }
}

TEST(Bytes, ComeBackFromTheTree) {
  for (const std::string &text : samples()) {
    if (text.find('"') != std::string::npos) continue;
    kztns::Tree tree;
    const std::string identifier = "(DESCRIPTION=(ADDRESS=(HOST=\"" + text + "\")(PORT=1)))";
    ASSERT_EQ(kztns::look_up(identifier, {}, tree).outcome, kztns::Outcome::found);
    const std::string printed = kztns::tree_json(*tree.get());
    EXPECT_TRUE(is_plain(printed));
    const json host = json::parse(
        printed)["services"][0]["descriptions"][0]["address_lists"][0]["addresses"][0]["host"];
    EXPECT_EQ(bytes_of(host["value"]), text);
    EXPECT_EQ(host["length"], text.size());
  }
}

// Whoever reads the JSON gets the characters themselves.
TEST(Bytes, ThatAreUtf8StandInJsonAsTheyAre) {
  const std::string text = "C:\\x\n\x1B\xC3\xA4\xE2\x80\xAE\xF0\x9F\x90\x98";
  const std::string printed =
      kztns::list_line({text, 1, kztns::Verdict::ok, ""}, kztns::ListFormat::json, {});
  EXPECT_EQ(json::parse(printed)["name"], text);
}
