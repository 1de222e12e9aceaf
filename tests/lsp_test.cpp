// The language server as a client meets it.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <thread>

#include "io/exit_status.h"
#include "lsp/capabilities.h"
#include "lsp/framing.h"
#include "lsp/serve.h"
#include "mend/mend_file.h"
#include "support/foreign_files.h"
#include "support/lsp_client.h"
#include "trace/key_words.h"

using kztns::lsp::Json;
using support::applied;
using support::LspClient;

namespace {

const std::string good_entry =
    "sales =\n  (DESCRIPTION =\n    (ADDRESS = (HOST = h)(PORT = 1))\n"
    "    (CONNECT_DATA = (SERVICE_NAME = s))\n  )\n";

// Whether a value has what is expected: of objects, the members that are there.
void expect_has(const Json &actual, const Json &expected, const std::string &path = "") {
  if (expected.is_object() && actual.is_object()) {
    for (const auto &[name, value] : expected.items()) {
      EXPECT_TRUE(actual.contains(name)) << path << '/' << name;
      if (actual.contains(name)) expect_has(actual[name], value, path + "/" + name);
    }
  } else if (expected.is_array() && actual.is_array() && expected.size() == actual.size()) {
    for (std::size_t i = 0; i < expected.size(); ++i)
      expect_has(actual[i], expected[i], path + "/" + std::to_string(i));
  } else {
    EXPECT_EQ(actual, expected) << path;
  }
}

void run_exchange(const std::filesystem::path &path) {
  LspClient client;
  std::vector<Json> sent;
  std::ifstream file(path);
  int number = 0;
  for (std::string line; std::getline(file, line);) {
    SCOPED_TRACE(path.filename().string() + ":" + std::to_string(++number));
    if (line.starts_with("--> ")) {
      EXPECT_TRUE(sent.empty()) << sent.front();
      client.put(line.substr(4));
      sent = client.deliver();
    } else if (line.starts_with("<-- ")) {
      ASSERT_FALSE(sent.empty());
      expect_has(sent.front(), Json::parse(line.substr(4)));
      sent.erase(sent.begin());
    } else {
      EXPECT_TRUE(line.starts_with("#")) << line;
    }
  }
  EXPECT_TRUE(sent.empty()) << sent.front();
}

std::vector<std::string> labels_of(const Json &items) {
  std::vector<std::string> labels;
  for (const Json &item : items) labels.push_back(item["label"]);
  return labels;
}

using Labels = std::vector<std::string>;

// A client with an open document.
LspClient &with(LspClient &client, const std::string &text) {
  client.initialize();
  client.open(text);
  return client;
}

Json range(unsigned line, unsigned begin, unsigned end) {
  return {{"start", {{"line", line}, {"character", begin}}},
          {"end", {{"line", line}, {"character", end}}}};
}

}  // namespace

TEST(Lsp, ExchangesAsRecorded) {
  int count = 0;
  for (const auto &entry :
       std::filesystem::directory_iterator(KZOCI_SOURCE_DIR "/tests/exchanges")) {
    run_exchange(entry.path());
    ++count;
  }
  EXPECT_GE(count, 3);
}

// What editors highlight without the server knows every key, and every word.
TEST(Lsp, TheGrammarForHighlightingKnowsEveryKey) {
  std::ifstream file(KZOCI_SOURCE_DIR "/editors/textmate/tnsnames.tmLanguage.json");
  const Json repository = Json::parse(file)["repository"];
  const auto has = [](const std::string &pattern, const std::string &word) {
    for (const char before : {'(', '|'})
      for (const char after : {')', '|'})
        if (pattern.find(before + word + after) != std::string::npos) return true;
    return false;
  };
  for (const kztns::Key &key : kzoci::tns::grammar) {
    const bool is_block = key.value.kind == kztns::ValueKind::block;
    EXPECT_TRUE(has(repository[is_block ? "block-key" : "key"]["match"], key.word)) << key.word;
    for (const std::string_view word : kztns::choices(key))
      EXPECT_TRUE(has(repository["value"]["patterns"][1]["match"], std::string(word))) << word;
  }
}

TEST(Lsp, TellsOfTheFirstEntryOfAName) {
  LspClient client;
  with(client, good_entry + good_entry);
  ASSERT_EQ(client.diagnostics().size(), 1u);
  expect_has(client.diagnostics()[0],
             {{"code", "duplicate"},
              {"severity", 2},
              {"range", range(5, 0, 5)},
              {"relatedInformation",
               {{{"message", "the first entry of this name"},
                 {"location", {{"uri", LspClient::uri}, {"range", range(0, 0, 5)}}}}}}});
}

TEST(Lsp, TellsWhereLookupsEnd) {
  LspClient client;
  with(client, "KZCISYSTEMVARIABLES = (LOG_COUNT = 2)\n" + good_entry);
  expect_has(
      client.diagnostics()[0],
      {{"code", "after-reserved"},
       {"relatedInformation",
        {{{"message", "every lookup ends here"}, {"location", {{"range", range(0, 0, 19)}}}}}}});
}

