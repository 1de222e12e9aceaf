// Single functions of the module fail that no input makes fail, during builds, releases,
// dumps and slow-SQL batches: what their callers make of it, by status, log, allocations and
// releases, and what stays.
#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "kzoci/oci_tnsname.h"
#include "support/builder_body.h"
#include "support/expected_dump.h"
#include "support/expected_log.h"
#include "support/failing_callee.h"
#include "support/parsing.h"

namespace {

using namespace builder_body;
using namespace expected_log;
using namespace failing_callee;
using support::build;
using support::open_files;
using support::Outcome;

// ----------------------------------------------------------------------
// Single builders: the record's Init fails
// ----------------------------------------------------------------------

// Parents that are good enough to be built into.
struct Parents {
  std::unique_ptr<KZCITnsService> service = std::make_unique<KZCITnsService>();
  KZCIDescription des;
  KZCIAddressList list;

  Parents() {
    KZCITnsServiceInit(service.get(), 0, "");
    KZCIDescriptionInit(&des);
    KZCIAddressListInit(&list);
  }

  bool without_children() const {
    return service->description == nullptr && service->description_count == 0 &&
           des.address_list == nullptr && des.address_list_count == 0 &&
           des.connect_data == nullptr && list.address == nullptr && list.address_count == 0;
  }
};

sword build_description(Parents &p, Body &b) {
  return KZCIDescriptionBuild(p.service.get(), &b.params);
}
sword build_list(Parents &p, Body &b) { return KZCIAddressListBuild(&p.des, &b.params); }
sword build_address(Parents &p, Body &b) { return KZCIAddressBuild(&p.list, &b.params); }
sword build_data(Parents &p, Body &b) { return KZCIConnectDataBuild(&p.des, &b.params); }
sword build_blacklist(Parents &p, Body &b) {
  return KZCIBlacklistConfBuild(&p.des.black_list_conf, &b.params);
}
sword build_remove(Parents &p, Body &b) {
  return KZCIRemoveStrategyBuild(&p.des.black_list_conf, &b.params);
}
sword build_append(Parents &p, Body &b) {
  return KZCIAppendStrategyBuild(&p.des.black_list_conf, &b.params);
}

using Build = sword (*)(Parents &, Body &);

struct InitRow {
  Callee callee;
  Build build;
  Lines call;
  std::string block;
  Lines failure;
};

// The status is that of the Init, the record stays allocated, nothing is read.
TEST_F(FailingCallee, InitOfARecordStopsItsBuilder) {
  const InitRow rows[] = {
      {description_init,
       build_description,
       description_call(),
       description_block,
       {"ERROR fail to call KZCIDescriptionInit"}},
      {blacklist_init,
       build_description,
       description_call(),
       description_block,
       {"ERROR fail to call KZCIBlacklistConfInit, status:STATUS",
        "ERROR fail to call KZCIDescriptionInit"}},
      {address_list_init,
       build_list,
       address_list_call(),
       list_block,
       {"ERROR fail to call KZCIAddressListInit"}},
      {address_init,
       build_address,
       address_call(),
       address_block,
       {"ERROR fail to call KZCIAddressInit"}},
      {connect_data_init,
       build_data,
       connect_data_call(),
       data_block,
       {"ERROR fail to call KZCIConnectDataInit"}},
  };
  for (const InitRow &row : rows)
    for (const sword status : statuses) {
      SCOPED_TRACE(row.failure.front() + " with " + std::to_string(status));
      begin();
      Parents parents;
      Body body("(HOST=h))");
      fail_call(row.callee, 1, status);
      EXPECT_EQ(row.build(parents, body), status);
      EXPECT_EQ(joined(support::events()),
                joined(row.call + allocated(row.block) + with_status(row.failure, status)));
      EXPECT_EQ(live(), Lines{row.block});
      EXPECT_EQ(body.unread(), "(HOST=h))");
      EXPECT_TRUE(parents.without_children());
      EXPECT_TRUE(all_struck());
    }
}

// A record's Init stops where that of a part of it fails.
TEST_F(FailingCallee, InitOfAPartStopsTheInitOfItsRecord) {
  struct Row {
    Callee callee;
    sword (*init)();
    std::string failure;
  };
  const Row rows[] = {
      {variables_init,
       [] {
         const auto service = std::make_unique<KZCITnsService>();
         return KZCITnsServiceInit(service.get(), 0, "");
       },
       "ERROR fail to call KZCISystemVariablesInit, ret:STATUS"},
      {blacklist_init,
       [] {
         KZCIDescription des;
         return KZCIDescriptionInit(&des);
       },
       "ERROR fail to call KZCIBlacklistConfInit, status:STATUS"},
  };
  for (const Row &row : rows)
    for (const sword status : statuses) {
      SCOPED_TRACE(row.failure + " with " + std::to_string(status));
      begin();
      fail_call(row.callee, 1, status);
      EXPECT_EQ(row.init(), status);
      EXPECT_EQ(support::events(), with_status({row.failure}, status));
      EXPECT_TRUE(all_struck());
    }
}

// ----------------------------------------------------------------------
// Single builders: the key's type cannot be found
// ----------------------------------------------------------------------

struct KeyRow {
  Build build;
  Lines begins;  // Up to the first refill.
  Item item;     // Its value needs no block.
  Lines verdict;
  Lines releases;
};

std::vector<KeyRow> key_rows() {
  return {
      {build_address,
       address_call() + allocated(address_block),
       {"HOST", LB_HOST, {"DEBUG KZCIAddressBuild get key_type 20"}, "h"},
       {"ERROR something error in build address, status:STATUS"},
       release("address")},
      {build_list,
       address_list_call() + allocated(list_block),
       {"KZLB", LB_KZLB, {"DEBUG KZCIAddressListBuild get key_type 2"}, "ON"},
       {"ERROR something error in KZCIAddressListBuild"},
       release("address_list")},
      {build_data,
       connect_data_call() + allocated(data_block),
       {"SID", LB_SID, {"DEBUG KZCIConnectDataBuild get key_type 25"}, "s"},
       {"ERROR something error in KZCIConnectDataBuild"},
       release("KZCIConnectData")},
      {build_description,
       description_call() + allocated(description_block),
       {"KZLB", LB_KZLB, {"DEBUG bulid_description get key_type 2"}, "ON"},
       {"ERROR something error in build description"},
       release("KZCIDescription")},
      {build_remove,
       strategy_call(),
       {"TIMEOUT", LB_TIMEOUT, {"DEBUG KZCIRemoveStrategyBuild get key_type 12"}, "30"},
       {"ERROR something error in KZCIRemoveStrategyBuild"},
       {}},
      {build_append,
       strategy_call(),
       {"DURATION", LB_DRUATION, {"DEBUG get key_type 15"}, "5"},
       {"ERROR something error in KZCIAppendStrategyBuild"},
       {}},
  };
}

Lines no_key_type(const std::string &word) {
  return key(word) + Lines{"ERROR fail to get key type, status:STATUS"};
}

// Whether it is the block's first item or a later one.
TEST_F(FailingCallee, KeyTypeOfAnItemStopsABlock) {
  for (const KeyRow &row : key_rows())
    for (const std::size_t before : {0u, 1u})
      for (const sword status : statuses) {
        SCOPED_TRACE(row.verdict.front() + " with " + std::to_string(status) + " after " +
                     std::to_string(before) + " items");
        begin();
        Parents parents;
        const std::string item = "(" + row.item.key + "=" + row.item.value + ")";
        Body body((before > 0 ? item : "") + item + ")");
        const Lines read = before > 0 ? item_begins(row.item) + value(row.item.value) : Lines{};
        fail_call(get_key_type, before + 1, status);
        EXPECT_EQ(row.build(parents, body), -1);
        EXPECT_EQ(joined(support::events()),
                  joined(with_status(row.begins + refill(mode) + read + no_key_type(row.item.key) +
                                         row.verdict + row.releases,
                                     status)));
        EXPECT_EQ(live(), Lines{});
        EXPECT_EQ(body.unread(), "=" + row.item.value + "))");
        EXPECT_TRUE(parents.without_children());
        EXPECT_TRUE(all_struck());
      }
}

// A blacklist's items are blocks themselves. The one that was read stays in the
// record, for the builder takes nothing back.
TEST_F(FailingCallee, KeyTypeStopsABlacklist) {
  const Lines remove_strategy =
      key_word("REMOVE_STRATEGY", LB_REMOVE_STRATEGY) +
      Lines{"DEBUG KZCIAddressListBuild get key_type 10"} + strategy_call() +
      key_word("TIMEOUT", LB_TIMEOUT) + Lines{"DEBUG KZCIRemoveStrategyBuild get key_type 12"} +
      key("30") + block_end() + Lines{"DEBUG success to call KZCIRemoveStrategyBuild"};
  const Lines verdict = {"ERROR something error in build_black_list_conf"};
  for (const sword status : statuses) {
    SCOPED_TRACE(status);
    begin();
    Parents parents;
    Body first("(REMOVE_STRATEGY=(TIMEOUT=30)))");
    fail_call(get_key_type, 1, status);
    EXPECT_EQ(build_blacklist(parents, first), -1);
    EXPECT_EQ(
        joined(support::events()),
        joined(with_status(
            blacklist_call() + refill(mode) + no_key_type("REMOVE_STRATEGY") + verdict, status)));
    EXPECT_EQ(parents.des.black_list_conf.remove_timeout, 50);

    begin();
    Body second("(REMOVE_STRATEGY=(TIMEOUT=30))(APPEND_STRATEGY=(DURATION=5)))");
    fail_call(get_key_type, 3, status);
    EXPECT_EQ(build_blacklist(parents, second), -1);
    EXPECT_EQ(joined(support::events()),
              joined(with_status(blacklist_call() + refill(mode) + remove_strategy +
                                     no_key_type("APPEND_STRATEGY") + verdict,
                                 status)));
    EXPECT_EQ(parents.des.black_list_conf.remove_timeout, 30);
    EXPECT_EQ(parents.des.black_list_conf.duration, 10);
    EXPECT_TRUE(all_struck());
  }
}

// ----------------------------------------------------------------------
// A whole build with one failing callee
// ----------------------------------------------------------------------

// What a build comes to.
enum class Result {
  passed_on,  // The failure's status, save that the end of the input is "not found".
  failed,
  built
};

struct BuildRow {
  std::string name;
  Callee callee;
  std::size_t call;
  Lines log;  // After the row's common beginning.
  Result result;
  Lines left;
};

// A row whose build fails, and one whose failure is passed on.
BuildRow fails(const std::string &name, Callee callee, std::size_t call, const Lines &log,
               const Lines &left) {
  return {name, callee, call, log, Result::failed, left};
}
BuildRow passes_on(const std::string &name, Callee callee, std::size_t call, const Lines &log,
                   const Lines &left) {
  return {name, callee, call, log, Result::passed_on, left};
}

// How a failure goes up from each block; each begins after its own message.
Lines address_list_lost() {
  return Lines{"ERROR fail to call buil_address_list, status:STATUS",
               "ERROR something error in KZCIAddressListBuild"} +
         release("address_list");
}

Lines description_lost() {
  return Lines{"ERROR something error in build description"} + release("KZCIDescription") +
         Lines{"ERROR fail to build description, status:-1"} + service_failed(-1);
}

Lines no_description() {
  return {"ERROR fail to call KZCIDescriptionInit",
          "ERROR fail to build description, status:STATUS",
          "ERROR something error in build tns service, status:STATUS"};
}

// The failures that a description meets in the file and in a descriptor alike.
// The body is the one of whole_body; the last lines are the service's.
const std::string whole_body =
    "(ADDRESS_LIST=(ADDRESS=(HOST=a))(ADDRESS=(HOST=b)))"
    "(ADDRESS_LIST=(ADDRESS=(HOST=c)))"
    "(CONNECT_DATA=(SID=s))";

Lines first_list() { return new_list() + listed_address("a") + listed_address("b") + list_ends(2); }
Lines second_list() { return new_list() + listed_address("c") + list_ends(1); }

std::vector<BuildRow> whole_body_rows(const Lines &tail) {
  const std::string &l = list_block, &a = address_block, &c = data_block;
  const Lines begins = new_description();
  const Lines list_refused = Lines{"ERROR fail to call KZCIAddressListInit",
                                   "ERROR fail to call KZCIAddressListBuild, status:STATUS"} +
                             description_lost() + tail;
  const Lines address_refused = Lines{"ERROR fail to call KZCIAddressInit"} + address_list_lost() +
                                Lines{"ERROR fail to call KZCIAddressListBuild, status:-1"} +
                                description_lost() + tail;
  const Lines data_refused = Lines{"ERROR fail to call KZCIConnectDataInit",
                                   "ERROR fail to call KZCIConnectDataBuild, status:STATUS"} +
                             description_lost() + tail;
  const Lines blacklist_refused = {"ERROR fail to call KZCIBlacklistConfInit, status:STATUS"};
  return {
      fails("description", description_init, 1, begins + no_description() + tail,
            {description_block}),
      fails("blacklist", blacklist_init, 1, begins + blacklist_refused + no_description() + tail,
            {description_block}),
      fails("first list", address_list_init, 1, begins + new_list() + list_refused, {l}),
      fails("second list", address_list_init, 2, begins + first_list() + new_list() + list_refused,
            {l, a, a, l}),
      fails("first address", address_init, 1,
            begins + new_list() + new_listed_address() + address_refused, {a}),
      fails("second address", address_init, 2,
            begins + new_list() + listed_address("a") + new_listed_address() + address_refused,
            {a, a}),
      fails("address of the second list", address_init, 3,
            begins + first_list() + new_list() + new_listed_address() + address_refused,
            {l, a, a, a}),
      fails("connect data", connect_data_init, 1,
            begins + first_list() + second_list() + new_data() + data_refused, {l, a, a, l, a, c}),
  };
}

const std::string bare_body = "(ADDRESS=(HOST=a))";

// The implied list is released before the message.
std::vector<BuildRow> bare_body_rows(const Lines &tail) {
  const Lines begins = new_description() + new_implied_list();
  return {
      fails("implied list", address_list_init, 1,
            begins + release("address_list") + Lines{"ERROR fail to call KZCIAddressListInit"} +
                description_lost() + tail,
            {}),
      fails("bare address", address_init, 1,
            begins + new_bare_address() + Lines{"ERROR fail to call KZCIAddressInit"} +
                release("address_list") + Lines{"ERROR fail to call KZCIAddressBuild"} +
                description_lost() + tail,
            {address_block}),
  };
}

class FailingCalleeOfABuild : public FailingCallee {
 protected:
  // Builds with each status in turn.
  void run(const std::string &identifier, const Lines &begins, const std::vector<BuildRow> &rows) {
    for (const BuildRow &row : rows)
      for (const sword status : statuses) {
        SCOPED_TRACE(row.name + " with " + std::to_string(status));
        run_once(identifier, begins, row, status);
      }
  }

