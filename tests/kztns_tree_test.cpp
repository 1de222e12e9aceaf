// The tree of a service as JSON and as a graph.
#include <algorithm>
#include <cstdint>
#include <fstream>
#include <map>
#include <optional>
#include <sstream>

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "lookup/lookup.h"
#include "report/tree_dot.h"
#include "report/tree_json.h"
#include "report/tree_walk.h"
#include "support/json_schema.h"
#include "support/parsing.h"

namespace {

using nlohmann::json;
using namespace std::string_view_literals;

const std::string project = KZOCI_SOURCE_DIR;

// A tree of the services that one or two identifiers name.
class Built {
 public:
  explicit Built(const std::string &identifier) { add(identifier); }
  Built(const std::string &first, const std::string &second) : Built(first) { add(second); }

  std::string json_text() { return kztns::tree_json(*tree_.get()); }
  json as_json() { return json::parse(json_text()); }
  json first_description() { return as_json()["services"][0]["descriptions"][0]; }
  std::string dot() { return kztns::tree_dot(*tree_.get()); }

 private:
  void add(const std::string &identifier) {
    EXPECT_EQ(kztns::look_up(identifier, {}, tree_).outcome, kztns::Outcome::found) << identifier;
  }

  kztns::Tree tree_;
};

// One that a names file holds.
class BuiltFromFile {
 public:
  BuiltFromFile(const std::string &name, std::string_view file_text) {
    environment_.set("KZCI_TNS_FILE", folder_.write("tnsnames.ora", file_text));
    built_.emplace(name);
  }
  Built *operator->() { return &*built_; }