TEST(Lsp, SaysNothingThatAClientDoesNotUnderstand) {
  LspClient client;
  client.request("initialize", {{"capabilities", Json::object()}});
  client.open(good_entry + good_entry);
  ASSERT_EQ(client.diagnostics().size(), 1u);
  EXPECT_FALSE(client.diagnostics()[0].contains("relatedInformation"));
  EXPECT_FALSE(client.diagnostics()[0].contains("codeDescription"));
  Json params = client.about(0, 0);
  params["range"] = range(0, 0, 0);
  EXPECT_EQ(client.request("textDocument/codeAction", params)["result"], Json::array());
  const Json symbols = client.request("textDocument/documentSymbol", client.about(0, 0))["result"];
  expect_has(symbols[0], {{"name", "sales"}, {"location", {{"uri", LspClient::uri}}}});
}

TEST(Lsp, FixesAll) {
  const std::string broken =
      "a = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1))\r\n"
      "  (CONNECT_DATA = (SID = s)(SERVER = DEDICATED)))\r\n"
      "b = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1))\r\n"
      "  (CONNECT_DATA = (SID = web=shop)))\r\n";
  LspClient client;
  with(client, broken);
  Json params = client.about(0, 0);
  params["range"] = range(1, 0, 0);
  params["context"] = {{"diagnostics", client.diagnostics()}, {"only", {"source"}}};
  const Json actions = client.request("textDocument/codeAction", params)["result"];
  ASSERT_EQ(actions.size(), 1u);
  EXPECT_EQ(actions[0]["kind"], "source.fixAll.kztns");
  ASSERT_FALSE(actions[0].contains("edit"));
  const Json resolved = client.request("codeAction/resolve", actions[0])["result"];
  EXPECT_EQ(applied(broken, resolved["edit"]["changes"][LspClient::uri]),
            "a = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1))\r\n"
            "  (CONNECT_DATA = (SID = s)))\r\n"
            "b = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1))\r\n"
            "  (CONNECT_DATA = (SID = \"web=shop\")))\r\n");
  // Of another text it would be something else.
  client.notify("textDocument/didChange",
                {{"textDocument", {{"uri", LspClient::uri}, {"version", 2}}},
                 {"contentChanges", {{{"text", good_entry}}}}});
  EXPECT_FALSE(client.request("codeAction/resolve", actions[0])["result"].contains("edit"));
}

// A guess has to be made first, so that the entry stays refused, and nothing is mended.
TEST(Lsp, OffersNoFixOfAllThatMendsNothing) {
  LspClient client;
  with(client,
       "a = (DESCRIPTION = (ADDRESS = (PROT = TCP)(HOST = h)(PORT = 1))\n"
       "  (CONNECT_DATA = (SID = s)(SERVER = DEDICATED)))\n");
  ASSERT_EQ(client.diagnostics().size(), 2u);
  Json params = client.about(0, 0);
  params["range"] = range(0, 0, 0);
  params["context"] = {{"only", {"source.fixAll"}}};
  EXPECT_EQ(client.request("textDocument/codeAction", params)["result"], Json::array());
}

// The edits of "fix all" make what kztns fix makes.
TEST(Lsp, FixesAllAsTheCommandDoes) {
  std::size_t fixed = 0;
  const auto expect_same = [&](const std::string &text) {
    LspClient client;
    client.request(
        "initialize",
        {{"capabilities",
          {{"textDocument", {{"codeAction", {{"codeActionLiteralSupport", Json::object()}}}}}}}});
    client.open(text);
    Json params = client.about(0, 0);
    params["range"] = range(0, 0, 0);
    params["context"] = {{"only", {"source.fixAll"}}};
    const Json actions = client.request("textDocument/codeAction", params)["result"];
    const kztns::NamesText original(text);
    kztns::Mender mender(original, {"names"});
    mender.apply_fixes();
    if (actions.empty()) return;
    ++fixed;
    EXPECT_NE(mender.text().text(), text);
    EXPECT_EQ(applied(text, actions[0]["edit"]["changes"][LspClient::uri]), mender.text().text());
  };
  // What is moved comes after what it was before.
  expect_same("KZCISYSTEMVARIABLES = (LOG_COUNT = 2)\n" + good_entry + "# end\n");
  constexpr std::size_t files = 60;
  for (std::size_t seed = 1; seed <= files && !HasFailure(); ++seed) {
    support::Random random(seed);
    const support::ForeignFile file = support::random_foreign_file(random);
    SCOPED_TRACE(file.text);
    expect_same(file.text);
  }
  EXPECT_GT(fixed, files / 10);
}

// As in the file that kztns fix writes, new lines end as the first one does.
TEST(Lsp, FixesLinesThatEndAsTheFirstOne) {
  const std::string broken = "# one\n# two\r\nKZCISYSTEMVARIABLES = (LOG_COUNT = 2)\n" + good_entry;
  LspClient client;
  with(client, broken);
  Json params = client.about(0, 0);
  params["range"] = range(0, 0, 0);
  params["context"] = {{"only", {"source.fixAll"}}};
  const Json actions = client.request("textDocument/codeAction", params)["result"];
  ASSERT_EQ(actions.size(), 1u);
  const Json resolved = client.request("codeAction/resolve", actions[0])["result"];
  const std::string text = applied(broken, resolved["edit"]["changes"][LspClient::uri]);
  EXPECT_EQ(text.find('\r'), text.rfind('\r')) << text;
}

