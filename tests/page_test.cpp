// What a page asks of the command's parts: messages in, messages out.
#include <gtest/gtest.h>

#include <algorithm>

#include <nlohmann/json.hpp>

#include "page/page.h"
#include "support/lsp_client.h"

using Json = nlohmann::json;

namespace {

constexpr char uri[] = "tnsnames.ora";

std::string entry(const std::string &name, const std::string &more = "") {
  return name + " = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1))\n  (CONNECT_DATA = (SID = s)" +
         more + "))\n";
}

// A range from the beginning of a line to that of another one.
Json lines(unsigned first, unsigned last) {
  return {{"start", {{"line", first}, {"character", 0}}},
          {"end", {{"line", last}, {"character", 0}}}};
}

class PageAnswers : public testing::Test {
 protected:
  PageAnswers() { ask("initialize", {{"capabilities", Json::object()}}); }

  Json answers(const std::string &message) { return Json::parse(page_.answer(message)); }

  // The answer to a request, after what else comes of it.
  Json ask(const std::string &method, const Json &params = Json::object()) {
    const Json all = answers(
        Json{{"jsonrpc", "2.0"}, {"id", ++id_}, {"method", method}, {"params", params}}.dump());
    EXPECT_FALSE(all.empty()) << method;
    EXPECT_EQ(all.back()["id"], id_);
    return all.back();
  }

  Json result(const std::string &method, const Json &params = Json::object()) {
    return ask(method, params)["result"];
  }

  void notify(const std::string &method, const Json &params) {
    EXPECT_EQ(answers(Json{{"jsonrpc", "2.0"}, {"method", method}, {"params", params}}.dump()),
              Json::array());
  }

  void open(const std::string &text) {
    notify("textDocument/didOpen",
           {{"textDocument", {{"uri", uri}, {"version", 1}, {"text", text}}}});
  }

  Json why(const std::string &identifier) {
    return result("kztns/why", {{"textDocument", {{"uri", uri}}}, {"identifier", identifier}});
  }

  kztns::Page page_;
  int id_ = 0;
};

}  // namespace

TEST_F(PageAnswers, ACheckTellsFindingsAndEntries) {
  open(entry("sales") + entry("orders", "(SERVER = DEDICATED)") + entry("sales"));
  const Json all = answers(R"({"jsonrpc":"2.0","id":7,"method":"kztns/check"})");
  ASSERT_EQ(all.size(), 2u);
  EXPECT_EQ(all[0]["method"], "textDocument/publishDiagnostics");
  EXPECT_EQ(all[0]["params"]["version"], 1);
  const Json &diagnostics = all[0]["params"]["diagnostics"];
  ASSERT_EQ(diagnostics.size(), 2u);
  EXPECT_EQ(diagnostics[0]["code"], "unknown-key");
  EXPECT_EQ(diagnostics[1]["code"], "duplicate");

  const Json &checked = all[1]["result"];
  EXPECT_EQ(all[1]["id"], 7);
  EXPECT_EQ(checked["complete"], true);
  EXPECT_EQ(checked["texts"][0], "unknown key SERVER");
  EXPECT_EQ(checked["texts"].size(), 2u);
  EXPECT_EQ(checked["severities"], Json::parse("[1,1,0]"));
  EXPECT_EQ(checked["verdicts"], Json::parse("[1,1,0,1,0]"));

  const Json listed = result("kztns/entries");
  EXPECT_EQ(listed["entries"],
            Json::parse(R"([{"name":"sales","line":1,"verdict":"ok","link":"h:1/s"},
                            {"name":"orders","line":3,"verdict":"refused","link":""},
                            {"name":"sales","line":5,"verdict":"shadowed","link":"h:1/s"}])"));
  EXPECT_EQ(listed["starts"], Json::parse("[[0,0],[2,0],[4,0]]"));
}

TEST_F(PageAnswers, AFindingHasItsFix) {
  open(entry("orders", "(SERVER = DEDICATED)"));
  const Json fixes = result("kztns/check")["fixes"];
  ASSERT_EQ(fixes.size(), 1u);
  EXPECT_EQ(fixes[0]["safe"], true);
  EXPECT_EQ(fixes[0]["title"].get<std::string>().substr(0, 4), "Fix:");
  ASSERT_EQ(fixes[0]["edits"].size(), 1u);
  EXPECT_EQ(fixes[0]["edits"][0]["newText"], "");
  EXPECT_EQ(fixes[0]["edits"][0]["range"]["start"], Json::parse(R"({"line":1,"character":27})"));

  // An entry without a value has no fix.
  notify("textDocument/didChange", {{"textDocument", {{"uri", uri}, {"version", 2}}},
                                    {"contentChanges", {{{"text", entry("a") + "b = ()\n"}}}}});
  const Json none = result("kztns/check")["fixes"];
  ASSERT_FALSE(none.empty());
  EXPECT_TRUE(none[0].is_null());
}