  void run_once(const std::string &identifier, const Lines &begins, const BuildRow &row,
                sword status) {
    begin();
    const auto open_before = open_files();
    Lines expected = begins + with_status(row.log, status);
    Outcome outcome = {-1, 0};
    if (row.result == Result::built) outcome = {0, 1};
    if (row.result == Result::passed_on) {
      outcome = {status == end_of_input ? 0 : status, 0};
      if (status == end_of_input) expected = expected + not_found(identifier);
    }
    fail_call(row.callee, row.call, status);
    EXPECT_EQ(build(tns_, identifier), outcome);
    EXPECT_TRUE(all_struck());
    EXPECT_EQ(joined(support::events()), joined(expected));
    EXPECT_EQ(live(), row.left);
    EXPECT_EQ(tns_.tns_service_count, row.result == Result::built ? 1u : 0u);
    EXPECT_EQ(tns_.tns_service != nullptr, row.result == Result::built);
    EXPECT_EQ(open_files(), open_before);
    EXPECT_EQ(support::bad_releases(), 0u);
  }
};

// ---------------------------------------------------------------- in the file

Lines entry_begins(const std::string &name) {
  return lookup_begins() + refill(TNS_MODE_FILE) + key(name) + name_found(name) +
         allocated(service_block(name, "KZCITnsServiceBuild"));
}

Lines entry_lost() { return release("KZCITnsServiceBuild") + entry_refused(); }

// The service of an entry that is lost by its Init stays allocated, and its
// status reaches the caller of the lookup.
TEST_F(FailingCalleeOfABuild, InitOfAServiceOfTheFile) {
  names_file("mydb = (DESCRIPTION=" + whole_body + ")\n");
  const Lines failure = {"ERROR fail to call KZCITnsServiceInit",
                         "ERROR fail to call KZCITnsServiceBuild, status:STATUS"};
  const Lines variables = {"ERROR fail to call KZCISystemVariablesInit, ret:STATUS"};
  const std::string service = service_block("mydb", "KZCITnsServiceBuild");
  run("mydb", entry_begins("mydb"),
      {passes_on("service", service_init, 1, failure, {service}),
       passes_on("variables", variables_init, 1, variables + failure, {service})});
}

TEST_F(FailingCalleeOfABuild, InitInsideAnEntryOfTheFile) {
  names_file("mydb = (DESCRIPTION=" + whole_body + ")\n");
  run("mydb", entry_begins("mydb") + description_word(), whole_body_rows(entry_lost()));
  names_file("mydb = (DESCRIPTION=" + bare_body + ")\n");
  run("mydb", entry_begins("mydb") + description_word(), bare_body_rows(entry_lost()));
}

// A first description that is complete does not save an entry whose second one
// has no record: "=" is the last token.
TEST_F(FailingCalleeOfABuild, InitOfTheSecondDescription) {
  names_file("mydb = (DESCRIPTION=(ADDRESS=(HOST=a)))(DESCRIPTION=(ADDRESS=(HOST=b)))\n");
  const Lines first = new_description() + bare_address("a") + description_ends(1);
  const Lines second = description_word() + new_description();
  const std::string &d = description_block, &l = list_block, &a = address_block;
  run("mydb", entry_begins("mydb") + description_word() + first + second,
      {fails("description", description_init, 2, no_description() + entry_lost(), {d, l, a, d}),
       fails("implied list", address_list_init, 2,
             new_implied_list() + release("address_list") +
                 Lines{"ERROR fail to call KZCIAddressListInit"} + description_lost() +
                 entry_lost(),
             {d, l, a})});
}

TEST_F(FailingCalleeOfABuild, KeyTypeOfABlockOfTheFile) {
  names_file("mydb = (DESCRIPTION=(ADDRESS=(HOST=a)))(DESCRIPTION=(ADDRESS=(HOST=b)))\n");
  const Lines failure = no_key_type("DESCRIPTION") +
                        Lines{"ERROR something error in build tns service, status:STATUS"} +
                        entry_lost();
  const Lines first =
      description_word() + new_description() + bare_address("a") + description_ends(1);
  const std::string &d = description_block, &l = list_block, &a = address_block;
  run("mydb", entry_begins("mydb"),
      {fails("first block", get_key_type, 1, failure, {}),
       // After DESCRIPTION, ADDRESS and HOST of the first block.
       fails("second block", get_key_type, 4, first + failure, {d, l, a})});
}

// The item inside a description that fails by its key: the description is lost,
// and the entry with it, since the key is the last token.
TEST_F(FailingCalleeOfABuild, KeyTypeInsideADescriptionOfTheFile) {
  names_file("mydb = (DESCRIPTION=(ADDRESS=(HOST=a)))\n");
  const Lines begins = new_description();
  const Lines address_fails =
      no_key_type("HOST") + Lines{"ERROR something error in build address, status:STATUS"} +
      release("address") + release("address_list") + Lines{"ERROR fail to call KZCIAddressBuild"};
  run("mydb", entry_begins("mydb") + description_word(),
      {fails("item of the description", get_key_type, 2,
             begins + no_key_type("ADDRESS") + description_lost() + entry_lost(), {}),
       fails("item of the address", get_key_type, 3,
             begins + new_implied_list() + new_bare_address() + address_fails + description_lost() +
                 entry_lost(),
             {})});
}

// The reserved entry goes on after a key that could not be identified, with the
// key type that the parse state holds: none at first, later the last block's.
TEST_F(FailingCalleeOfABuild, KeyTypeInTheReservedEntry) {
  const std::string name = "KZCISYSTEMVARIABLES";
  names_file(name + " = (LOG_COUNT = 3)(SLOWSQL_THRESHOLD = 7)");
  const Lines begins = entry_begins(name) + variables_begin();
  const Lines threshold = key_word("SLOWSQL_THRESHOLD", LB_SLOWSQL_THRESHOLD) + key("7") +
                          Lines{"DEBUG parse system variables get slowsql threshold:7"};
  const Lines ends = input_end(TNS_MODE_FILE) + built(0, 1);
  const std::string service = service_block(name, "KZCITnsServiceBuild");
  const BuildRow first = {"first block",
                          get_key_type,
                          1,
                          no_key_type("LOG_COUNT") + no_variable(0) + key("3") + threshold + ends,
                          Result::built,
                          {service}};
  const BuildRow second = {
      "second block",
      get_key_type,
      2,
      log_count("3") + no_key_type("SLOWSQL_THRESHOLD") + key("7") + log_count_told("7") + ends,
      Result::built,
      {service}};
  for (const sword status : statuses) {
    SCOPED_TRACE(status);
    run_once(name, begins, first, status);
    EXPECT_EQ(tns_.tns_service->sys_vars.log_count, 0u);
    EXPECT_EQ(tns_.tns_service->sys_vars.slowsql_threshold, 7);
    run_once(name, begins, second, status);
    EXPECT_EQ(tns_.tns_service->sys_vars.log_count, 7u);
    EXPECT_EQ(tns_.tns_service->sys_vars.slowsql_threshold, 100);
  }
}

// ---------------------------------------------------------------- in a descriptor

Lines descriptor_begins(const std::string &text) {
  return lookup_call() + descriptor_call(text) + refill(TNS_MODE_DESCRIPTION);
}

Lines new_descriptor_service() {
  return description_word() + allocated(service_block("DESCRIPTION", "KZCITnsBuildDes"));
}

TEST_F(FailingCalleeOfABuild, InitOfTheServiceOfADescriptor) {
  const std::string text = "(DESCRIPTION=" + bare_body + ")";
  const Lines failure = Lines{"ERROR fail to call KZCITnsServiceInit",
                              "ERROR something error in build tns service, status:STATUS"} +
                        release("KZCITnsBuildDes");
  const Lines variables = {"ERROR fail to call KZCISystemVariablesInit, ret:STATUS"};
  run(text, descriptor_begins(text) + new_descriptor_service(),
      {fails("service", service_init, 1, failure, {}),
       fails("variables", variables_init, 1, variables + failure, {})});
}

TEST_F(FailingCalleeOfABuild, InitInsideADescriptor) {
  const std::string whole = "(DESCRIPTION=" + whole_body + ")";
  run(whole, descriptor_begins(whole) + new_descriptor_service(),
      whole_body_rows(release("KZCITnsBuildDes")));
  const std::string bare = "(DESCRIPTION=" + bare_body + ")";
  run(bare, descriptor_begins(bare) + new_descriptor_service(),
      bare_body_rows(release("KZCITnsBuildDes")));
}

// Nothing is allocated yet; a status that means the end of the text is taken for
// a descriptor that ends there.
TEST_F(FailingCalleeOfABuild, KeyTypeOfTheDescriptorsHead) {
  const std::string text = "(DESCRIPTION=" + bare_body + ")";
  run(text, descriptor_begins(text),
      {passes_on("head", get_key_type, 1, no_key_type("DESCRIPTION"), {})});
}

// ---------------------------------------------------------------- after a descriptor

Lines descriptor_up_to_its_end(const std::string &text) {
  return descriptor_begins(text) + new_descriptor_service() + new_description() +
         bare_address("a") + description_ends(1);
}

const Lines bare_description_left = {description_block, list_block, address_block};

// The last token must still be ")"; the status reported is that of reading it.
TEST_F(FailingCalleeOfABuild, LastTokenChangesAfterADescriptor) {
  const std::string text = "(DESCRIPTION=" + bare_body + ")";
  for (const KZCITnsTokenType type :
       {TNS_EQUAL_SIGN, TNS_LEFT_PARENTHESES, TNS_KEY, TNS_ERROR_TYPE, TNS_MAX_TOKEN_TYPE}) {
    SCOPED_TRACE(type);
    begin();
    change_token_after_blanks(type);
    EXPECT_EQ(build(tns_, text), (Outcome{-1, 0}));
    EXPECT_EQ(joined(support::events()),
              joined(descriptor_up_to_its_end(text) + refill(TNS_MODE_DESCRIPTION) +
                     Lines{"DEBUG reach eof"} + service_failed(0) + release("KZCITnsBuildDes")));
    EXPECT_EQ(live(), bare_description_left);
    EXPECT_EQ(tns_.tns_service_count, 0u);
  }
  begin();
  change_token_after_blanks(TNS_RIGHT_PARENTHESES);
  EXPECT_EQ(build(tns_, text), (Outcome{0, 1}));
}

TEST_F(FailingCalleeOfABuild, AnyStatusButTheEndMeansTextAfterADescriptor) {
  // Blanks are looked for before the first token and after the last.
  constexpr std::size_t at_end = 2;
  const std::string text = "(DESCRIPTION=" + bare_body + ")";
  for (const sword status : {0, -1, -2, 42}) {
    SCOPED_TRACE(status);
    run_once(text, descriptor_up_to_its_end(text),
             fails("end", parse_blank, at_end, service_failed(-1) + release("KZCITnsBuildDes"),
                   bare_description_left),
             status);
  }
  const Lines left = Lines{service_block("DESCRIPTION", "KZCITnsBuildDes")} + bare_description_left;
  run_once(text, descriptor_up_to_its_end(text),
           {"end", parse_blank, at_end, built(1, 1), Result::built, left}, end_of_input);
}

// ----------------------------------------------------------------------
// A refill that fails before the end of the input
// ----------------------------------------------------------------------

const Lines no_blanks = {"ERROR fail to call KZCITnsCheckBuffer"};
const Lines no_key = {"ERROR fail to call kzci_tns_check buffer"};
const Lines no_token = {"WARN fail to call parse blank, status:STATUS"};
const Lines parse_fails = {"WARN fail to call KZCITnsParse, status:STATUS"};
const Lines token_fails = no_blanks + no_token + parse_fails;
const Lines no_key_token = no_key + Lines{"ERROR fail to call parse key, status:STATUS"};
const Lines key_fails = no_key_token + parse_fails;

struct RefillRow {
  std::string name;
  sword (*read)(KZCITnsParseParams *);
  std::string input;
  std::size_t call;
  Lines log;
  std::string unread;
};

sword parse_for_key(KZCITnsParseParams *params) { return KZCITnsParse(params, TNS_KEY); }
sword parse_for_equal_sign(KZCITnsParseParams *params) {
  return KZCITnsParse(params, TNS_EQUAL_SIGN);
}

const std::string long_blanks(1024, ' ');

std::vector<RefillRow> refill_rows() {
  const Lines read = refill(mode);
  return {
      {"blanks at once", KZCITnsParseBlank, " (", 1, no_blanks, " ("},
      {"blanks on the way", KZCITnsParseBlank, long_blanks + "(", 2, read + no_blanks, "("},
      {"comment on the way", KZCITnsParseBlank, "# (", 2, read + no_blanks, ""},
      {"key at once", KZCITnsParseKey, "K=", 1, no_key, "K="},
      {"key on the way", KZCITnsParseKey, "AB", 2, read + no_key, ""},
      {"long key on the way", KZCITnsParseKey, std::string(255, 'k'), 2, read + no_key, ""},
      {"quoted key on the way", KZCITnsParseKey, "\"AB", 2, read + no_key, ""},
      {"token at once", parse_for_equal_sign, "=", 1, no_blanks + no_token, "="},
      {"key token at once", parse_for_key, "K=", 1, no_blanks + no_token, "K="},
      {"key token on the way", parse_for_key, " AB", 2, read + no_key_token, ""},
      {"skip at once", KZCITnsServiceSkip, "(x)", 1, token_fails, "(x)"},
      {"skip after its parenthesis", KZCITnsServiceSkip, "(", 2, read + no_key, ""},
      {"skip on the way", KZCITnsServiceSkip, "(x(y)", 2, read + no_key, ""},
  };
}

TEST_F(FailingCallee, RefillFailsBeforeTheEnd) {
  for (const RefillRow &row : refill_rows())
    for (const sword status : statuses) {
      SCOPED_TRACE(row.name + " with " + std::to_string(status));
      begin();
      Body body(row.input);
      body.params.tns_key[0] = 'n';  // The name of an entry that may be skipped.
      body.params.tns_key_len = 1;
      fail_call(check_buffer, row.call, status);
      EXPECT_EQ(row.read(&body.params), status);
      EXPECT_EQ(joined(support::events()), joined(with_status(row.log, status)));
      EXPECT_EQ(body.unread(), row.unread);
      EXPECT_EQ(body.params.is_eof, 0);
      EXPECT_EQ(body.params.tns_key_len, 1u);
      EXPECT_TRUE(all_struck());
    }
}

// Once the end is known, the end is what is reported, whatever the refill says.
TEST_F(FailingCallee, RefillFailsAtTheEnd) {
  struct Row {
    sword (*read)(KZCITnsParseParams *);
    Lines log;
  };
  const Row rows[] = {
      {KZCITnsParseBlank, {"DEBUG reach eof"}},
      {KZCITnsParseKey, {"DEBUG reach eof"}},
      {parse_for_key, {"DEBUG reach eof", "WARN fail to call parse blank, status:100"}},
  };
  for (const Row &row : rows)
    for (const sword status : statuses) {
      SCOPED_TRACE(status);
      begin();
      Body body("");
      body.params.is_eof = 1;
      fail_call(check_buffer, 1, status);
      EXPECT_EQ(row.read(&body.params), 100);
      EXPECT_EQ(support::events(), row.log);
      EXPECT_TRUE(all_struck());
    }
}

// A refill that failed may succeed when it is asked for again.
TEST_F(FailingCallee, ReadingGoesOnAfterARefillThatFailed) {
  Body body("K=");
  fail_call(check_buffer, 1, -1);
  EXPECT_EQ(KZCITnsParse(&body.params, TNS_KEY), -1);
  EXPECT_EQ(KZCITnsParse(&body.params, TNS_KEY), 0);
  EXPECT_EQ(body.key(), "K");
}

// A comment that a refill cut off goes on in whatever the buffer then holds.
TEST_F(FailingCallee, CommentGoesOnAfterARefillThatFailed) {
  Body body("(# a comment");
  EXPECT_EQ(KZCITnsParse(&body.params, TNS_LEFT_PARENTHESES), 0);
  fail_call(check_buffer, 1, -1);
  EXPECT_EQ(KZCITnsParse(&body.params, TNS_RIGHT_PARENTHESES), -1);
  EXPECT_EQ(body.params.is_comment, 1);
  const std::string more = " that ( goes on\n)";
  more.copy(body.params.tns_buffer, more.size());
  body.params.buffer_pos = 0;
  body.params.buffer_len = static_cast<ub4>(more.size());
  EXPECT_EQ(KZCITnsParse(&body.params, TNS_RIGHT_PARENTHESES), 0);
  EXPECT_EQ(body.params.is_comment, 0);
  EXPECT_EQ(body.unread(), "");
}

// A file whose first buffer ends before the second part.
std::string parted_file(const std::string &first, const std::string &second) {
  return std::string(1024 - first.size(), ' ') + first + second;
}

class FailingRefillOfABuild : public FailingCalleeOfABuild {
 protected:
  // Looks up "mydb" while the second refill fails.
  void run_parted(const std::string &first, const std::string &second, const Lines &log,
                  Result result, const Lines &left) {
    names_file(parted_file(first, second));
    run("mydb", lookup_begins() + refill(TNS_MODE_FILE),
        {{"after " + first, check_buffer, 2, log, result, left}});
  }
};

TEST_F(FailingRefillOfABuild, BeforeAnythingIsRead) {
  names_file("mydb=(DESCRIPTION=(ADDRESS=(HOST=a)))");
  run("mydb", lookup_begins(), {passes_on("at once", check_buffer, 1, token_fails, {})});
}

TEST_F(FailingRefillOfABuild, BetweenAndInsideOtherEntries) {
  const Lines skips = key("other") + other_name("mydb", "othe");
  const Lines skip_fails = {"ERROR fail to call KZCITnsServiceSkip, status:STATUS"};
  const Result passed_on = Result::passed_on;
  run_parted("", "mydb=(x)", token_fails, passed_on, {});
  run_parted("oth", "er=(x)", key_fails, passed_on, {});
  run_parted("other ", "=(x)", key("other") + token_fails, passed_on, {});
  run_parted("other=", "(x)", skips + token_fails + skip_fails, passed_on, {});
  run_parted("other=(", "x)", skips + no_key + skip_fails, passed_on, {});
  run_parted("other=(x(y)", ")", skips + no_key + skip_fails, passed_on, {});
  run_parted("other=(x)", "mydb=(x)", skips + token_fails, passed_on, {});
}

// In the entry that is built, the last token consumed decides.
TEST_F(FailingRefillOfABuild, InsideTheEntry) {
  const Lines fails = {"ERROR something error in build tns service, status:STATUS"};
  const std::string service = service_block("mydb", "KZCITnsServiceBuild");
  const Lines entry = key("mydb") + name_found("mydb") + allocated(service);
  const Lines address = entry + description_word() + new_description() + new_implied_list() +
                        address_call() + allocated(address_block);
  const Lines address_lost = Lines{"ERROR something error in build address, status:STATUS"} +
                             release("address") + release("address_list") +
                             Lines{"ERROR fail to call KZCIAddressBuild"} + description_lost() +
                             entry_lost();
  const Result failed = Result::failed;
  run_parted("mydb=", "(x)", entry + token_fails + fails + entry_lost(), failed, {});
  run_parted("mydb=(", "DESCRIPTION=)", entry + token_fails + fails + entry_lost(), failed, {});
  run_parted("mydb=(DESC", "RIPTION=)", entry + key_fails + fails + entry_lost(), failed, {});
  run_parted("mydb=(DESCRIPTION=(ADDRESS=", "(HOST=a)))", address + token_fails + address_lost,
             failed, {});
  run_parted("mydb=(DESCRIPTION=(ADDRESS=(HOST=", "a)))",
             address + host_word() + token_fails + no_text() + address_lost, failed, {});
  run_parted("mydb=(DESCRIPTION=(ADDRESS=(HOST=a", "b)))",
             address + host_word() + key_fails + no_text() + address_lost, failed, {});
  run_parted("mydb=(DESCRIPTION=(ADDRESS=(HOST=a ", ")))",
             address + host("a") + token_fails + address_lost, failed, {});
  // After a complete item, the address is content, and the blocks around it find
  // their own ends.
  run_parted("mydb=(DESCRIPTION=(ADDRESS=(HOST=a)", "))",
             address + host("a") + token_fails + refill(TNS_MODE_FILE) + description_ends(1) +
                 input_end(TNS_MODE_FILE) + built(1, 1),
             Result::built, {service, description_block, list_block, address_block});
}

// ----------------------------------------------------------------------
// Releasing a tree
// ----------------------------------------------------------------------

// A service of the literals below, with its name.
const std::string built_service = service_block("DESCRIPTION", "KZCITnsBuildDes");

Lines clear_call(const std::string &function, const std::string &argument) {
  return {"DEBUG call " + function + " with params [" + argument + ":PTR]"};
}

const Lines clear_container = clear_call("KZCITnsClear", "tns");
const Lines clear_service = clear_call("KZCITnsServiceClear", "tns_service");
const Lines clear_description = clear_call("KZCIDescriptionClear", "des");
const Lines clear_list = clear_call("KZCIAddressListClear", "address_list");
const Lines clear_address = clear_call("KZCIAddressClear", "address");
const Lines clear_data = clear_call("KZCIConnectDataClear", "con_data");

Lines clear_fails(const std::string &function) {
  return {"ERROR fail to call " + function + ", status:STATUS"};
}

const Lines services_fail =
    clear_fails("KZCIDescriptionClear") + clear_fails("KZCITnsServiceClear");
const Lines lists_fail =
    clear_fails("KZCIAddressClear") + clear_fails("KZCIAddressListClear") + services_fail;

const Lines whole_list_released = clear_list + clear_address + release("address") + clear_address +
                                  release("address") + release("address_list");
const Lines whole_service_released = clear_service + clear_description + whole_list_released +
                                     clear_data + release("KZCIConnectData") +
                                     release("KZCIDescription") + release("KZCITnsBuildDes");

const Lines whole_service_left = {built_service, description_block, list_block,
                                  address_block, address_block,     data_block};

struct ClearRow {
  std::string name;
  Callee callee;
  std::size_t call;
  Lines log;
  Lines left;
  bool again;  // Whether the way to all that is left is still there.
};

std::vector<ClearRow> clear_rows() {
  const Lines first = clear_container + clear_service;
  const Lines second = clear_container + whole_service_released + clear_service;
  const Lines variables_fail = Lines{"ERROR fail to call KZCISystemVariablesClear, ret:STATUS"} +
                               clear_fails("KZCITnsServiceClear");
  const Lines data_fails =
      clear_description + whole_list_released + clear_fails("KZCIConnectDataClear") + services_fail;
  const Lines data_left = {built_service, description_block, data_block};
  const Lines &whole = whole_service_left;
  return {
      {"first address", address_clear, 1, first + clear_description + clear_list + lists_fail,
       whole + whole, true},
      // The first address is gone; its list points at it still.
      {"last address of a list", address_clear, 2,
       first + clear_description + clear_list + clear_address + release("address") + lists_fail,
       Lines{built_service, description_block, list_block, address_block, data_block} + whole,
       false},
      {"address of the second service", address_clear, 3,
       second + clear_description + clear_list + lists_fail, whole, false},
      // The lists go first; the connect data stay, and where they are can be told.
      {"connect data", connect_data_clear, 1, first + data_fails, data_left + whole, true},
      {"connect data of the second service", connect_data_clear, 2, second + data_fails, data_left,
       false},
      // The system variables go before the descriptions.
      {"system variables", variables_clear, 1, first + variables_fail, whole + whole, true},
      {"system variables of the second service", variables_clear, 2, second + variables_fail, whole,
       false},
  };
}

TEST_F(FailingCallee, ReleaseStopsAtARecord) {
  const std::string text =
      "(DESCRIPTION=(ADDRESS_LIST=(ADDRESS=(HOST=a))(ADDRESS=(HOST=b)))"
      "(CONNECT_DATA=(SID=s)))";
  for (const ClearRow &row : clear_rows())
    for (const sword status : statuses) {
      SCOPED_TRACE(row.name + " with " + std::to_string(status));
      begin();
      for (int i = 0; i < 2; ++i) ASSERT_EQ(build(tns_, text), (Outcome{0, 1}));
      const std::size_t events_before = support::events().size();
      KZCITnsService *const first = tns_.tns_service;
      fail_call(row.callee, row.call, status);
      EXPECT_EQ(KZCITnsClear(&tns_), status);
      EXPECT_TRUE(all_struck());
      EXPECT_EQ(joined(since(events_before)), joined(with_status(row.log, status)));
      EXPECT_EQ(live(), row.left);
      EXPECT_EQ(tns_.tns_service, first);
      EXPECT_EQ(tns_.tns_service_count, 2u);
      EXPECT_EQ(support::bad_releases(), 0u);
      if (row.callee == connect_data_clear && row.call == 1) {
        const KZCIDescription &des = *first->description;
        EXPECT_EQ(des.address_list, nullptr);
        EXPECT_EQ(des.address_list_count, 0u);
        EXPECT_NE(des.connect_data, nullptr);
      }
      if (!row.again) continue;
      EXPECT_EQ(KZCITnsClear(&tns_), 0);
      EXPECT_EQ(live(), Lines{});
      EXPECT_EQ(tns_.tns_service, nullptr);
      EXPECT_EQ(tns_.tns_service_count, 0u);
    }
}

// ----------------------------------------------------------------------
// Printing a tree
// ----------------------------------------------------------------------

struct DisplayRow {
  std::string name;
  Lines identifiers;  // What is built.
  Callee callee;
  std::size_t call;
  std::string text;
  Lines log;
};

const Lines container_fails = {"ERROR fail to call KZCITnsServiceDisplay, status:STATUS"};
const Lines description_fails =
    Lines{"ERROR fail to call KZCIDescriptionDisplay, status:STATUS"} + container_fails;
// The first line names the Clear.
const Lines address_fails = Lines{"ERROR fail to call KZCIAddressClear, status:STATUS",
                                  "ERROR fail to call KZCIAddressListDisplay, status:STATUS"} +
                            description_fails;

std::vector<DisplayRow> display_rows() {
  using namespace expected_dump;
  const std::string two =
      "(DESCRIPTION=(ADDRESS_LIST=(ADDRESS=(HOST=a))(ADDRESS=(HOST=a)))"
      "(CONNECT_DATA=(SID=s)))";
  const std::string two_lists =
      "(DESCRIPTION=(ADDRESS_LIST=(ADDRESS=(HOST=a)))"
      "(ADDRESS_LIST=(ADDRESS=(HOST=b)))(CONNECT_DATA=(SID=s)))";
  const std::string one = "(DESCRIPTION=(ADDRESS=(HOST=a)))";
  const std::string first = service("DESCRIPTION") + description();
  const std::string list = container() + first + address_list(2);
  const std::string data = list + address("a") + address("a");
  return {
      {"first address", {two}, address_display, 1, list, address_fails},
      {"second address", {two}, address_display, 2, list + address("a"), address_fails},
      {"connect data",
       {two},
       connect_data_display,
       1,
       data,
       Lines{"ERROR fail to call KZCIConnectDataDisplay, status:STATUS"} + description_fails},
      {"system variables",
       {two},
       variables_display,
       1,
       data + connect_data("s"),
       Lines{"ERROR fail to call KZCISystemVariablesDisplay, status:STATUS"} + container_fails},
      // The reserved entry is its variables, and its failure is worded otherwise.
      {"reserved entry",
       {"KZCISYSTEMVARIABLES"},
       variables_display,
       1,
       container(),
       Lines{"ERROR fail to call KZCISystemVariablesDisplay, ret:STATUS"} + container_fails},
      {"first of two services",
       {one, one},
       address_display,
       1,
       container(2) + first + address_list(1),
       address_fails},
      {"first of two lists",
       {two_lists},
       address_display,
       1,
       container() + service("DESCRIPTION") + description(2) + address_list(1),
       address_fails},
  };
}

// What is written stays, the status goes up, every level adds its line, and nothing more is
// printed.
TEST_F(FailingCallee, DisplayStopsAtARecord) {
  names_file("KZCISYSTEMVARIABLES = (LOG_COUNT = 3)");
  for (const DisplayRow &row : display_rows())
    for (const sword status : statuses) {
      SCOPED_TRACE(row.name + " with " + std::to_string(status));
      begin();
      for (const std::string &identifier : row.identifiers)
        ASSERT_EQ(build(tns_, identifier), (Outcome{0, 1}));
      const std::size_t events_before = support::events().size();
      fail_call(row.callee, row.call, status);
      sword displayed = 0;
      EXPECT_EQ(support::display_text(tns_, &displayed), row.text);
      EXPECT_EQ(displayed, status);
      EXPECT_EQ(calls_of(row.callee), row.call);
      if (row.callee != connect_data_display && row.callee != variables_display) {
        EXPECT_EQ(calls_of(connect_data_display), 0u);
      }
      if (row.callee != variables_display) {
        EXPECT_EQ(calls_of(variables_display), 0u);
      }
      EXPECT_EQ(joined(since(events_before)),
                joined(Lines{"DEBUG tns display in stdout"} + with_status(row.log, status)));
      EXPECT_EQ(KZCITnsClear(&tns_), 0);
    }
}

// The file is closed after the failure.
TEST_F(FailingCallee, DisplayIntoAFile) {
  environment_.set("KZCI_TNS_DISPLAY", folder_.write("display", "as it was\n"));
  ASSERT_EQ(build(tns_, "(DESCRIPTION=(ADDRESS=(HOST=a)))"), (Outcome{0, 1}));
  const auto open_before = open_files();
  for (const sword status : statuses) {
    fail_call(address_display, 1, status);
    EXPECT_EQ(KZCITnsDisplay(&tns_), status);
    EXPECT_EQ(open_files(), open_before);
    EXPECT_TRUE(all_struck());
  }
}

// ----------------------------------------------------------------------
// The link string
// ----------------------------------------------------------------------

TEST_F(FailingCallee, LinkStringCannotBeFormatted) {
  for (const std::string sid : {"0", "1"})
    for (const int result : {0, -1}) {
      SCOPED_TRACE("USE_DEFAULT_SID " + sid + ", result " + std::to_string(result));
      begin();
      ASSERT_EQ(build(tns_,
                      "(DESCRIPTION=(ADDRESS=(HOST=a)(PORT=1))(CONNECT_DATA=(SID=s)"
                      "(USE_DEFAULT_SID=" +
                          sid + ")))"),
                (Outcome{0, 1}));
      const std::size_t events_before = support::events().size();
      char dblink[256] = "as it was";
      sb4 length = 7;
      fail_call(format_text, 1, result);
      const sword status = KZCITnsServiceDblinkGet(tns_.tns_service, dblink, &length);
      EXPECT_TRUE(all_struck());
      EXPECT_EQ(status, -1);
      EXPECT_EQ(length, 7);
      EXPECT_STREQ(dblink, "as it was");
      EXPECT_EQ(since(events_before),
                Lines{"ERROR fail to get dblink, dblink_len:" + std::to_string(result)});
      // The same call succeeds as soon as the formatter does.
      EXPECT_EQ(KZCITnsServiceDblinkGet(tns_.tns_service, dblink, &length), 0);
      EXPECT_STREQ(dblink, sid == "1" ? "a:1" : "a:1/s");
    }
}

// ----------------------------------------------------------------------
// The slow-SQL buffer
// ----------------------------------------------------------------------

const std::string lost_before = "ERROR KZCISlowSQLBufferFlush write to log fail.";
const std::string lost_after = "ERROR KZCISlowSQLBufferFlush write to log fail!";
const std::string batch = "SLOWSQL SLOWSQL:0123456789";

// A report that comes to a buffer of 16 characters while a flush fails.
struct FlushRow {
  std::string name;
  std::string held;
  sb4 pos;  // What the buffer says of its fill.
  std::string report;
  std::size_t call;
  std::size_t calls;
  Lines log;
  std::string text;  // What the buffer then holds.
  sb4 then_pos;
};

TEST_F(FailingCallee, FlushFailsAroundAReport) {
  const std::string held = "0123456789";
  const std::string filling = "abcdefghijklmno";
  const FlushRow rows[] = {
      // Nothing is written, and what was there stays.
      {"before it", held, 10, "abcde", 1, 1, {lost_before}, held, 10},
      // A report that fills the buffer is there, and stays there.
      {"after it", "", 0, "0123456789abcdefgh", 2, 2, {lost_after}, "0123456789abcde", 18},
      // A buffer that is full already is tried twice. The second attempt may help the
      // text, not the report.
      {"before it, the buffer full", held, 15, "abcde", 1, 2, {lost_before, batch}, "", 0},
      // A flush that succeeds before the report does not hide the one that fails.
      {"after it and a batch", held, 10, filling, 2, 2, {batch, lost_after}, filling, 15},
  };
  for (const FlushRow &row : rows)
    for (const sword status : statuses) {
      SCOPED_TRACE(row.name + " with " + std::to_string(status));
      begin();
      KZCISLowSQL slowsql = {};
      ASSERT_EQ(KZCISlowSQLBufferInit(&slowsql, 16), 0);
      ASSERT_EQ(KZCISlowSQLWrite(&slowsql, "%s", row.held.c_str()), 0);
      slowsql.buffer_pos = row.pos;
      const std::size_t events_before = support::events().size();
      fail_call(slow_sql_flush, row.call, status);
      EXPECT_EQ(KZCISlowSQLWrite(&slowsql, "%s", row.report.c_str()), -1);
      EXPECT_EQ(calls_of(slow_sql_flush), row.calls);
      EXPECT_EQ(since(events_before), row.log);
      EXPECT_EQ(slowsql.buffer, row.text);
      EXPECT_EQ(slowsql.buffer_pos, row.then_pos);
      if (row.text != held) continue;
      // The next report finds what stayed.
      EXPECT_EQ(KZCISlowSQLWrite(&slowsql, "%s", "abcde"), 0);
      EXPECT_EQ(since(events_before), (Lines{lost_before, batch}));
      EXPECT_STREQ(slowsql.buffer, "abcde");
    }
}

}  // namespace