 private:
  support::TemporaryFolder folder_;
  support::Environment environment_;
  std::optional<Built> built_;
};

json number(std::int64_t value, bool by_default) {
  return {{"value", value}, {"default", by_default}};
}

json flag(bool value, bool by_default) { return {{"value", value}, {"default", by_default}}; }

json text(const std::string &value, std::size_t length, bool by_default) {
  return {{"value", value}, {"length", length}, {"default", by_default}};
}

json strategy(const std::string &name, int value, bool by_default) {
  return {{"name", name}, {"value", value}, {"default", by_default}};
}

std::string of_addresses(const std::string &addresses) {
  return "(DESCRIPTION=(ADDRESS_LIST=" + addresses + "))";
}

constexpr char everything[] =
    "(DESCRIPTION=(KZLB=ON)(KZLB_GROUP_STRATEGY=ROTATION)(KZLB_RETRY_ALL_DOWNS=1)"
    "(KZLB_RETRY_TIMEOUT=2)(KZLB_CONNECT_TIMEOUT=3)(KZLB_READ_TIMEOUT=4)(KZLB_WRITE_TIMEOUT=5)"
    "(KZLB_BLACKLIST=(REMOVE_STRATEGY=(NAME=TIMEOUT)(TIMEOUT=6))"
    "(APPEND_STRATEGY=(NAME=RETRYDURATION)(RETRY_TIMES=7)(DURATION=8)))"
    "(ADDRESS_LIST=(KZLB=OFF)(KZLB_STRATEGY=ROTATION)"
    "(ADDRESS=(PROTOCOL=tcp)(HOST=h)(PORT=9)(WEIGHT=10)))"
    "(CONNECT_DATA=(SERVICE_NAME=s)(KZ_USER_EXTRA_INFO=\"e f\")(SESSION_VARIABLE=v)(KZ_MODE=11)"
    "(USE_DEFAULT_SID=12)))";

constexpr char no_list[] = "(DESCRIPTION=(CONNECT_DATA=(SERVICE_NAME=s)))";

// ---- JSON ----

TEST(TreeJson, SettingsThatAreGiven) {
  const json address = {{"protocol", text("tcp", 3, false)},
                        {"host", text("h", 1, false)},
                        {"port", text("9", 1, false)},
                        {"weight", number(10, false)}};
  const json list = {{"kzlb", flag(false, false)},
                     {"kzlb_strategy", strategy("ROTATION", 1003, false)},
                     {"address_count", 1},
                     {"addresses", json::array({address})}};
  const json expected = {{"kzlb", flag(true, false)},
                         {"kzlb_group_strategy", strategy("ROTATION", 0, true)},
                         {"retry_all_downs", number(1, false)},
                         {"retry_timeout", number(2, false)},
                         {"connect_timeout", number(3, false)},
                         {"read_timeout", number(4, false)},
                         {"write_timeout", number(5, false)},
                         {"blacklist",
                          {{"remove_strategy", strategy("TIMEOUT", 2001, true)},
                           {"remove_timeout", number(6, false)},
                           {"append_strategy", strategy("RETRYDURATION", 3001, false)},
                           {"retry_times", number(7, false)},
                           {"duration", number(8, false)}}},
                         {"address_list_count", 1},
                         {"address_lists", json::array({list})},
                         {"connect_data",
                          {{"service_name", text("s", 1, false)},
                           {"user_extra_info", text("e f", 3, false)},
                           {"session_variable", text("v", 1, false)},
                           {"kz_mode", number(11, false)},
                           {"use_default_sid", number(12, false)}}}};
  EXPECT_EQ(Built(everything).first_description(), expected);
}

TEST(TreeJson, SettingsThatAreNotGiven) {
  const json address = {{"protocol", text("", 0, true)},
                        {"host", text("h", 1, false)},
                        {"port", text("", 0, true)},
                        {"weight", number(1, true)}};
  const json list = {{"kzlb", flag(true, true)},
                     {"kzlb_strategy", strategy("RANDOM", 1001, true)},
                     {"address_count", 1},
                     {"addresses", json::array({address})}};
  const json expected = {{"kzlb", flag(false, true)},
                         {"kzlb_group_strategy", strategy("ROTATION", 0, true)},
                         {"retry_all_downs", number(120, true)},
                         {"retry_timeout", number(10000, true)},
                         {"connect_timeout", number(0, true)},
                         {"read_timeout", number(0, true)},
                         {"write_timeout", number(0, true)},
                         {"blacklist",
                          {{"remove_strategy", strategy("TIMEOUT", 2001, true)},
                           {"remove_timeout", number(50, true)},
                           {"append_strategy", strategy("NORMAL", 3002, true)},
                           {"retry_times", number(1, true)},
                           {"duration", number(10, true)}}},
                         {"address_list_count", 1},
                         {"address_lists", json::array({list})},
                         {"connect_data",
                          {{"service_name", text("", 0, true)},
                           {"user_extra_info", text("", 0, true)},
                           {"session_variable", text("", 0, true)},
                           {"kz_mode", number(0, true)},
                           {"use_default_sid", number(0, true)}}}};
  EXPECT_EQ(Built("(DESCRIPTION=(ADDRESS=(HOST=h))(CONNECT_DATA=(KZ_MODE=0)))").first_description(),
            expected);
}

TEST(TreeJson, SystemVariablesOfTheReservedEntry) {
  BuiltFromFile built("KZCISYSTEMVARIABLES",
                      "KZCISYSTEMVARIABLES = (SLOWSQL_THRESHOLD = 1)(SLOWSQL_BUFFER_SIZE = 2)"
                      "(SLOWSQL_FLUSH_SECOND = 3)(SESSION_VARIABLE = v)(LOG_LEVEL = INFO)"
                      "(LOG_SIZE = 2097152)(LOG_COUNT = 4)(LOG_PATH = p)\n");
  const json expected = {{"net_service_name", text("KZCISYSTEMVARIABLES", 19, false)},
                         {"description_count", 0},
                         {"descriptions", json::array()},
                         {"system_variables",
                          {{"slowsql_threshold", number(1, false)},
                           {"slowsql_buffer_size", number(2, false)},
                           {"slowsql_flush_second", number(3, false)},
                           {"session_variable", text("v", 1, false)},
                           {"log_level", text("INFO", 4, false)},
                           {"log_size", number(2097152, false)},
                           {"log_count", number(4, false)},
                           {"log_path", text("p", 1, false)}}}};
  EXPECT_EQ(built->as_json()["services"][0], expected);
}

TEST(TreeJson, SystemVariablesOfAnyOtherService) {
  const json expected = {{"slowsql_threshold", number(100, true)},
                         {"slowsql_buffer_size", number(0, true)},
                         {"slowsql_flush_second", number(60, true)},
                         {"session_variable", text("", 0, true)},
                         {"log_level", text("", 0, true)},
                         {"log_size", number(0, true)},
                         {"log_count", number(0, true)},
                         {"log_path", text("", 0, true)}};
  EXPECT_EQ(Built(everything).as_json()["services"][0]["system_variables"], expected);
}

TEST(TreeJson, DefaultThatIsSpeltOutIsADefault) {
  const json des = Built(
                       "(DESCRIPTION=(KZLB=OFF)(KZLB_RETRY_ALL_DOWNS=120)"
                       "(ADDRESS_LIST=(KZLB_STRATEGY=RANDOM)(ADDRESS=(WEIGHT=1))))")
                       .first_description();
  EXPECT_EQ(des["kzlb"], flag(false, true));
  EXPECT_EQ(des["retry_all_downs"], number(120, true));
  EXPECT_EQ(des["address_lists"][0]["kzlb_strategy"], strategy("RANDOM", 1001, true));
  EXPECT_EQ(des["address_lists"][0]["addresses"][0]["weight"], number(1, true));
}

TEST(TreeJson, KeepsTheOrderOfTheFile) {
  BuiltFromFile built("two",
                      "two = (DESCRIPTION=(ADDRESS_LIST=(ADDRESS=(PORT=1))(ADDRESS=(PORT=2))"
                      "(ADDRESS=(PORT=3)))(ADDRESS_LIST=(ADDRESS=(PORT=4))))"
                      "(DESCRIPTION=(ADDRESS=(PORT=5)))\n");
  const json service = built->as_json()["services"][0];
  std::string ports;
  for (const json &des : service["descriptions"])
    for (const json &list : des["address_lists"])
      for (const json &address : list["addresses"])
        ports += address["port"]["value"].get<std::string>();
  EXPECT_EQ(ports, "12345");
}

TEST(TreeJson, FieldsStandInAFixedOrder) {
  const std::string text = Built(everything).json_text();
  std::size_t last = 0;
  for (const char *field : {"service_count", "services", "net_service_name", "description_count",
                            "descriptions", "kzlb", "retry_timeout", "blacklist", "address_lists",
                            "addresses", "host", "port", "protocol", "weight", "connect_data",
                            "system_variables", "slowsql_threshold", "log_path"}) {
    const std::size_t at = text.find("\"" + std::string(field) + "\":", last);
    ASSERT_NE(at, std::string::npos) << field;
    last = at;
  }
}

TEST(TreeJson, TreeThatTheTextDisplayRefuses) {
  const json des = Built(no_list).first_description();
  EXPECT_EQ(des["address_list_count"], 0);
  EXPECT_EQ(des["address_lists"], json::array());
  EXPECT_EQ(des["connect_data"]["service_name"], text("s", 1, false));
}

TEST(TreeJson, NoConnectDataIsNull) {
  EXPECT_EQ(Built("(DESCRIPTION=(ADDRESS=(HOST=h)))").first_description()["connect_data"], nullptr);
}

TEST(TreeJson, BytesThatAreNotUtf8AreEscaped) {
  const json des =
      Built(of_addresses("(ADDRESS=(HOST=a\xFF\x62)(PORT=\xC3\xA4\xC3))")).first_description();
  const json &address = des["address_lists"][0]["addresses"][0];
  EXPECT_EQ(address["host"], text("a\\xffb", 3, false));
  EXPECT_EQ(address["port"], text("\xC3\xA4\\xc3", 3, false));
}

TEST(TreeJson, ControlCharactersAndQuotesAreEscaped) {
  BuiltFromFile built("n", "n=(DESCRIPTION=(ADDRESS=(HOST=\"a\0\t\\b\")))\n"sv);
  const json address = built->first_description()["address_lists"][0]["addresses"][0];
  EXPECT_EQ(address["host"], text(std::string("a\0\t\\b", 5), 5, false));
  EXPECT_NE(built->json_text().find(R"("a\u0000\t\\b")"), std::string::npos);
}

TEST(TreeJson, NumbersOfAnySize) {
  const json des = Built(of_addresses("(ADDRESS=(WEIGHT=9223372036854775807))"
                                      "(ADDRESS=(WEIGHT=-9223372036854775808))"))
                       .first_description();
  const json &addresses = des["address_lists"][0]["addresses"];
  EXPECT_EQ(addresses[0]["weight"], number(INT64_MAX, false));
  EXPECT_EQ(addresses[1]["weight"], number(INT64_MIN, false));
}

TEST(TreeJson, SeveralServices) {
  const json tree = Built(no_list, everything).as_json();
  EXPECT_EQ(tree["service_count"], 2);
  EXPECT_EQ(tree["services"].size(), 2u);
}

TEST(TreeJson, NoService) {
  KZCITns tns;
  KZCITnsInit(&tns);
  EXPECT_EQ(kztns::tree_json(tns), "{\n  \"service_count\": 0,\n  \"services\": []\n}\n");
}

// Every count of an object is the length of the array that it belongs to.
void expect_counts(const json &value) {
  static const std::map<std::string, std::string> array_of_count = {
      {"service_count", "services"},
      {"description_count", "descriptions"},
      {"address_list_count", "address_lists"},
      {"address_count", "addresses"}};
  if (value.is_object()) {
    for (const auto &[count, array] : array_of_count)
      EXPECT_EQ(value.value(count, std::size_t{0}), value.value(array, json::array()).size())
          << count;
  }
  if (value.is_structured())
    for (const json &child : value) expect_counts(child);
}

void expect_valid(const json &tree) {
  static const support::JsonSchema schema =
      support::JsonSchema::of_file(project + "/docs/tree.schema.json");
  EXPECT_EQ(schema.violations(tree), std::vector<std::string>{}) << tree.dump(2);
  expect_counts(tree);
}

TEST(TreeJsonSchema, HoldsForTrees) {
  for (const std::string identifier :
       {everything, no_list, "(DESCRIPTION=(ADDRESS_LIST=(KZLB=ON)))",
        "(description=(ADDRESS=(HOST=\"\xFE\xFF\")(PORT=\"\")(WEIGHT=-1)))",
        "(DESCRIPTION=(ADDRESS_LIST=(KZLB_STRATEGY=S)(ADDRESS=(PORT=1))(ADDRESS=(PORT=2)))"
        "(ADDRESS_LIST=(KZLB_STRATEGY=R)(ADDRESS=(PORT=3))))"}) {
    SCOPED_TRACE(identifier);
    expect_valid(Built(identifier).as_json());
  }
}

TEST(TreeJsonSchema, HoldsForTheEntriesOfTheExampleFile) {
  support::Environment environment;
  environment.set("KZCI_TNS_FILE", project + "/examples/tnsnames.ora");
  for (const char *name :
       {"inventory", "sales", "reports", "reports_standby", "KZCISYSTEMVARIABLES"}) {
    SCOPED_TRACE(name);
    expect_valid(Built(name).as_json());
  }
}

TEST(TreeJsonSchema, HoldsForSeveralServices) {
  expect_valid(Built(everything, no_list).as_json());
}

TEST(TreeJsonSchema, HoldsForSeveralDescriptions) {
  expect_valid(
      BuiltFromFile("n", "n=(DESCRIPTION=(ADDRESS=(PORT=1)))(DESCRIPTION=(KZLB=ON))\n")->as_json());
}

TEST(TreeJsonSchema, RefusesWhatIsNoTree) {
  const support::JsonSchema schema =
      support::JsonSchema::of_file(project + "/docs/tree.schema.json");
  json tree = Built(everything).as_json();
  json &des = tree["services"][0]["descriptions"][0];
  des.erase("kzlb");
  des["retry_timeout"]["value"] = "soon";
  des["kzlb_group_strategy"]["name"] = "RANDOM";
  des["extra"] = 1;
  const std::string at = "/services/0/descriptions/0";
  const std::vector<std::string> expected = {
      at + "/extra: nothing may stand here",
      at + "/kzlb_group_strategy/name: \"RANDOM\" is none of [\"ROTATION\"]",
      at + "/retry_timeout/value: string is not \"integer\"",
      at + ": kzlb is missing",
  };
  std::vector<std::string> found = schema.violations(tree);
  std::sort(found.begin(), found.end());
  EXPECT_EQ(found, expected);
}

// The definition of the record that a block's keys fill.
std::string definition_of(kzoci::tns::Block block) {
  using kzoci::tns::Block;
  if (block == Block::remove_strategy || block == Block::append_strategy) return "blacklist";
  const std::map<Block, std::string> names = {{Block::address, "address"},
                                              {Block::address_list, "address_list"},
                                              {Block::connect_data, "connect_data"},
                                              {Block::description, "description"},
                                              {Block::system_variables, "system_variables"}};
  return names.at(block);
}

std::string kind_of(const kzoci::tns::Key &key) {
  switch (key.value.kind) {
    case kzoci::tns::ValueKind::integer:
      return "number";
    case kzoci::tns::ValueKind::text:
      return "text";
    default:
      return kztns::is_switch(key) ? "flag" : "strategy";
  }
}

TEST(TreeJsonSchema, DescribesEveryKeyOfTheGrammar) {
  std::ifstream file(project + "/docs/tree.schema.json");
  const json definitions = json::parse(file)["$defs"];
  for (const kzoci::tns::Key &key : kzoci::tns::grammar) {
    if (key.name == nullptr) continue;
    SCOPED_TRACE(key.word);
    const json &record = definitions[definition_of(key.block)];
    const json field = record["properties"].value(key.name, json::object());
    EXPECT_EQ(field.value("$ref", ""), "#/$defs/" + kind_of(key));
    const std::string description = field.value("description", "");
    EXPECT_NE(description.find(key.word), std::string::npos) << description;
    EXPECT_EQ(std::count(record["required"].begin(), record["required"].end(), key.name), 1);
  }
}

// ---- The graph ----

// The label of a node, as it stands between its quotes.
std::string label_of(const std::string &dot, const std::string &node) {
  const std::string start = "\n  " + node + " [label=\"";
  const std::size_t at = dot.find(start);
  if (at == std::string::npos) return "no node " + node;
  const std::size_t begin = at + start.size();
  std::size_t end = begin;
  while (dot[end] != '"') end += dot[end] == '\\' ? 2 : 1;
  return dot.substr(begin, end - begin);
}

// The edges, as "from -> to", in their order.
std::vector<std::string> edges_of(const std::string &dot) {
  std::vector<std::string> edges;
  std::istringstream lines(dot);
  for (std::string line; std::getline(lines, line);)
    if (line.find(" -> ") != std::string::npos)
      edges.push_back(line.substr(2, line.find_first_of(";[") - 2));
  for (std::string &edge : edges)
    if (edge.back() == ' ') edge.pop_back();
  return edges;
}

TEST(TreeDot, NodesAndEdgesInTheOrderOfTheFile) {
  BuiltFromFile built("n",
                      "n=(DESCRIPTION=(CONNECT_DATA=(SID=s))(ADDRESS_LIST=(ADDRESS=(PORT=1))"
                      "(ADDRESS=(PORT=2)))(ADDRESS_LIST=(ADDRESS=(PORT=3))))"
                      "(DESCRIPTION=(ADDRESS=(PORT=4)))\n");
  const std::vector<std::string> expected = {"s1 -> s1_d1",
                                             "s1_d1 -> s1_d1_l1",
                                             "s1_d1_l1 -> s1_d1_l1_a1",
                                             "s1_d1_l1 -> s1_d1_l1_a2",
                                             "s1_d1 -> s1_d1_l2",
                                             "s1_d1_l2 -> s1_d1_l2_a1",
                                             "s1_d1 -> s1_d1_c",
                                             "s1 -> s1_d2",
                                             "s1_d2 -> s1_d2_l1",
                                             "s1_d2_l1 -> s1_d2_l1_a1"};
  EXPECT_EQ(edges_of(built->dot()), expected);
}

TEST(TreeDot, LabelsOfSettingsThatAreGiven) {
  const std::string dot = Built(everything).dot();
  EXPECT_EQ(label_of(dot, "s1"), R"(DESCRIPTION\n)");
  EXPECT_EQ(label_of(dot, "s1_d1"),
            R"(description 1\lKZLB = ON\lKZLB_GROUP_STRATEGY = ROTATION\l)"
            R"(KZLB_RETRY_ALL_DOWNS = 1\lKZLB_RETRY_TIMEOUT = 2\lKZLB_CONNECT_TIMEOUT = 3\l)"
            R"(KZLB_READ_TIMEOUT = 4\lKZLB_WRITE_TIMEOUT = 5\l)"
            R"(REMOVE_STRATEGY = TIMEOUT\l  TIMEOUT = 6\l)"
            R"(APPEND_STRATEGY = RETRYDURATION\l  DURATION = 8\l  RETRY_TIMES = 7\l)");
  EXPECT_EQ(label_of(dot, "s1_d1_l1"), R"(address list 1\lKZLB = OFF\lKZLB_STRATEGY = ROTATION\l)");
  EXPECT_EQ(label_of(dot, "s1_d1_l1_a1"), R"(h:9\nweight 10\n)");
  EXPECT_EQ(label_of(dot, "s1_d1_c"),
            R"(connect data\lSERVICE_NAME = s\lKZ_USER_EXTRA_INFO = e f\lKZ_MODE = 11\l)"
            R"(USE_DEFAULT_SID = 12\lSESSION_VARIABLE = v\l)");
}

TEST(TreeDot, LabelsOfSettingsThatAreNotGiven) {
  const std::string dot =
      Built("(DESCRIPTION=(ADDRESS=(WEIGHT=1))(CONNECT_DATA=(KZ_MODE=0)))").dot();
  EXPECT_EQ(label_of(dot, "s1_d1"),
            R"(description 1\lKZLB = OFF\lKZLB_GROUP_STRATEGY = ROTATION\l)");
  EXPECT_EQ(label_of(dot, "s1_d1_l1"), R"(address list 1\lKZLB = ON\lKZLB_STRATEGY = RANDOM\l)");
  EXPECT_EQ(label_of(dot, "s1_d1_l1_a1"), R"((no host):(no port)\nweight 1, 100 %\n)");
  EXPECT_EQ(label_of(dot, "s1_d1_c"), R"(connect data\l)");
  EXPECT_EQ(label_of(dot, "s1_v"), "no node s1_v");
}

TEST(TreeDot, ReservedEntryShowsItsSettings) {
  BuiltFromFile built("kz", "kz = (LOG_LEVEL = WARN)(LOG_COUNT = 5)(LOG_PATH = \"a.log\")\n");
  const std::string dot = built->dot();
  EXPECT_EQ(label_of(dot, "s1"), R"(kz\n)");
  EXPECT_EQ(label_of(dot, "s1_v"),
            R"(system variables\lLOG_LEVEL = WARN\lLOG_COUNT = 5\lLOG_PATH = a.log\l)");
  EXPECT_EQ(edges_of(dot), (std::vector<std::string>{"s1 -> s1_v"}));
}

TEST(TreeDot, SharesOfWeight) {
  struct Row {
    const char *items;
    std::vector<std::string> weights;
  };
  const std::vector<Row> rows = {
      {"(ADDRESS=(WEIGHT=4))(ADDRESS=(WEIGHT=4))(ADDRESS=(WEIGHT=2))",
       {"weight 4, 40 %", "weight 4, 40 %", "weight 2, 20 %"}},
      {"(ADDRESS=(WEIGHT=1))(ADDRESS=(WEIGHT=2))", {"weight 1, 33.3 %", "weight 2, 66.7 %"}},
      {"(ADDRESS=(WEIGHT=0))(ADDRESS=(WEIGHT=8))", {"weight 0, 0 %", "weight 8, 100 %"}},
      {"(ADDRESS=(WEIGHT=0))(ADDRESS=(WEIGHT=0))", {"weight 0", "weight 0"}},
      {"(ADDRESS=(WEIGHT=-1))(ADDRESS=(WEIGHT=3))", {"weight -1", "weight 3"}},
      {"(KZLB=OFF)(ADDRESS=(WEIGHT=1))(ADDRESS=(WEIGHT=3))", {"weight 1", "weight 3"}},
      {"(ADDRESS=(WEIGHT=9223372036854775807))(ADDRESS=(WEIGHT=9223372036854775807))",
       {"weight 9223372036854775807, 50 %", "weight 9223372036854775807, 50 %"}},
  };
  for (const Row &row : rows) {
    SCOPED_TRACE(row.items);
    const std::string dot = Built(of_addresses(row.items)).dot();
    for (std::size_t i = 0; i < row.weights.size(); ++i)
      EXPECT_EQ(label_of(dot, "s1_d1_l1_a" + std::to_string(i + 1)),
                "(no host):(no port)\\n" + row.weights[i] + "\\n");
  }
}

TEST(TreeDot, TextsInLabelsAreEscaped) {
  struct Row {
    std::string host;
    std::string label;
  };
  const std::vector<Row> rows = {
      {"a\\nb", "a\\\\nb"},              // no line break
      {"\\N", "\\\\N"},                  // not the node's name
      {"a\\", "a\\\\"},                  // does not swallow what follows
      {"<&amp;>", "<&amp;amp;>"},        // no entity
      {"a\nb\tc", "a\\\\x0ab\\\\x09c"},  // control characters
      {"a\x7F", "a\\\\x7f"},             //
      {"\uFFFE \uFFBE", "\\\\xef\\\\xbf\\\\xbe \uFFBE"},
      {"\xC3\xA4\xFF", "\xC3\xA4\\\\xff"},  // bytes that are not UTF-8
  };
  for (const Row &row : rows) {
    SCOPED_TRACE(row.host);
    const std::string dot =
        Built(of_addresses("(ADDRESS=(HOST=\"" + row.host + "\")(PORT=1))")).dot();
    EXPECT_EQ(label_of(dot, "s1_d1_l1_a1"), row.label + ":1\\nweight 1, 100 %\\n");
  }
}

// A names file cannot hold a double quote within a text, a record can.
TEST(TreeDot, QuotesInLabelsAreEscaped) {
  kztns::Tree tree;
  kztns::look_up("(DESCRIPTION=(ADDRESS=(HOST=a-b)(PORT=1)))", {}, tree);
  tree.service()->description->address_list->address->host[1] = '"';
  EXPECT_EQ(label_of(kztns::tree_dot(*tree.get()), "s1_d1_l1_a1"), "a\\\"b:1\\nweight 1, 100 %\\n");
}

TEST(TreeDot, ZeroByteInALabel) {
  BuiltFromFile built("n", "n=(DESCRIPTION=(ADDRESS=(HOST=a\0b)))\n"sv);
  EXPECT_EQ(label_of(built->dot(), "s1_d1_l1_a1"), "a\\\\x00b:(no port)\\nweight 1, 100 %\\n");
}

TEST(TreeDot, TreeThatTheTextDisplayRefuses) {
  EXPECT_EQ(edges_of(Built(no_list).dot()),
            (std::vector<std::string>{"s1 -> s1_d1", "s1_d1 -> s1_d1_c"}));
}

TEST(TreeDot, SeveralServices) {
  EXPECT_EQ(edges_of(Built(no_list, no_list).dot()),
            (std::vector<std::string>{"s1 -> s1_d1", "s1_d1 -> s1_d1_c", "s2 -> s2_d1",
                                      "s2_d1 -> s2_d1_c"}));
}

// ---- The words ----

TEST(ValueText, OfEveryStrategy) {
  const auto text_of = [](kzoci::tns::Block block, KZCILBKeyType type, const void *record) {
    return kztns::value_text(*kzoci::tns::key_of(block, type), record);
  };
  KZCIDescription des = {};
  des.kzlb_group_strategy = LB_OPTION_GROUP_ROTATION;
  EXPECT_EQ(text_of(kzoci::tns::Block::description, LB_KZLB_GROUP_STRATEGY, &des), "ROTATION");
  KZCIAddressList list = {};
  const std::pair<KZCILBOption, const char *> rows[] = {
      {LB_OPTION_RANDOM, "RANDOM"},
      {LB_OPTION_SERVERAFFINITY, "SERVERAFFINITY"},
      {LB_OPTION_ROTATION, "ROTATION"},
      {LB_OPTION_MAX, "UNKNOWN"}};
  for (const auto &[strategy, word] : rows) {
    list.kzlb_strategy = strategy;
    EXPECT_EQ(text_of(kzoci::tns::Block::address_list, LB_KZLB_STRATEGY, &list), word);
  }
  KZCIBlacklistConf conf = {};
  conf.remove_strategy = LB_OPTION_TIMEOUT;
  EXPECT_EQ(text_of(kzoci::tns::Block::remove_strategy, LB_NAME, &conf), "TIMEOUT");
  conf.append_strategy = LB_OPTION_NORMAL;
  EXPECT_EQ(text_of(kzoci::tns::Block::append_strategy, LB_NAME, &conf), "NORMAL");
  conf.append_strategy = LB_OPTION_RETRY_DERUATION;
  EXPECT_EQ(text_of(kzoci::tns::Block::append_strategy, LB_NAME, &conf), "RETRYDURATION");
}

}  // namespace