TEST_F(PageAnswers, ACheckIsMadeOncePerText) {
  EXPECT_TRUE(result("kztns/check").is_null());
  open(entry("sales"));
  EXPECT_FALSE(result("kztns/check").is_null());
  EXPECT_TRUE(result("kztns/check").is_null());
}

TEST_F(PageAnswers, AnEntryHasItsTree) {
  open(entry("sales") + "broken = (DESCRIPTION = (X = 1))\n");
  result("kztns/check");
  const Json sales = result("kztns/entry", {{"index", 0}});
  const Json &service = sales["services"][0];
  EXPECT_EQ(service["net_service_name"]["value"], "sales");
  EXPECT_EQ(service["descriptions"][0]["address_lists"][0]["addresses"][0]["host"]["value"], "h");
  EXPECT_TRUE(result("kztns/entry", {{"index", 1}}).is_null());
  EXPECT_TRUE(result("kztns/entry", {{"index", 2}}).is_null());
}

TEST_F(PageAnswers, WordsAreThoseOfTheGrammarAndOfVerdicts) {
  const Json words = result("kztns/words");
  EXPECT_EQ(words["keys"]["connect_timeout"], "KZLB_CONNECT_TIMEOUT");
  EXPECT_EQ(words["keys"]["remove_timeout"], "REMOVE_STRATEGY TIMEOUT");
  EXPECT_EQ(words["blocks"],
            Json::parse(R"(["ADDRESS","ADDRESS_LIST","APPEND_STRATEGY","CONNECT_DATA",
                            "DESCRIPTION","KZLB_BLACKLIST","REMOVE_STRATEGY"])"));
  EXPECT_EQ(words["verdicts"].size(), 5u);
  EXPECT_EQ(words["verdicts"]["shadowed"], "an earlier entry has this name");
}

TEST_F(PageAnswers, OtherParametersAreRefused) {
  open(entry("sales"));
  const Json document = {{"uri", uri}};
  const std::pair<const char *, Json> asked[] = {
      {"kztns/entry", {{"index", -1}}},
      {"kztns/entry", {{"index", "0"}}},
      {"kztns/format", {{"shown", lines(0, 0)}}},
      {"kztns/format", {{"textDocument", document}}},
      {"kztns/fix", {{"textDocument", document}, {"shown", 1}}},
      {"kztns/why", {{"identifier", "sales"}}},
      {"kztns/why", {{"textDocument", document}}},
      {"kztns/why", {{"textDocument", document}, {"identifier", 1}}},
  };
  for (const auto &[method, params] : asked) {
    const Json answer = ask(method, params);
    EXPECT_EQ(answer["error"]["code"], -32602) << method << params;
    EXPECT_FALSE(answer.contains("result")) << method << params;
  }
  EXPECT_FALSE(result("kztns/why", {{"textDocument", document}, {"identifier", "a"}}).is_null());
}

TEST_F(PageAnswers, ANotificationHasNoAnswer) {
  open(entry("sales"));
  notify("kztns/entries", Json::object());
  EXPECT_EQ(answers(R"({"method":"kztns/entries","id":null})")[0]["error"]["code"], -32600);
}

TEST_F(PageAnswers, ANumberHasItsDigits) {
  // Of these, JavaScript's numbers hold the first alone as they are.
  for (const char *const weight : {"9007199254740991", "9007199254740993", "9223372036854775807"}) {
    open("a = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1)(WEIGHT = " + std::string(weight) +
         "))(CONNECT_DATA = (SID = s)))\n");
    result("kztns/check");
    const Json tree = result("kztns/entry", {{"index", 0}});
    const Json &list = tree["services"][0]["descriptions"][0]["address_lists"][0];
    EXPECT_EQ(list["addresses"][0]["weight"]["digits"], weight);
  }
}