TEST(Lsp, NamesTheDiagnosticsThatAFixMends) {
  LspClient client;
  with(client,
       "a = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1))\n"
       "  (CONNECT_DATA = (SID = s)(SERVER = DEDICATED)))\n");
  Json params = client.about(0, 0);
  params["range"] = range(1, 0, 40);
  params["context"] = {{"diagnostics", client.diagnostics()}};
  const Json actions = client.request("textDocument/codeAction", params)["result"];
  ASSERT_EQ(actions.size(), 2u);
  EXPECT_EQ(actions[0]["diagnostics"], client.diagnostics());
  params["range"] = range(0, 0, 40);
  EXPECT_EQ(client.request("textDocument/codeAction", params)["result"].size(), 1u);
}

TEST(Lsp, CompletesKeysAndWords) {
  LspClient client;
  with(client, "a = (DESCRIPTION = (ADDRESS_LIST = ()(KZLB_STRATEGY = ");
  Json items = client.request("textDocument/completion", client.about(0, 36))["result"];
  EXPECT_EQ(labels_of(items), (Labels{"ADDRESS", "KZLB", "KZLB_STRATEGY"}));
  expect_has(items[1], {{"detail", "whether to balance over the addresses"},
                        {"documentation", {{"kind", "markdown"}}},
                        {"textEdit", {{"newText", "KZLB = "}, {"range", range(0, 36, 36)}}}});
  items = client.request("textDocument/completion", client.about(0, 54))["result"];
  EXPECT_EQ(labels_of(items), (Labels{"RANDOM", "SERVERAFFINITY", "ROTATION"}));
  // Where there is no "(" yet, it comes with the key.
  items = client.request("textDocument/completion", client.about(0, 35))["result"];
  EXPECT_EQ(items[0]["textEdit"]["newText"], "(ADDRESS = ");
  EXPECT_EQ(client.request("textDocument/completion", client.about(0, 0))["result"], Json::array());
}

TEST(Lsp, CompletesBeforeAnEqualSign) {
  LspClient client;
  with(client, "a = (DESCRIPTION = (CONNECT_DATA = (SE = s)))\nb=(DESCRIPTION=(ADDRESS=(PROTOCOL=");
  const Json items = client.request("textDocument/completion", client.about(0, 38))["result"];
  EXPECT_EQ(items[0]["textEdit"]["newText"], "SERVICE_NAME");
  EXPECT_EQ(items[0]["textEdit"]["range"], range(0, 36, 38));
  const Json words = client.request("textDocument/completion", client.about(1, 34))["result"];
  EXPECT_EQ(labels_of(words), (Labels{"TCP"}));
}

namespace {

// What is offered at the "|" of a text that ends with a line.
Json offered_at(std::string text) {
  const auto at = static_cast<unsigned>(text.find('|'));
  text.erase(at, 1);
  LspClient client;
  with(client, text);
  return client.request("textDocument/completion", client.about(0, at))["result"];
}

// The text after the choice of an offer.
std::string completed(std::string text, const std::string &label) {
  for (const Json &item : offered_at(text))
    if (item["label"] == label) {
      text.erase(text.find('|'), 1);
      return applied(text, Json::array({item["textEdit"]}));
    }
  return "not offered";
}

}  // namespace

TEST(Lsp, CompletesTheWholeWordAtTheCursor) {
  EXPECT_EQ(completed("a = (DESCRIPTION = (ADDRESS = (PR|OTOCOL = TCP)))", "PROTOCOL"),
            "a = (DESCRIPTION = (ADDRESS = (PROTOCOL = TCP)))");
  EXPECT_EQ(completed("a = (DESCRIPTION = (ADDRESS = (|PROTOCOL = TCP)))", "PORT"),
            "a = (DESCRIPTION = (ADDRESS = (PORT = TCP)))");
  EXPECT_EQ(completed("a = (DESCRIPTION = (KZLB = O|N))", "ON"), "a = (DESCRIPTION = (KZLB = ON))");
  EXPECT_EQ(completed("a = (DESCRIPTION = (KZLB = |ON))", "OFF"),
            "a = (DESCRIPTION = (KZLB = OFF))");
  EXPECT_EQ(completed("a = (DESCRIPTION = (KZLB = \"o|\"))", "OFF"),
            "a = (DESCRIPTION = (KZLB = \"OFF\"))");
  EXPECT_EQ(completed("a = (DESCRIPTION = (KZLB = \"|on\"))", "ON"),
            "a = (DESCRIPTION = (KZLB = \"ON\"))");
  EXPECT_EQ(completed("a = (DESCRIPTION = (KZLB = \"o|))", "ON"),
            "a = (DESCRIPTION = (KZLB = \"ON))");
  EXPECT_EQ(completed("a = (DESCRIPTION = (KZLB = |\"o n\")(X = \"y\"))", "ON"),
            "a = (DESCRIPTION = (KZLB = ON)(X = \"y\"))");
  EXPECT_EQ(completed("a = (DESCRIPTION = (KZLB = \"on\"|)(X = \"y\"))", "ON"),
            "a = (DESCRIPTION = (KZLB = ON)(X = \"y\"))");
  EXPECT_EQ(completed("a = (DESCRIPTION = (\"KZ|\" = ON)", "KZLB"),
            "a = (DESCRIPTION = (\"KZLB\" = ON)");
  // A comment is no part of the word.
  EXPECT_EQ(completed("a = (DESCRIPTION = (KZLB = | # PROTOCOL", "ON"),
            "a = (DESCRIPTION = (KZLB = ON # PROTOCOL");
}

