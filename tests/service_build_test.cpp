// One service built from an entry of the names file or from a literal
// descriptor: what it holds, what ends it, and what a failure leaves.
#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "kzoci/oci_tnsname.h"
#include "support/expected_log.h"
#include "support/lookup_fixture.h"
#include "support/parsing.h"

namespace {

using namespace expected_log;
using namespace std::string_view_literals;
using support::Block;
using support::bytes;
using support::Outcome;

constexpr std::size_t service_size = sizeof(KZCITnsService);  // Without the name.
// The size of a service with a name of this length.
std::string with_name(std::size_t length) { return std::to_string(service_size + length); }

constexpr char reserved[] = "KZCISYSTEMVARIABLES";

const std::vector<Block> one_description_left = {{"KZCIDescription", sizeof(KZCIDescription)},
                                                 {"address_list", sizeof(KZCIAddressList)},
                                                 {"address", sizeof(KZCIAddress)}};

const std::string one_block = "(DESCRIPTION=(ADDRESS=(HOST=h)))";

std::string host_of(const KZCIDescription &description) {
  const KZCIAddress &address = *description.address_list->address;
  return support::text_of(address.host, address.host_len);
}

std::string name_of(const KZCITnsService &service) {
  return support::text_of(service.net_service_name, service.net_service_name_len);
}

class BuilderTest : public support::ContainerTest {
 protected:
  void TearDown() override { end({}); }
};

// ----------------------------------------------------------------------
// Entries of the file
// ----------------------------------------------------------------------

// A parse state after an entry's name and equal sign, as the lookup leaves it.
class Entry : public support::FileState {
 public:
  Entry(const std::string &name, std::string_view body)
      : FileState(name + "=" + std::string(body)) {
    support::keep_log(false);
    EXPECT_EQ(KZCITnsParse(&params, TNS_KEY), 0);
    EXPECT_EQ(KZCITnsParse(&params, TNS_EQUAL_SIGN), 0);
    support::keep_log(true);
  }
};

struct EntryRow {
  const char *title;
  std::string body;
  sword status;
  Lines lines;  // After the builder's call.
  std::vector<Block> left = {};
};

class ServiceBuild : public BuilderTest {
 protected:
  sword build_entry(const std::string &name, std::string_view body) {
    Entry entry(name, body);
    return KZCITnsServiceBuild(&tns_, &entry.params);
  }

  void run(const std::string &name, const Lines &opening, const EntryRow &row) {
    SCOPED_TRACE(row.title);
    SCOPED_TRACE(row.body);
    begin();
    EXPECT_EQ(build_entry(name, row.body), row.status);
    EXPECT_EQ(support::log_without_pointers(), service_call() + opening + row.lines);
    EXPECT_EQ(tns_.tns_service_count, row.status == 0 ? 1u : 0u);
    EXPECT_EQ(tns_.tns_service != nullptr, row.status == 0);
    end(row.left);
  }

  void run_ordinary(const EntryRow &row) { run("mydb", {}, row); }
  void run_reserved(const EntryRow &row) { run(reserved, variables_begin(), row); }