TEST_F(PageAnswers, FormatTellsWhatItKeeps) {
  open("good=(DESCRIPTION=(ADDRESS=(HOST=h)(PORT=1))(CONNECT_DATA=(SID=s)))\n" +
       entry("bad", "(SERVER=X)"));
  const Json params = {{"textDocument", {{"uri", uri}}}, {"shown", lines(0, 0)}};
  const Json formatted = result("kztns/format", params);
  EXPECT_FALSE(formatted["edits"].empty());
  EXPECT_EQ(formatted["kept"], Json::parse(R"([{"line":6,"reason":"the library refuses it"}])"));
  open(entry("bad", "(SERVER=X)"));
  EXPECT_EQ(result("kztns/format", params)["edits"], Json::array());
}

TEST_F(PageAnswers, FormatTellsTheLinesAfterItsEdits) {
  const std::string one_line = "(DESCRIPTION=(ADDRESS=(HOST=h)(PORT=1))(CONNECT_DATA=(SID=s)))";
  const std::string text = "\n\n\n\n\na=" + one_line + " " + entry("x", "(SERVER=X)") +
                           "b=" + one_line + "\n\n\n\n\n" + entry("y", "(SERVER=X)");
  open(text);
  const Json formatted =
      result("kztns/format", {{"textDocument", {{"uri", uri}}}, {"shown", lines(0, 0)}});
  const std::string after = support::applied(text, formatted["edits"]);
  ASSERT_EQ(formatted["kept"].size(), 2u);
  for (const std::size_t i : {0u, 1u}) {
    const std::size_t at = after.find(i == 0 ? "x = " : "y = ");
    ASSERT_NE(at, std::string::npos);
    EXPECT_EQ(formatted["kept"][i]["line"],
              1 + std::count(after.begin(), after.begin() + static_cast<std::ptrdiff_t>(at), '\n'));
  }
  EXPECT_NE(after, text);
}

TEST_F(PageAnswers, ManyEditsAreJoinedWhereNobodyLooks) {
  constexpr unsigned count = 2000;
  std::string text;
  for (unsigned i = 0; i < count; ++i)
    text += "n=(DESCRIPTION=(ADDRESS=(HOST=h)(PORT=1))(CONNECT_DATA=(SID=s)))\n";
  open(text);
  const auto edits_with = [&](unsigned first, unsigned last) {
    return result("kztns/format",
                  {{"textDocument", {{"uri", uri}}}, {"shown", lines(first, last)}})["edits"];
  };
  const Json far = edits_with(count - 1, count - 1);
  EXPECT_LE(far.size(), 1020u);
  EXPECT_GE(far.size(), 900u);
  const std::string formatted = support::applied(text, far);
  EXPECT_EQ(formatted.substr(0, 20), "n =\n  (DESCRIPTION =");
  // Of the lines that are shown each blank is an edit of its own.
  const Json near = edits_with(1000, 1009);
  EXPECT_EQ(support::applied(text, near), formatted);
  unsigned in_shown = 0;
  for (const Json &edit : near) {
    const unsigned line = edit["range"]["start"]["line"];
    if (line < 1000 || line > 1008) continue;
    ++in_shown;
    EXPECT_EQ(edit["range"]["end"]["line"], line);
  }
  EXPECT_GT(in_shown, 9u * 5);
  EXPECT_LT(near.size(), 1200u);
}

TEST_F(PageAnswers, FixTellsWhatItChanges) {
  std::string text = entry("a", "(SERVER=X)") + entry("b") + entry("c", "(SERVER=Y)");
  open(text);
  const Json params = {{"textDocument", {{"uri", uri}}}, {"shown", lines(0, 0)}};
  const Json fixed = result("kztns/fix", params);
  EXPECT_EQ(fixed["mended"], 2u);
  EXPECT_EQ(fixed["errors"], 0u);
  EXPECT_EQ(support::applied(text, fixed["edits"]), entry("a") + entry("b") + entry("c"));
  open(entry("a"));
  EXPECT_EQ(result("kztns/fix", params), Json::parse(R"({"edits":[],"errors":0,"mended":0})"));

  constexpr unsigned count = 3000;
  text.clear();
  for (unsigned i = 0; i < count; ++i) text += entry("n" + std::to_string(i), "(SERVER=X)");
  open(text);
  const Json many = result("kztns/fix", params);
  EXPECT_EQ(many["mended"], count);
  EXPECT_LE(many["edits"].size(), 1001u);
}