TEST(Lsp, CompletesAnEntryThatBegins) {
  EXPECT_EQ(completed("a = |", "DESCRIPTION"), "a = (DESCRIPTION = ");
  EXPECT_EQ(completed("a = |\nb = (DESCRIPTION = (KZLB = ON))\n", "DESCRIPTION"),
            "a = (DESCRIPTION = \nb = (DESCRIPTION = (KZLB = ON))\n");
  EXPECT_EQ(completed("KZCISYSTEMVARIABLES =|", "LOG_COUNT"), "KZCISYSTEMVARIABLES =(LOG_COUNT = ");
  EXPECT_EQ(offered_at("# a = |"), Json::array());
  EXPECT_EQ(offered_at("a |"), Json::array());
  EXPECT_EQ(offered_at("a = x|"), Json::array());
}

TEST(Lsp, OffersAKeyOnce) {
  EXPECT_EQ(offered_at("a = (DESCRIPTION |"), Json::array());
  EXPECT_EQ(offered_at("a = (DESCRIPTION | = "), Json::array());
  EXPECT_EQ(offered_at("a = (DESCRIPTION | = (KZLB = ON))"), Json::array());
  EXPECT_EQ(offered_at("a = (DESCRIPTION = (KZLB = ON |"), Json::array());
}

TEST(Lsp, OffersNothingForWhatItDoesNotKnow) {
  LspClient client;
  with(client, "a = (DESCRIPTION = (NOTHING = (\nb = (DESCRIPTION = (NOTHING = \n");
  EXPECT_EQ(client.request("textDocument/completion", client.about(0, 31))["result"],
            Json::array());
  EXPECT_EQ(client.request("textDocument/completion", client.about(1, 30))["result"],
            Json::array());
}

TEST(Lsp, TellsOfEntriesKeysAndWords) {
  LspClient client;
  with(client,
       "sales = (DESCRIPTION = (KZLB_READ_TIMEOUT = 7)(ADDRESS_LIST = (KZLB_STRATEGY = ro)\n"
       "(ADDRESS = (HOST = h)(PORT = 1)))(CONNECT_DATA = (SERVICE_NAME = s)))\n"
       "other = (DESCRIPTION = (SERVER = x))\n"
       "odd = (DESCRIPTION = (ADDRESS = (HOST = a`b)(PORT = 1)))\n"
       "KZCISYSTEMVARIABLES = (LOG_COUNT = 2)\n");
  const auto text = [&](unsigned line, unsigned character) {
    const Json result =
        client.request("textDocument/hover", client.about(line, character))["result"];
    return result.is_null() ? std::string() : std::string(result["contents"]["value"]);
  };
  const auto has = [](const std::string &whole, const std::string &part) {
    EXPECT_NE(whole.find(part), std::string::npos) << part << " in " << whole;
  };
  const std::string entry = text(0, 2);
  has(entry, "**`sales`**: ok");
  has(entry, "Link string: `h:1/s`");
  has(entry, "- `h:1`");
  has(entry, "- `KZLB_READ_TIMEOUT` = `7`\n");
  has(entry, "- `KZLB_WRITE_TIMEOUT` = `0` (default)\n");
  has(entry, "- `SERVICE_NAME` = `s`\n");
  const std::string refused = text(2, 0);
  has(refused, "refused");
  has(refused, "[unknown-key]");
  // What markdown would read is shown as other characters.
  has(text(3, 0), "- `a'b:1`");
  const std::string reserved = text(4, 3);
  has(reserved, "reserved: the system variables");
  has(reserved, "- `LOG_COUNT` = `2`\n");
  has(text(0, 30), "read time-out");
  has(text(0, 30), "default: 0");
  has(text(0, 80), "`ro` is read as `ROTATION`");
  EXPECT_EQ(text(2, 25), "");
  EXPECT_EQ(text(0, 23), "");
  EXPECT_EQ(text(9, 0), "");
}

TEST(Lsp, TellsWhatKeepsLookupsFromAnEntry) {
  const auto hover_of = [](const std::string &text, unsigned line) -> std::string {
    LspClient client;
    with(client, text);
    return client.request("textDocument/hover",
                          client.about(line, 1))["result"]["contents"]["value"];
  };
  const auto has = [](const std::string &whole, const std::string &part) {
    EXPECT_NE(whole.find(part), std::string::npos) << whole;
  };
  const std::string other = "other = (DESCRIPTION = (KZLB = ON))\n";
  has(hover_of(good_entry + "stray\n" + other, 6),
      "\nThe cause is at 6:1: \"stray\" is read as a name, but no \"=\" follows: "
      "the entry after it is lost: other [stray-text]\n");
  has(hover_of("KZCISYSTEMVARIABLES = (LOG_COUNT = 2)\n" + other, 1),
      "\nThe cause is at 1:1: KZCISYSTEMVARIABLES ends every lookup [after-reserved]\n");
  // Lookups count the parenthesis in a comment, pass over the entry after it, and go on.
  has(hover_of("a = (DESCRIPTION = (KZLB = ON) # (\n)\n" + other +
                   "c = (DESCRIPTION = (KZLB = ON)) # )\n" + good_entry,
               2),
      "\nThe cause is at 1:34: lookups of later names count this parenthesis");
  // Nothing of it is said of an entry that lookups find.
  EXPECT_EQ(hover_of(good_entry + "stray\n" + other, 0).find("The cause"), std::string::npos);
}