  // The system variables of a reserved entry that is good.
  const KZCISystemVariables &variables(std::string_view body) {
    EXPECT_EQ(build_entry(reserved, body), 0);
    return tns_.tns_service->sys_vars;
  }
};

TEST_F(ServiceBuild, ANullArgumentIsReported) {
  Entry entry("mydb", one_block);
  EXPECT_EQ(KZCITnsServiceBuild(nullptr, &entry.params), -2);
  EXPECT_EQ(KZCITnsServiceBuild(&tns_, nullptr), -2);
  EXPECT_EQ(KZCITnsServiceBuild(nullptr, nullptr), -2);
  const std::string call = "DEBUG call KZCITnsServiceBuild with params ";
  const std::string error = "ERROR invalid handle, handle is NULL";
  EXPECT_EQ(support::log_without_pointers(),
            (Lines{call + "[tns:NULL], [parse_params:PTR]", error,
                   call + "[tns:PTR], [parse_params:NULL]", error,
                   call + "[tns:NULL], [parse_params:NULL]", error}));
  EXPECT_EQ(support::allocation_count(), 0u);
}

TEST_F(ServiceBuild, TheFirstRecordPrintsTheArguments) {
  Entry entry("mydb", "");
  KZCITnsServiceBuild(&tns_, &entry.params);
  EXPECT_EQ(support::log_records().front(),
            "DEBUG call KZCITnsServiceBuild with params [tns:" + support::pointer_text(&tns_) +
                "], [parse_params:" + support::pointer_text(&entry.params) + "]");
}

TEST_F(ServiceBuild, NoMemoryForTheService) {
  Entry entry("mydb", one_block);
  support::fail_allocation(1);
  EXPECT_EQ(KZCITnsServiceBuild(&tns_, &entry.params), -1);
  EXPECT_EQ(
      support::events(),
      (service_call() + Lines{"MALLOC FAILS " + with_name(4) + " KZCITnsServiceBuild",
                              "ERROR malloc tns_service error, malloc size:" + with_name(4)}));
}

TEST_F(ServiceBuild, ABlockThatIsCompleteMakesAGoodEntry) {
  const Lines address_begun =
      description_begins() + description_key("ADDRESS", LB_ADDRESS) + address_call();
  const EntryRow rows[] = {
      {"the next entry's name ends it", one_block + "\nnext = (", 0,
       small_description("h") + mismatch(1, 3) + service_built(1)},
      {"the end of the file ends it", one_block, 0,
       small_description("h") + input_end(1) + service_built(1)},
      {"a closing parenthesis ends it", one_block + ")", 0,
       small_description("h") + mismatch(1, 2) + service_built(1)},
      {"an equal sign ends it", one_block + "=", 0,
       small_description("h") + mismatch(1, 0) + service_built(1)},
      {"two blocks", one_block + " (DESCRIPTION=(ADDRESS=(HOST=i)))", 0,
       small_description("h") + small_description("i") + input_end(1) + service_built(2)},
      {"the second block lacks its last parenthesis",
       one_block + "(DESCRIPTION=(ADDRESS=(HOST=i)) next", 0,
       small_description("h") + address_begun + host("i") + block_end() + mismatch(1, 3) +
           description_built(1) + mismatch(2, 3) + service_built(2)},
      {"the second block lacks it at the end of the file",
       one_block + "(DESCRIPTION=(ADDRESS=(HOST=i))", 0,
       small_description("h") + address_begun + host("i") + block_end() + input_end(1) +
           description_built(1) + ended() + service_built(2)},
  };
  for (const EntryRow &row : rows) run_ordinary(row);
}

TEST_F(ServiceBuild, OtherEntriesFail) {
  const std::string k256(256, 'k');
  const Lines failed = service_failed(-1);
  const Lines cut_off = service_failed(100);
  const EntryRow rows[] = {
      {"nothing", "", -1, input_end(1) + cut_off},
      {"a key", "x", -1, mismatch(1, 3) + failed},
      {"a closing parenthesis", ")", -1, mismatch(1, 2) + failed},
      {"no key", "(=x)", -1, mismatch(3, 0) + failed},
      {"an empty block", "()", -1, mismatch(3, 2) + failed},
      {"the end instead of a key", "( ", -1, input_end(1) + cut_off},
      {"the end inside a key", "(DESC", -1, key_cut_off(1) + cut_off},
      {"a key that is too long", "(" + k256, -1, key_too_long() + failed},
      {"no key word", "(ANYTHING=x)", -1, unknown_word("ANYTHING") + failed},
      {"an empty key", "(\"\"=x)", -1, unknown_word("") + failed},
      {"longer than any key word", "(ABCDEFGHIJKLMNOPQRSTU=x)", -1,
       longer_than_any_word("ABCDEFGHIJKLMNOPQRSTU") + failed},
      {"no equal sign", "(DESCRIPTION(", -1,
       key_word("DESCRIPTION", LB_DESCRIPTION) + mismatch(0, 1) + failed},
      {"the end instead of an equal sign", "(DESCRIPTION ", -1,
       key_word("DESCRIPTION", LB_DESCRIPTION) + input_end(1) + cut_off},
      {"another key word", "(ADDRESS_LIST=(ADDRESS=(HOST=h)))", -1,
       other_block("ADDRESS_LIST", LB_ADDRESS_LIST) + failed},
      {"a system variable", "(LOG_COUNT=1)", -1, other_block("LOG_COUNT", LB_LOG_COUNT) + failed},
      {"an empty description", "(DESCRIPTION=)", -1,
       description_begins() + mismatch(1, 2) + description_failed() + failed},
      {"a word for a description", "(DESCRIPTION=x)", -1,
       description_begins() + mismatch(1, 3) + description_failed() + failed},
  };
  for (const EntryRow &row : rows) run_ordinary(row);
}

// The record alone is released: what is attached to it stays allocated.
TEST_F(ServiceBuild, AFailureAfterAGoodDescriptionKeepsItAllocated) {
  const Lines address_begun =
      description_begins() + description_key("ADDRESS", LB_ADDRESS) + address_call();
  const EntryRow rows[] = {
      {"the only block lacks its last parenthesis", "(DESCRIPTION=(ADDRESS=(HOST=h)) next", -1,
       address_begun + host("h") + block_end() + mismatch(1, 3) + description_built(1) +
           mismatch(2, 3) + service_failed(-1),
       one_description_left},
      {"the second block is no description", one_block + "(HOST=i)", -1,
       small_description("h") + other_block("HOST", LB_HOST) + service_failed(-1),
       one_description_left},
      {"the second block is empty", one_block + "(DESCRIPTION=)", -1,
       small_description("h") + description_begins() + mismatch(1, 2) + description_failed() +
           service_failed(-1),
       one_description_left},
      {"the second block has no key word", one_block + "(ANYTHING=x)", -1,
       small_description("h") + unknown_word("ANYTHING") + service_failed(-1),
       one_description_left},
      {"the second block has no key", one_block + "(", -1,
       small_description("h") + input_end(1) + service_failed(100), one_description_left},
      {"the second block has no equal sign", one_block + "(DESCRIPTION)", -1,
       small_description("h") + key_word("DESCRIPTION", LB_DESCRIPTION) + mismatch(0, 2) +
           service_failed(-1),
       one_description_left},
  };
  for (const EntryRow &row : rows) run_ordinary(row);
}

TEST_F(ServiceBuild, TheMessageOfAFailureStandsBeforeTheRelease) {
  EXPECT_EQ(build_entry("mydb", "x"), -1);
  EXPECT_EQ(support::events(),
            service_call() + Lines{"MALLOC " + with_name(4) + " KZCITnsServiceBuild"} +
                mismatch(1, 3) + service_failed(-1) + Lines{"FREE KZCITnsServiceBuild"});
}

// The rejected second block has consumed all but its own ")": the description
// is content with that, and the block's ")" closes the description.
TEST_F(ServiceBuild, ASecondConnectDataBlockLeavesTheServiceGood) {
  const Lines rejected = {"DEBUG success to call KZCIConnectDataBuild, service_name:b",
                          "ERROR connect_data is already parse",
                          "ERROR fail to call KZCIConnectDataBuild, status:-1"};
  run_ordinary({"twice CONNECT_DATA",
                "(DESCRIPTION=(ADDRESS=(HOST=h))(CONNECT_DATA=(SID=a))(CONNECT_DATA=(SID=b)))", 0,
                description_begins() + description_key("ADDRESS", LB_ADDRESS) + address_call() +
                    host("h") + block_end() + data_begins() + sid("a") + data_ends("a") +
                    data_begins() + sid("b") + block_end() + rejected + description_built(1) +
                    block_end() + service_built(1)});
}

TEST_F(ServiceBuild, DescriptionsKeepTheirOrder) {
  EXPECT_EQ(build_entry("mydb", one_block + "(description=(ADDRESS=(HOST=i)))" +
                                    "(Description=(ADDRESS=(HOST=j)))"),
            0);
  const KZCITnsService &service = *tns_.tns_service;
  EXPECT_EQ(service.description_count, 3u);
  KZCIDescription *description = service.description;
  for (const char *expected : {"h", "i", "j", "h"}) {
    EXPECT_EQ(host_of(*description), expected);
    description = KZCIDescriptionNext(description);
  }
}

TEST_F(ServiceBuild, ServicesAreAppendedInTheOrderOfTheirBuilding) {
  for (const char *name : {"one", "two", "three"}) EXPECT_EQ(build_entry(name, one_block), 0);
  EXPECT_EQ(build_entry("bad", "x"), -1);
  EXPECT_EQ(build_entry("kzci", "(LOG_COUNT=1)"), 0);
  EXPECT_EQ(tns_.tns_service_count, 4u);
  KZCITnsService *service = tns_.tns_service;
  for (const char *expected : {"one", "two", "three", "kzci", "one"}) {
    EXPECT_EQ(name_of(*service), expected);
    service = KZCITnsServiceNext(service);
  }
  service = tns_.tns_service;
  for (const char *expected : {"one", "kzci", "three", "two", "one"}) {
    EXPECT_EQ(name_of(*service), expected);
    service = KZCITnsServiceOfEntry(service->le.prev);
  }
}

TEST_F(ServiceBuild, TheTokenAfterTheEntryIsLeft) {
  Entry entry("mydb", one_block + "\nnext = (");
  EXPECT_EQ(KZCITnsServiceBuild(&tns_, &entry.params), 0);
  EXPECT_EQ(entry.params.tns_token_type, TNS_RIGHT_PARENTHESES);
  EXPECT_EQ(KZCITnsParse(&entry.params, TNS_KEY), 0);
  EXPECT_EQ(entry.key(), "next");
}

TEST_F(ServiceBuild, AnOrdinaryServiceKeepsTheDefaultsOfItsVariables) {
  EXPECT_EQ(build_entry("mydb", one_block), 0);
  EXPECT_EQ(support::full_tree(tns_),
            "services=1\n"
            " service mydb descriptions=1\n"
            "  description remove append lists=1\n"
            "    list addresses=1\n"
            "      address HOST=h\n"
            "  variables\n");
}

TEST_F(ServiceBuild, TheNameIsStoredWithItsLengthInTheRecordsOwnBlock) {
  struct Row {
    std::string written;
    std::string stored;
  };
  const std::string n256(256, 'n');
  const Row rows[] = {
      {"mydb", "mydb"},
      {"x", "x"},
      {"\"a b\"", "a b"},
      {n256, n256},
      {"\xC3\xA4\xFF", "\xC3\xA4\xFF"},
      {bytes("my\0db"sv), bytes("my\0\0\0"sv)},  // A string copy ends at the zero byte.
      {bytes("\0db"sv), bytes("\0\0\0"sv)},
      {bytes("db\0"sv), bytes("db\0"sv)},
  };
  for (const Row &row : rows) {
    SCOPED_TRACE(row.written);
    begin();
    EXPECT_EQ(build_entry(row.written, one_block), 0);
    EXPECT_EQ(name_of(*tns_.tns_service), row.stored);
    EXPECT_EQ(support::live_blocks().front(),
              (Block{"KZCITnsServiceBuild", service_size + row.stored.size()}));
    end({});
  }
}

// ----------------------------------------------------------------------
// The reserved entry
// ----------------------------------------------------------------------

TEST_F(ServiceBuild, ALeadingPartOfTheReservedNameInAnyCaseIsReserved) {
  const std::string names[] = {reserved,
                               "kzcisystemvariables",
                               "KzciSystemVariables",
                               "KZCISYSTEMVARIABLE",
                               "KZCISYS",
                               "kzci",
                               "KZ",
                               "k",
                               "\"\"",
                               bytes("KZCISYSTEMVARIABLES\0"sv),
                               bytes("kzcisystemvariables\0more"sv)};
  for (const std::string &name : names) {
    SCOPED_TRACE(name);
    begin();
    EXPECT_EQ(build_entry(name, "(LOG_COUNT=3)"), 0);
    EXPECT_EQ(tns_.tns_service->description_count, 0u);
    EXPECT_EQ(tns_.tns_service->description, nullptr);
    EXPECT_EQ(tns_.tns_service->sys_vars.log_count, 3u);
    EXPECT_EQ(support::live_blocks().size(), 1u);
    end({});
  }
}

TEST_F(ServiceBuild, AnyOtherNameIsOrdinary) {
  const std::string names[] = {"KZCISYSTEMVARIABLES1",
                               "KZCISYSTEMVARIABLESKZCI",
                               "XKZ",
                               "KZCI_",
                               "ZCI",
                               "\" KZ\"",
                               bytes("KZ\0"sv),
                               bytes("\0KZ"sv)};
  for (const std::string &name : names) {
    SCOPED_TRACE(name);
    begin();
    EXPECT_EQ(build_entry(name, one_block), 0);
    EXPECT_EQ(tns_.tns_service->description_count, 1u);
    EXPECT_EQ(build_entry(name, "(LOG_COUNT=3)"), -1);
    end({});
  }
}

TEST_F(ServiceBuild, ReservedEntriesThatAreGood) {
  const Lines good = input_end(1) + service_built(0);
  const EntryRow rows[] = {
      {"one block", "(LOG_COUNT=3)", 0, log_count("3") + good},
      {"the next entry's name ends it", "(LOG_COUNT=3) next", 0,
       log_count("3") + mismatch(1, 3) + service_built(0)},
      {"a closing parenthesis ends it", "(LOG_COUNT=3))", 0,
       log_count("3") + block_end() + service_built(0)},
      {"an equal sign ends it", "(LOG_COUNT=3)=", 0,
       log_count("3") + mismatch(1, 0) + service_built(0)},
      {"an unknown key between two others", "(LOG_LEVEL = INFO)(ANYTHING = 5)(LOG_COUNT = 3)", 0,
       key_word("LOG_LEVEL", LB_LOG_LEVEL) + key("INFO") +
           Lines{"DEBUG parse system variables get log level:INFO"} + unknown_word("ANYTHING") +
           no_variable(0) + key("5") + log_count("3") + good},
      {"only an unknown key", "(ANYTHING=5)", 0,
       unknown_word("ANYTHING") + no_variable(0) + key("5") + good},
      {"a key that is longer than any", "(ABCDEFGHIJKLMNOPQRSTU=5)", 0,
       longer_than_any_word("ABCDEFGHIJKLMNOPQRSTU") + no_variable(0) + key("5") + good},
      {"no value for an unknown key", "(ANYTHING=)", 0,
       unknown_word("ANYTHING") + no_variable(0) + mismatch(3, 2) + good},
      {"a description's key", "(DESCRIPTION=1)", 0,
       key_word("DESCRIPTION", LB_DESCRIPTION) + no_variable(1) + key("1") + good},
  };
  for (const EntryRow &row : rows) run_reserved(row);
}

// The block is read all the same, as one of the key type that the parse state
// still holds.
TEST_F(ServiceBuild, ABlockWithoutAKeyIsReadAsThePreviousOne) {
  const Lines again = key("5") + log_count_told("5");
  const Lines good = input_end(1) + service_built(0);
  // The name, its "=" and the first block hold 33 characters; the key of 256
  // characters ends with the buffer.
  const std::string too_long =
      "(LOG_COUNT=3)" + std::string(1024 - 33 - 1 - 256, ' ') + "(" + std::string(256, 'k');
  const EntryRow rows[] = {
      {"no key", "(LOG_COUNT=3)(=5)", 0, log_count("3") + mismatch(3, 0) + again + good},
      {"no key in the first block", "(=5)", 0, mismatch(3, 0) + no_variable(0) + key("5") + good},
      {"no key after an unknown one", "(LOG_COUNT=3)(ANYTHING=4)(=5)", 0,
       log_count("3") + unknown_word("ANYTHING") + no_variable(0) + key("4") + mismatch(3, 0) +
           no_variable(0) + key("5") + good},
      {"a key that is too long", too_long + "=5)", 0,
       log_count("3") + key_too_long() + refill(1) + again + good},
  };
  for (const EntryRow &row : rows) run_reserved(row);
}

TEST_F(ServiceBuild, ABlockWithoutAKeyOverwritesThePreviousValue) {
  const KZCISystemVariables &stored = variables("(SLOWSQL_THRESHOLD=7)(LOG_COUNT=3)(=5)");
  EXPECT_EQ(stored.log_count, 5u);
  EXPECT_EQ(stored.slowsql_threshold, 7);
}

TEST_F(ServiceBuild, ABlockWithAnUnknownKeyChangesNothing) {
  const KZCISystemVariables &stored = variables("(LOG_LEVEL = INFO)(ANYTHING = 5)(LOG_COUNT = 3)");
  EXPECT_EQ(support::text_of(stored.log_level, stored.log_level_len), "INFO");
  EXPECT_EQ(stored.log_count, 3u);
  EXPECT_EQ(stored.slowsql_threshold, 100);
  EXPECT_EQ(stored.slowsql_flush_second, 60u);
}

TEST_F(ServiceBuild, ReservedEntriesThatFail) {
  const Lines failed = service_failed(-1);
  const Lines cut_off = service_failed(100);
  const Lines count_word = key_word("LOG_COUNT", LB_LOG_COUNT);
  const Lines variable_failed = {"ERROR fail to call KZCISystemVariablesBuild, status:-1"};
  const Lines variable_cut_off = {"ERROR fail to call KZCISystemVariablesBuild, status:100"};
  const EntryRow rows[] = {
      {"nothing", "", -1, input_end(1) + cut_off},
      {"a key", "x", -1, mismatch(1, 3) + failed},
      {"an empty block", "()", -1, mismatch(3, 2) + mismatch(0, 2) + failed},
      {"the end instead of a key", "(", -1, input_end(1) + ended() + cut_off},
      {"the end inside a key", "(ANYTHING", -1, key_cut_off(1) + ended() + cut_off},
      {"a key that is too long and no equal sign", "(" + std::string(256, 'k'), -1,
       key_too_long() + input_end(1) + cut_off},
      {"no equal sign after an unknown key", "(ANYTHING 5)", -1,
       unknown_word("ANYTHING") + mismatch(0, 3) + failed},
      {"no equal sign after a known key", "(LOG_COUNT 5)", -1,
       count_word + mismatch(0, 3) + failed},
      {"the end after a known key", "(LOG_COUNT ", -1, count_word + input_end(1) + cut_off},
      {"a number that is none", "(LOG_COUNT=abc)", -1,
       count_word + key("abc") + not_a_number("abc") + log_count_told("0") + variable_failed +
           failed},
      {"a block for a number", "(LOG_COUNT=(5))", -1,
       count_word + mismatch(3, 1) + not_a_number("LOG_COUNT") + log_count_told("0") +
           variable_failed + failed},
      {"a block for a text", "(LOG_LEVEL = (INFO))", -1,
       key_word("LOG_LEVEL", LB_LOG_LEVEL) + mismatch(3, 1) + no_text() +
           Lines{"DEBUG parse system variables get log level:"} + variable_failed + failed},
      {"a block for an unknown key", "(ANYTHING=(5))", -1,
       unknown_word("ANYTHING") + no_variable(0) + mismatch(3, 1) + mismatch(2, 1) + failed},
      {"two values", "(LOG_COUNT=3 4)", -1, log_count("3") + mismatch(2, 3) + failed},
      {"the end instead of a text", "(LOG_LEVEL=", -1,
       key_word("LOG_LEVEL", LB_LOG_LEVEL) + input_end(1) + no_text() +
           Lines{"DEBUG parse system variables get log level:"} + variable_cut_off + cut_off},
      {"the end inside a number", "(LOG_COUNT=12", -1,
       count_word + key_cut_off(1) + not_a_number("12G_COUNT") + log_count_told("12") +
           variable_failed + failed},
      {"the end inside a number as long as its key", "(LOG_COUNT=123456789", -1,
       count_word + key_cut_off(1) + log_count_told("123456789") + variable_cut_off + cut_off},
      {"a second block that fails", "(LOG_COUNT=3)(LOG_COUNT=x)", -1,
       log_count("3") + count_word + key("x") + not_a_number("x") + log_count_told("0") +
           variable_failed + failed},
      {"a second block without an end", "(LOG_COUNT=3)(", -1,
       log_count("3") + input_end(1) + ended() + cut_off},
  };
  for (const EntryRow &row : rows) run_reserved(row);
}

// Nothing hangs below a record that has read system variables alone.
TEST_F(ServiceBuild, AReservedEntryThatFailsLeavesNothingAllocated) {
  EXPECT_EQ(build_entry(reserved, "(LOG_COUNT=3)(LOG_COUNT=x)"), -1);
  EXPECT_EQ(support::memory_events(), (Lines{"MALLOC " + with_name(19) + " KZCITnsServiceBuild",
                                             "FREE KZCITnsServiceBuild"}));
}

// ----------------------------------------------------------------------
// Literal descriptors
// ----------------------------------------------------------------------

struct DescriptorRow {
  const char *title;
  std::string text;
  Outcome outcome;
  Lines lines;  // After the builder's call.
  std::vector<Block> left = {};
};

class DescriptorBuild : public BuilderTest {
 protected:
  Outcome build_text(const std::string &text) { return build_part(text, text.size()); }