TEST_F(PageAnswers, FixTellsWhatItLeaves) {
  const std::string guess =
      "a = (DESCRIPTION = (ADDRESS = (PROT = TCP)(HOST = h)(PORT = 1))"
      "(CONNECT_DATA = (SID = s)(SERVER = X)))\n";
  const Json params = {{"textDocument", {{"uri", uri}}}, {"shown", lines(0, 0)}};
  // An entry that would be refused all the same keeps what has a safe fix.
  open(guess + entry("b", "(SERVER=X)"));
  const Json fixes = result("kztns/check")["fixes"];
  ASSERT_EQ(fixes.size(), 3u);
  EXPECT_EQ(fixes[0]["applied"], false);
  EXPECT_EQ(fixes[1]["safe"], true);
  EXPECT_EQ(fixes[1]["applied"], false);
  EXPECT_EQ(fixes[2]["applied"], true);
  const Json fixed = result("kztns/fix", params);
  EXPECT_EQ(fixed["mended"], 1u);
  EXPECT_EQ(fixed["errors"], 2u);
  EXPECT_EQ(support::applied(guess + entry("b", "(SERVER=X)"), fixed["edits"]), guess + entry("b"));
  // A finding may take several edits.
  open("a = \"(DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1))(CONNECT_DATA = (SID = s)))\"\n");
  const Json unquoted = result("kztns/fix", params);
  EXPECT_EQ(unquoted["edits"].size(), 2u);
  EXPECT_EQ(unquoted["mended"], 1u);
}

TEST_F(PageAnswers, FixTellsWhatItMoves) {
  const std::string reserved = "KZCISYSTEMVARIABLES = (SLOWSQL_THRESHOLD = 1)\n";
  const std::string text = entry("a") + reserved + entry("b");
  open(text);
  const Json fixed =
      result("kztns/fix", {{"textDocument", {{"uri", uri}}}, {"shown", lines(0, 0)}});
  EXPECT_EQ(support::applied(text, fixed["edits"]), entry("a") + entry("b") + reserved);
  EXPECT_EQ(fixed["mended"], 1u);
}

TEST_F(PageAnswers, EntriesOfAnEarlierTextAreNone) {
  EXPECT_TRUE(result("kztns/entries").is_null());
  EXPECT_TRUE(result("kztns/entry", {{"index", 0}}).is_null());
  open(entry("sales"));
  result("kztns/check");
  open(entry("orders"));
  EXPECT_TRUE(result("kztns/entries").is_null());
  EXPECT_TRUE(result("kztns/entry", {{"index", 0}}).is_null());
}

TEST_F(PageAnswers, WhyReadsTheTextThatIsOpen) {
  open(entry("sales") + entry("orders", "(SERVER = DEDICATED)"));
  const Json sales = why("sales");
  EXPECT_EQ(sales["outcome"], "found");
  EXPECT_EQ(sales["entry"], Json::parse(R"({"line":1,"column":1})"));
  EXPECT_EQ(sales["link"], "h:1/s");
  const Json orders = why("orders");
  EXPECT_EQ(orders["outcome"], "malformed");
  EXPECT_EQ(orders["skipped"], 1);
  EXPECT_EQ(orders["fault"]["rule"], "unknown-key");
  const Json other = why("Sales");
  EXPECT_EQ(other["outcome"], "not found");
  EXPECT_EQ(other["near"].size(), 1u);
  const Json literal =
      why("(DESCRIPTION = (ADDRESS = (HOST = x)(PORT = 2))(CONNECT_DATA = (SID = t)))");
  EXPECT_EQ(literal["literal"], true);
  EXPECT_EQ(literal["link"], "x:2/t");
  EXPECT_TRUE(literal["file"].is_null());
}

TEST_F(PageAnswers, TheServersMethodsAreTheServers) {
  open("a = (DESCRIPTION = (KZLB = ");
  const Json items =
      result("textDocument/completion",
             {{"textDocument", {{"uri", uri}}}, {"position", {{"line", 0}, {"character", 27}}}});
  ASSERT_EQ(items.size(), 2u);
  EXPECT_EQ(items[0]["label"], "ON");
  EXPECT_EQ(ask("textDocument/nonsense")["error"]["code"], -32601);
}

TEST_F(PageAnswers, WhatIsNoMessageIsRefused) {
  const Json all = answers("{");
  ASSERT_EQ(all.size(), 1u);
  EXPECT_EQ(all[0]["error"]["code"], -32700);
  EXPECT_EQ(answers("[]")[0]["error"]["code"], -32600);
}

TEST_F(PageAnswers, MarkupInNamesIsText) {
  const std::string name = "<b>sales</b>";
  open(entry(name));
  result("kztns/check");
  EXPECT_EQ(result("kztns/entries")["entries"][0]["name"], name);
  EXPECT_EQ(result("kztns/entry", {{"index", 0}})["services"][0]["net_service_name"]["value"],
            name);
}