TEST(Lsp, TellsWhatIsWrongWithAnIncludedFile) {
  LspClient client;
  with(client, "IFILE = x.ora\n");
  const std::string text =
      client.request("textDocument/hover", client.about(0, 2))["result"]["contents"]["value"];
  EXPECT_NE(text.find("included files are not supported"), std::string::npos) << text;
  EXPECT_NE(text.find("[ifile]"), std::string::npos) << text;
}

TEST(Lsp, ListsTheFirstServersOnly) {
  std::string list = "a = (DESCRIPTION = (ADDRESS_LIST = ";
  for (int i = 0; i < 23; ++i) list += "(ADDRESS = (HOST = h" + std::to_string(i) + ")(PORT = 1))";
  LspClient client;
  with(client, list + "))\n");
  const std::string text =
      client.request("textDocument/hover", client.about(0, 0))["result"]["contents"]["value"];
  EXPECT_NE(text.find("`h19:1`"), std::string::npos);
  EXPECT_EQ(text.find("`h20:1`"), std::string::npos);
  EXPECT_NE(text.find("and 3 more"), std::string::npos);
}

TEST(Lsp, ListsSymbolsAndFolds) {
  LspClient client;
  with(client, "# one\n# two\n" + good_entry);
  const Json symbols = client.request("textDocument/documentSymbol", client.about(0, 0))["result"];
  ASSERT_EQ(symbols.size(), 1u);
  expect_has(symbols[0], {{"name", "sales"}, {"kind", 23}, {"selectionRange", range(2, 0, 5)}});
  expect_has(symbols[0]["children"][0]["children"],
             {{{"name", "ADDRESS"}}, {{"name", "CONNECT_DATA"}}});
  const Json folds = client.request("textDocument/foldingRange", client.about(0, 0))["result"];
  EXPECT_EQ(folds, (Json{{{"startLine", 2}, {"endLine", 6}},
                         {{"startLine", 3}, {"endLine", 6}},
                         {{"startLine", 0}, {"endLine", 1}, {"kind", "comment"}}}));
}

TEST(Lsp, FoldsTheSameLinesOnce) {
  LspClient client;
  with(client, "a = (DESCRIPTION =\n  (ADDRESS = (HOST = h)\n    (PORT = 1)))\n");
  const Json folds = client.request("textDocument/foldingRange", client.about(0, 0))["result"];
  EXPECT_EQ(folds, (Json{{{"startLine", 0}, {"endLine", 2}}, {{"startLine", 1}, {"endLine", 2}}}));
}

// The blocks of thousands of entries are more than an outline shows, or an editor waits for.
TEST(Lsp, ListsOfManyEntriesTheirNamesAlone) {
  for (const std::size_t count :
       {kztns::lsp::most_nested_entries, kztns::lsp::most_nested_entries + 1}) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i)
      text += "s" + std::to_string(i) + " = (DESCRIPTION = (KZLB = ON))\n";
    const kztns::lsp::Document document(text, 1, kztns::lsp::Encoding::utf_16);
    kztns::lsp::ClientFeatures client;
    client.nested_symbols = true;
    std::optional<kztns::lsp::Failure> failure;
    const Json params;
    const std::string uri = LspClient::uri;
    const Json symbols =
        kztns::lsp::document_symbols({params, uri, document, client, "", {}, failure});
    ASSERT_EQ(symbols.size(), count);
    EXPECT_EQ(symbols[0]["name"], "s0");
    EXPECT_EQ(symbols[0].contains("children"), count == kztns::lsp::most_nested_entries);
  }
}

TEST(Lsp, ListsIncludedFilesAmongTheSymbols) {
  LspClient client;
  with(client, good_entry + "IFILE = more.ora\n" + good_entry + "  ifile=\"a b.ora\"\n");
  const Json symbols = client.request("textDocument/documentSymbol", client.about(0, 0))["result"];
  ASSERT_EQ(symbols.size(), 4u);
  EXPECT_EQ(symbols[0]["name"], "sales");
  expect_has(symbols[1], {{"name", "IFILE = more.ora"},
                          {"kind", 1},
                          {"range", range(5, 0, 16)},
                          {"selectionRange", range(5, 0, 16)}});
  EXPECT_EQ(symbols[2]["name"], "sales");
  EXPECT_EQ(symbols[3]["name"], "IFILE = a b.ora");
}

TEST(Lsp, GoesToTheFirstEntryAndToIncludedFiles) {
  LspClient client;
  with(client, good_entry + good_entry +
                   "IFILE = more names.ora\nIFILE=/etc/x.ora\n"
                   "IFILE = ../x.ora\nIFILE = /etc/./a/../../b/x.ora\n");
  const auto target = [&](unsigned line) {
    return client.request("textDocument/definition", client.about(line, 1))["result"];
  };
  expect_has(target(5), {{"uri", LspClient::uri}, {"range", range(0, 0, 5)}});
  expect_has(target(0), {{"range", range(0, 0, 5)}});
  expect_has(target(10), {{"uri", "file:///names/more%20names.ora"}, {"range", range(0, 0, 0)}});
  EXPECT_EQ(target(11)["uri"], "file:///etc/x.ora");
  EXPECT_EQ(target(12)["uri"], "file:///x.ora");
  EXPECT_EQ(target(13)["uri"], "file:///b/x.ora");
  EXPECT_TRUE(target(2).is_null());
}