  // Builds from the first characters of a terminated text.
  Outcome build_part(const std::string &text, std::size_t length) {
    Outcome outcome{0, 7};
    outcome.status = KZCITnsBuildDes(&tns_, reinterpret_cast<const OraText *>(text.c_str()),
                                     static_cast<ub4>(length), &outcome.find);
    return outcome;
  }

  void run(const DescriptorRow &row) {
    SCOPED_TRACE(row.title);
    SCOPED_TRACE(row.text);
    begin();
    EXPECT_EQ(build_text(row.text), row.outcome);
    EXPECT_EQ(support::log_without_pointers(), descriptor_call(row.text) + refill(2) + row.lines);
    EXPECT_EQ(tns_.tns_service_count, static_cast<ub4>(row.outcome.find));
    EXPECT_EQ(tns_.tns_service != nullptr, row.outcome.find == 1);
    end(row.left);
  }
};

constexpr Outcome found{0, 1};
constexpr Outcome absent{0, 0};
constexpr Outcome failed{-1, 0};

TEST_F(DescriptorBuild, ANullArgumentIsReported) {
  const auto *text = reinterpret_cast<const OraText *>("(DESCRIPTION=");
  for (int nulls = 1; nulls < 8; ++nulls) {
    SCOPED_TRACE(nulls);
    support::reset_platform();
    boolean find = 7;
    EXPECT_EQ(KZCITnsBuildDes((nulls & 1) ? nullptr : &tns_, (nulls & 2) ? nullptr : text, 13,
                              (nulls & 4) ? nullptr : &find),
              -2);
    EXPECT_EQ(find, (nulls & 4) ? 7 : 0);
    const Lines log = support::log_without_pointers();
    ASSERT_EQ(log.size(), 2u);
    EXPECT_EQ(log[0].rfind("DEBUG call KZCITnsBuildDes with params [tns:", 0), 0u);
    EXPECT_EQ(log[1], "ERROR invalid handle, handle is NULL");
    EXPECT_EQ(support::allocation_count(), 0u);
  }
}

TEST_F(DescriptorBuild, TheFirstRecordPrintsTheContainerAndTheText) {
  build_text("(x");
  EXPECT_EQ(support::log_records().front(), "DEBUG call KZCITnsBuildDes with params [tns:" +
                                                support::pointer_text(&tns_) + ", (x]");
}

TEST_F(DescriptorBuild, OneBlockAndBlanksAreGood) {
  const Lines lines = small_description("h") + refill(2) + Lines{"DEBUG reach eof"} + built(1, 1);
  const DescriptorRow rows[] = {
      {"nothing after it", one_block, found, lines},
      {"blanks after it", one_block + " \t\r\n", found, lines},
      {"a comment after it", one_block + " # (DESCRIPTION=", found, lines},
      {"blanks before it", "\n\n " + one_block, found, lines},
      {"blanks inside it", "( DESCRIPTION = ( ADDRESS = ( HOST = h ) ) )", found, lines},
  };
  for (const DescriptorRow &row : rows) run(row);
}

TEST_F(DescriptorBuild, ATextThatEndsBeforeItsEqualSignNamesNothing) {
  struct Row {
    const char *text;
    Lines lines;
  };
  const Row rows[] = {
      {"", input_end(2)},
      {" \n", refill(2) + input_end(2)},
      {"# (DESCRIPTION=", refill(2) + input_end(2)},
      {"(", refill(2) + input_end(2)},
      {"( ", refill(2) + input_end(2)},
      {"(DESC", refill(2) + key_cut_off(2)},
      {"(DESCRIPTION", refill(2) + key_cut_off(2)},
      {"(\"DESCRIPTION=(", refill(2) + key_cut_off(2)},
      {"(DESCRIPTION ", refill(2) + key_word("DESCRIPTION", LB_DESCRIPTION) + input_end(2)},
      {"(HOST ", refill(2) + key_word("HOST", LB_HOST) + input_end(2)},
  };
  for (const Row &row : rows) {
    SCOPED_TRACE(row.text);
    begin();
    EXPECT_EQ(build_text(row.text), absent);
    EXPECT_EQ(support::log_without_pointers(),
              descriptor_call(row.text) + row.lines + not_found(row.text));
    EXPECT_EQ(support::allocation_count(), 0u);
    end({});
  }
}

TEST_F(DescriptorBuild, AMalformedBeginningFails) {
  const DescriptorRow rows[] = {
      {"a key", "mydb", failed, mismatch(1, 3)},
      {"an equal sign", "=", failed, mismatch(1, 0)},
      {"an empty block", "()", failed, mismatch(3, 2)},
      {"no key", "(=x)", failed, mismatch(3, 0)},
      {"a key that is too long", "(" + std::string(256, 'k'), failed, key_too_long()},
      {"no key word", "(ANYTHING ", failed, unknown_word("ANYTHING")},
      {"longer than any key word", "(ABCDEFGHIJKLMNOPQRSTU=x)", failed,
       longer_than_any_word("ABCDEFGHIJKLMNOPQRSTU")},
      {"no equal sign", "(DESCRIPTION)", failed,
       key_word("DESCRIPTION", LB_DESCRIPTION) + mismatch(0, 2)},
      {"another key word", "(HOST=h)", failed, other_block("HOST", LB_HOST)},
  };
  for (const DescriptorRow &row : rows) run(row);
}

TEST_F(DescriptorBuild, AFailureAfterTheEqualSignFails) {
  const Lines address_begun =
      description_begins() + description_key("ADDRESS", LB_ADDRESS) + address_call();
  const Lines after = small_description("h") + service_failed(-1);
  const DescriptorRow rows[] = {
      {"an empty description", "(DESCRIPTION=)", failed,
       description_begins() + mismatch(1, 2) + description_failed() + service_failed(-1)},
      {"the end after the equal sign", "(DESCRIPTION=", failed,
       description_begins() + input_end(2) + description_failed() + service_failed(-1)},
      {"no last parenthesis", "(DESCRIPTION=(ADDRESS=(HOST=h))", failed,
       address_begun + host("h") + block_end() + input_end(2) + description_built(1) + ended() +
           service_failed(100),
       one_description_left},
      {"another token for it", "(DESCRIPTION=(ADDRESS=(HOST=h))=", failed,
       address_begun + host("h") + block_end() + mismatch(1, 0) + description_built(1) +
           mismatch(2, 0) + service_failed(-1),
       one_description_left},
      {"a word after it", one_block + "x", failed, after, one_description_left},
      {"a word after blanks", one_block + " \n x", failed, after, one_description_left},
      {"a second block", one_block + one_block, failed, after, one_description_left},
      {"a closing parenthesis", one_block + ")", failed, after, one_description_left},
  };
  for (const DescriptorRow &row : rows) run(row);
}

TEST_F(DescriptorBuild, AZeroByteAfterTheDescriptorIsNoBlank) {
  EXPECT_EQ(build_text(one_block + bytes("\0"sv)), failed);
  EXPECT_EQ(support::log_without_pointers(),
            descriptor_call(one_block) + refill(2) + small_description("h") + service_failed(-1));
  end(one_description_left);
  begin();
}

TEST_F(DescriptorBuild, NoMemoryForTheService) {
  support::fail_allocation(1);
  EXPECT_EQ(build_text(one_block), failed);
  const Lines tried = {"DEBUG bulid_tns_service get key_type 1",
                       "MALLOC FAILS " + with_name(11) + " KZCITnsBuildDes",
                       "ERROR malloc tns_service error, malloc size:" + with_name(11)};
  EXPECT_EQ(support::events(), descriptor_call(one_block) + refill(2) +
                                   key_word("DESCRIPTION", LB_DESCRIPTION) + tried +
                                   service_failed(-1) + Lines{"FREE null"});
}

TEST_F(DescriptorBuild, TheMessageOfAFailureStandsBeforeTheRelease) {
  EXPECT_EQ(build_text("(DESCRIPTION=)"), failed);
  EXPECT_EQ(support::memory_events(),
            (Lines{"MALLOC " + with_name(11) + " KZCITnsBuildDes",
                   "MALLOC " + std::to_string(sizeof(KZCIDescription)) + " KZCIDescription",
                   "FREE KZCIDescription", "FREE KZCITnsBuildDes"}));
  const Lines all = support::events();
  ASSERT_GE(all.size(), 2u);
  EXPECT_EQ(Lines(all.end() - 2, all.end()), service_failed(-1) + Lines{"FREE KZCITnsBuildDes"});
}

TEST_F(DescriptorBuild, TheServiceIsNamedByItsKeyWordAsWritten) {
  struct Row {
    const char *text;
    const char *name;
  };
  const Row rows[] = {
      {"(DESCRIPTION=(ADDRESS=(HOST=h)))", "DESCRIPTION"},
      {"(description=(ADDRESS=(HOST=h)))", "description"},
      {"( DescRiption = (ADDRESS=(HOST=h)))", "DescRiption"},
      {"(\"DESCription\"=(ADDRESS=(HOST=h)))", "DESCription"},
  };
  for (const Row &row : rows) {
    SCOPED_TRACE(row.text);
    begin();
    EXPECT_EQ(build_text(row.text), found);
    EXPECT_EQ(name_of(*tns_.tns_service), row.name);
    EXPECT_EQ(support::live_blocks().front(), (Block{"KZCITnsBuildDes", service_size + 11}));
    end({});
  }
}

TEST_F(DescriptorBuild, OnlyTheGivenLengthIsParsed) {
  const std::string text = one_block + "(garbage";
  EXPECT_EQ(build_part(text, one_block.size()), found);
  EXPECT_EQ(support::log_without_pointers(), descriptor_call(text) + refill(2) +
                                                 small_description("h") + refill(2) +
                                                 Lines{"DEBUG reach eof"} + built(1, 1));
  EXPECT_EQ(build_part(text, one_block.size() - 1), failed);
  EXPECT_EQ(build_part(text, 0), absent);
  end(one_description_left);
  begin();
}

TEST_F(DescriptorBuild, AZeroByteEndsTheTextInTheRecordsOfTheLogAlone) {
  EXPECT_EQ(build_text(bytes("(DESCRIPTION=(ADDRESS=(HOST=h\0i)))"sv)), found);
  EXPECT_EQ(host_of(*tns_.tns_service->description), bytes("h\0i"sv));
  EXPECT_EQ(support::log_without_pointers().front(),
            descriptor_call("(DESCRIPTION=(ADDRESS=(HOST=h")[0]);
  KZCITnsClear(&tns_);
  begin();
  EXPECT_EQ(build_text(bytes("( \"a\0b"sv)), absent);
  EXPECT_EQ(support::log_without_pointers(),
            descriptor_call("( \"a") + refill(2) + key_cut_off(2) + not_found("( \"a"));
}

TEST_F(DescriptorBuild, ALongTextIsReadInSlices) {
  const std::string text = "(DESCRIPTION=" + std::string(2500 - 32, ' ') + "(ADDRESS=(HOST=h)))";
  ASSERT_EQ(text.size(), 2500u);
  EXPECT_EQ(build_text(text), found);
  Lines reads;
  for (const std::string &line : support::log_without_pointers())
    if (line == "DEBUG read data mode=2") reads.push_back(line);
  EXPECT_EQ(reads.size(), 4u);  // 1024, 1024 and 452 characters, then none.
}

TEST_F(DescriptorBuild, ADescriptorMayEndWithABuffer) {
  for (const std::size_t size : {1023u, 1024u, 1025u, 2048u}) {
    SCOPED_TRACE(size);
    begin();
    EXPECT_EQ(build_text("(DESCRIPTION=" + std::string(size - 32, ' ') + "(ADDRESS=(HOST=h)))"),
              found);
    end({});
  }
}

TEST_F(DescriptorBuild, ServicesAreAppendedAfterTheOthers) {
  Entry entry("mydb", one_block);
  EXPECT_EQ(KZCITnsServiceBuild(&tns_, &entry.params), 0);
  EXPECT_EQ(build_text("(description=(ADDRESS=(HOST=i)))"), found);
  EXPECT_EQ(support::log_without_pointers().back(),
            "DEBUG succ to call KZCITnsServiceBuild, service number:2");
  EXPECT_EQ(build_text("(DESCRIPTION=(ADDRESS=(HOST=j)))"), found);
  EXPECT_EQ(build_text("(DESCRIPTION=)"), failed);
  EXPECT_EQ(tns_.tns_service_count, 3u);
  KZCITnsService *service = tns_.tns_service;
  for (const char *expected : {"mydb", "description", "DESCRIPTION", "mydb"}) {
    EXPECT_EQ(name_of(*service), expected);
    service = KZCITnsServiceNext(service);
  }
}

TEST_F(DescriptorBuild, AContainerThatHoldsServicesIsLeftAloneByAFailure) {
  EXPECT_EQ(build_text(one_block), found);
  const std::string before = support::full_tree(tns_);
  const KZCITnsService *first = tns_.tns_service;
  for (const char *text :
       {"", "(", "mydb", "(HOST=h)", "(DESCRIPTION=)", "(DESCRIPTION=(KZLB=x))"}) {
    SCOPED_TRACE(text);
    EXPECT_EQ(build_text(text).find, 0);
    EXPECT_EQ(support::full_tree(tns_), before);
    EXPECT_EQ(tns_.tns_service, first);
  }
}

}  // namespace