TEST(Lsp, Renames) {
  LspClient client;
  with(client, good_entry + "other = (DESCRIPTION = (KZLB = ON))\n");
  const auto rename = [&](unsigned line, const std::string &name) {
    Json params = client.about(line, 1);
    params["newName"] = name;
    return client.request("textDocument/rename", params);
  };
  expect_has(client.request("textDocument/prepareRename", client.about(0, 1))["result"],
             {{"range", range(0, 0, 5)}, {"placeholder", "sales"}});
  EXPECT_TRUE(client.request("textDocument/prepareRename", client.about(1, 1))["result"].is_null());
  const Json edits = rename(0, "Verkauf")["result"]["changes"][LspClient::uri];
  EXPECT_EQ(edits, (Json{{{"range", range(0, 0, 5)}, {"newText", "Verkauf"}}}));
  EXPECT_TRUE(rename(0, "sales").contains("result"));
  for (const char *const name : {"", "a b", "a(", "a\"", "KZCI", "kz", "k", "kzciSystem", "other"})
    EXPECT_EQ(rename(0, name)["error"]["code"], -32803) << name;
  EXPECT_EQ(rename(0, "other")["error"]["message"], "there is an entry \"other\" already");
  EXPECT_EQ(rename(0, std::string(256, 'x'))["error"]["code"], -32803);
  EXPECT_TRUE(rename(0, std::string(255, 'x')).contains("result"));
  EXPECT_EQ(rename(2, "x")["error"]["code"], -32803);
}

TEST(Lsp, RenamesNoReservedNameAndNoIncludedFile) {
  LspClient client;
  with(client, "ifile = more.ora\n" + good_entry + "KZCISYSTEMVARIABLES = (LOG_COUNT = 2)\n");
  for (const unsigned line : {0u, 6u}) {
    Json params = client.about(line, 1);
    EXPECT_TRUE(client.request("textDocument/prepareRename", params)["result"].is_null()) << line;
    params["newName"] = "x";
    EXPECT_EQ(client.request("textDocument/rename", params)["error"]["code"], -32803) << line;
  }
  EXPECT_FALSE(
      client.request("textDocument/prepareRename", client.about(1, 1))["result"].is_null());
}

TEST(Lsp, Formats) {
  const std::string one = "a=(DESCRIPTION=(CONNECT_DATA=(SID=s)))\n";
  const std::string text = one + "# c\n" + one;
  LspClient client;
  with(client, text);
  Json params = client.about(0, 0);
  params["options"] = {{"tabSize", 4}, {"insertSpaces", true}};
  Json edits = client.request("textDocument/formatting", params)["result"];
  const std::string four = "a =\n    (DESCRIPTION =\n        (CONNECT_DATA = (SID = s))\n    )\n";
  EXPECT_EQ(applied(text, edits), four + "# c\n" + four);
  params["options"] = {{"tabSize", 4}, {"insertSpaces", false}};
  params["range"] = range(2, 3, 3);
  edits = client.request("textDocument/rangeFormatting", params)["result"];
  EXPECT_EQ(applied(text, edits),
            one + "# c\n" + "a =\n\t(DESCRIPTION =\n\t\t(CONNECT_DATA = (SID = s))\n\t)\n");
}

TEST(Lsp, CountsPositionsAsNegotiated) {
  // "ä" is one unit of UTF-16 and two bytes.
  const std::string text =
      "a = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1))\n"
      "  (CONNECT_DATA = (SID = \xC3\xA4)(X = 1)))\n";
  for (const auto &[encoding, character] : {std::pair("utf-16", 28u), std::pair("utf-8", 29u)}) {
    LspClient client;
    client.initialize(encoding);
    client.open(text);
    ASSERT_EQ(client.diagnostics().size(), 1u);
    expect_has(client.diagnostics()[0],
               {{"code", "unknown-key"}, {"range", range(1, character, character + 1)}});
  }
}

TEST(Lsp, CancelsWhatWaits) {
  LspClient client;
  with(client, good_entry);
  Json request = {{"id", "slow"}, {"method", "textDocument/hover"}, {"params", client.about(0, 0)}};
  client.put(request.dump());
  client.put(R"({"method":"$/cancelRequest","params":{"id":"slow"}})");
  std::vector<Json> sent = client.deliver();
  ASSERT_EQ(sent.size(), 1u);
  EXPECT_EQ(sent[0]["error"]["code"], -32800);
  EXPECT_EQ(sent[0]["id"], "slow");
  // What is answered already, or was never asked, cannot be cancelled.
  client.put(R"({"method":"$/cancelRequest","params":{"id":"slow"}})");
  client.put(R"({"method":"$/cancelRequest","params":{}})");
  EXPECT_TRUE(client.deliver().empty());
}

// Requests that overlap are answered in their order, each by the text of its time.
TEST(Lsp, AnswersOverlappingRequestsInTheirOrder) {
  LspClient client;
  with(client, good_entry);
  const Json change = {{"method", "textDocument/didChange"},
                       {"params",
                        {{"textDocument", {{"uri", LspClient::uri}, {"version", 2}}},
                         {"contentChanges", {{{"range", range(0, 0, 5)}, {"text", "orders"}}}}}}};
  for (int id = 100; id < 103; ++id) {
    client.put(
        Json{{"id", id}, {"method", "textDocument/prepareRename"}, {"params", client.about(0, 0)}}
            .dump());
    if (id == 100) client.put(change.dump());
  }
  std::vector<std::string> names;
  for (const Json &message : client.deliver())
    if (message.contains("id")) names.push_back(message["result"]["placeholder"]);
  EXPECT_EQ(names, (std::vector<std::string>{"sales", "orders", "orders"}));
}

// Of several texts the one that changed last is what its author looks at.
TEST(Lsp, ChecksTheTextThatChangedLastFirst) {
  LspClient client;
  client.initialize();
  for (const char *const uri : {"file:///z", "file:///a", "file:///m"})
    client.server().take({{"method", "textDocument/didOpen"},
                          {"params", {{"textDocument", {{"uri", uri}, {"text", "# c\n"}}}}}});
  std::vector<std::string> order;
  for (const Json &message : client.deliver()) order.push_back(message["params"]["uri"]);
  EXPECT_EQ(order, (std::vector<std::string>{"file:///m", "file:///a", "file:///z"}));
}

// What a request has found out already is not told again.
TEST(Lsp, TellsFindingsOnceWhereARequestWasFaster) {
  LspClient client;
  client.initialize();
  client.server().take(
      {{"method", "textDocument/didOpen"},
       {"params", {{"textDocument", {{"uri", LspClient::uri}, {"text", good_entry}}}}}});
  const auto job = client.server().next_job();
  ASSERT_TRUE(job);
  client.server().take(
      {{"id", 7}, {"method", "textDocument/hover"}, {"params", client.about(0, 0)}});
  client.server().finish(job->uri, kztns::lsp::run(*job));
  const std::vector<Json> sent = client.deliver();
  ASSERT_EQ(sent.size(), 2u);
  EXPECT_EQ(sent[0]["method"], "textDocument/publishDiagnostics");
  EXPECT_EQ(sent[1]["id"], 7);
}

// Of a long text the findings that a lookup meets come first, then those after them.
TEST(Lsp, TellsOfALongTextInTwoSteps) {
  const std::string comment = "#" + std::string(kztns::lsp::long_text, 'c') + "\n";
  LspClient client;
  client.initialize();
  client.server().take({{"method", "textDocument/didOpen"},
                        {"params",
                         {{"textDocument",
                           {{"uri", LspClient::uri},
                            {"text", comment + "stray\n" + good_entry + "a = (X = 1)\n"}}}}}});
  std::vector<std::size_t> counts;
  for (const Json &message : client.deliver())
    counts.push_back(message["params"]["diagnostics"].size());
  ASSERT_EQ(counts.size(), 2u);
  EXPECT_LE(counts[0], counts[1]);
  EXPECT_FALSE(client.server().next_job());
}

// A check that ends after the text has changed is of no use any more.
TEST(Lsp, TellsWhatIsWrongWithAChange) {
  LspClient client;
  client.initialize();
  const auto complaint = [&](const Json &params) -> std::string {
    client.notify("textDocument/didChange", params);
    const Json &told = client.last_notification();
    return told["method"] == "window/logMessage" ? told["params"]["message"] : told["method"];
  };
  const Json document = {{"uri", LspClient::uri}, {"version", 2}};
  EXPECT_EQ(complaint({{"textDocument", document}, {"contentChanges", Json::array()}}),
            "didChange of a document that is not open");
  client.open(good_entry);
  EXPECT_EQ(complaint({{"textDocument", document}}),
            "didChange: expected an array of contentChanges");
  EXPECT_EQ(complaint({{"textDocument", document}, {"contentChanges", {{"text", ""}}}}),
            "didChange: expected an array of contentChanges");
}

TEST(Lsp, DropsTheFindingsOfAnOlderText) {
  LspClient client;
  with(client, good_entry);
  const std::string open =
      Json{{"method", "textDocument/didChange"},
           {"params",
            {{"textDocument", {{"uri", LspClient::uri}, {"version", 2}}},
             {"contentChanges", {{{"text", "a = (DESCRIPTION = (X = 1))\n"}}}}}}}
          .dump();
  client.server().take(Json::parse(open));
  const auto job = client.server().next_job();
  ASSERT_TRUE(job);
  client.server().take(Json::parse(open));
  client.server().finish(job->uri, kztns::lsp::run(*job));
  client.server().finish("file:///closed", kztns::lsp::run(*job));
  const std::vector<Json> sent = client.deliver();
  EXPECT_EQ(sent.size(), 1u);
}

TEST(Lsp, TellsOfALargeDocument) {
  constexpr std::size_t large = 5'000'000;
  std::string text;
  for (int i = 0; text.size() < large; ++i)
    text += "s" + std::to_string(i) + good_entry.substr(good_entry.find(' '));
  const auto middle = static_cast<unsigned>(std::count(text.begin(), text.end(), '\n') / 10 * 5);
  LspClient client;
  with(client, text);
  EXPECT_EQ(client.diagnostics(), Json::array());
  // The name of an entry gets a blank.
  client.server().take({{"method", "textDocument/didChange"},
                        {"params",
                         {{"textDocument", {{"uri", LspClient::uri}, {"version", 2}}},
                          {"contentChanges", {{{"range", range(middle, 1, 1)}, {"text", " "}}}}}}});
  const auto job = client.server().next_job();
  ASSERT_TRUE(job);
  client.server().finish(job->uri, kztns::lsp::run(*job));
  const std::vector<Json> sent = client.deliver();
  EXPECT_FALSE(sent.empty());
  for (const Json &message : sent)
    EXPECT_EQ(message["params"]["diagnostics"][0]["range"]["start"]["line"], middle);
}

namespace {

// A server with streams of its own, in another thread.
class ServedStream {
 public:
  ServedStream() {
    EXPECT_EQ(pipe(to_server_), 0);
    EXPECT_EQ(pipe(from_server_), 0);
    server_ =
        std::thread([this] { status_ = kztns::lsp::serve(to_server_[0], from_server_[1], ""); });
  }
  ~ServedStream() {
    for (const int end : {to_server_[0], from_server_[0], from_server_[1]}) close(end);
  }

  void write(const std::string &bytes) {
    EXPECT_EQ(::write(to_server_[1], bytes.data(), bytes.size()),
              static_cast<ssize_t>(bytes.size()));
  }
  void send(const Json &message) { write(kztns::lsp::framed(message.dump())); }

  Json receive() {
    for (;;) {
      if (const auto body = reader_.next()) return Json::parse(*body);
      char buffer[4096];
      const ssize_t count = read(from_server_[0], buffer, sizeof buffer);
      if (count <= 0) return {};
      reader_.add({buffer, static_cast<std::size_t>(count)});
    }
  }

  int end(bool by_end_of_input) {
    if (by_end_of_input) close(to_server_[1]);
    server_.join();
    if (!by_end_of_input) close(to_server_[1]);
    return status_;
  }

 private:
  int to_server_[2];
  int from_server_[2];
  kztns::lsp::MessageReader reader_;
  std::thread server_;
  int status_ = -1;
};

}  // namespace

TEST(LspStream, ServesFromBeginningToEnd) {
  ServedStream stream;
  stream.send({{"id", 1}, {"method", "initialize"}, {"params", Json::object()}});
  EXPECT_EQ(stream.receive()["id"], 1);
  stream.send(
      {{"method", "textDocument/didOpen"},
       {"params", {{"textDocument", {{"uri", "file:///a"}, {"version", 3}, {"text", "x"}}}}}});
  const Json published = stream.receive();
  EXPECT_EQ(published["method"], "textDocument/publishDiagnostics");
  EXPECT_EQ(published["params"]["version"], 3);
  EXPECT_FALSE(published["params"]["diagnostics"].empty());
  stream.write(kztns::lsp::framed("{"));
  EXPECT_EQ(stream.receive()["error"]["code"], -32700);
  stream.send({{"id", 2}, {"method", "shutdown"}});
  EXPECT_EQ(stream.receive()["id"], 2);
  stream.send({{"method", "exit"}});
  EXPECT_EQ(stream.end(false), kztns::exit_success);
}

TEST(LspStream, EndsWithAnErrorWithoutShutdown) {
  ServedStream exited;
  exited.send({{"method", "exit"}});
  EXPECT_EQ(exited.end(false), 1);
  ServedStream closed;
  EXPECT_EQ(closed.end(true), 1);
}

TEST(LspStream, EndsAtABrokenHeader) {
  ServedStream stream;
  stream.write("GET / HTTP/1.1\r\n\r\n");
  EXPECT_EQ(stream.end(false), kztns::exit_malformed);
}

// While a text is checked, its last findings are superseded by those of the last change.
TEST(LspStream, EndsWithTheFindingsOfTheLastText) {
  ServedStream stream;
  stream.send({{"id", 1}, {"method", "initialize"}, {"params", Json::object()}});
  stream.receive();
  stream.send(
      {{"method", "textDocument/didOpen"},
       {"params", {{"textDocument", {{"uri", "file:///a"}, {"version", 1}, {"text", ""}}}}}});
  for (int version = 2; version <= 50; ++version)
    stream.send({{"method", "textDocument/didChange"},
                 {"params",
                  {{"textDocument", {{"uri", "file:///a"}, {"version", version}}},
                   {"contentChanges",
                    {{{"text", std::string(static_cast<std::size_t>(version), 'x')}}}}}}});
  Json published;
  do published = stream.receive();
  while (published["params"]["version"] != 50);
  stream.end(true);
  EXPECT_EQ(published["params"]["diagnostics"][0]["range"]["end"]["character"], 50);
}

TEST(LspStream, EndsWhenNobodyListens) {
  int to_server[2];
  ASSERT_EQ(pipe(to_server), 0);
  const int full = open("/dev/full", O_WRONLY);
  const std::string request = kztns::lsp::framed(R"({"id":1,"method":"shutdown"})");
  ASSERT_EQ(write(to_server[1], request.data(), request.size()),
            static_cast<ssize_t>(request.size()));
  EXPECT_EQ(kztns::lsp::serve(to_server[0], full, ""), kztns::exit_output);
  for (const int end : {to_server[1], full}) close(end);
}
