// Releases, dumps, link strings and slow-SQL batches in which the function at the
// end of the way fails: status, log, and what stays.
#include <gtest/gtest.h>

#include <cstddef>
#include <string>

#include "kzoci/oci_tnsname.h"
#include "support/builder_body.h"
#include "support/expected_log.h"
#include "support/failing_callee.h"
#include "support/parsing.h"

namespace {

using namespace builder_body;
using namespace expected_log;
using namespace failing_callee;
using support::build;
using support::Outcome;

// A service of the literals below, with its name.
const std::string built_service = block(sizeof(KZCITnsService) + 11, "KZCITnsBuildDes");

// ----------------------------------------------------------------------
// Releasing a tree
// ----------------------------------------------------------------------

class FailingClear : public FailingCallee {
 protected:
  void build_two_services() {
    begin();
    const std::string text =
        "(DESCRIPTION=(ADDRESS_LIST=(ADDRESS=(HOST=a))(ADDRESS=(HOST=b)))"
        "(CONNECT_DATA=(SID=s)))";
    ASSERT_EQ(build(tns_, text), (Outcome{0, 1}));
    ASSERT_EQ(build(tns_, text), (Outcome{0, 1}));
    events_before_ = support::events().size();
  }

  // Clears while the n-th call of a callee fails.
  void clear_failing(Callee callee, std::size_t n, const Lines &log, const Lines &left) {
    for (const sword status : statuses) {
      SCOPED_TRACE(status);
      build_two_services();
      KZCITnsService *const first = tns_.tns_service;
      fail_call(callee, n, status);
      EXPECT_EQ(KZCITnsClear(&tns_), status);
      EXPECT_TRUE(all_struck());
      EXPECT_EQ(joined(since(events_before_)), joined(with_status(log, status)));
      EXPECT_EQ(live(), left);
      EXPECT_EQ(tns_.tns_service, first);
      EXPECT_EQ(tns_.tns_service_count, 2u);
      EXPECT_EQ(support::bad_releases(), 0u);
    }
  }

  // What was not released is released by the next attempt.
  void clear_again() {
    EXPECT_EQ(KZCITnsClear(&tns_), 0);
    EXPECT_EQ(live(), Lines{});
    EXPECT_EQ(tns_.tns_service, nullptr);
    EXPECT_EQ(tns_.tns_service_count, 0u);
  }

  std::size_t events_before_ = 0;
};

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

TEST_F(FailingClear, FirstAddress) {
  clear_failing(address_clear, 1,
                clear_container + clear_service + clear_description + clear_list + lists_fail,
                whole_service_left + whole_service_left);
  clear_again();
}

// The first address is gone; its list points at it still.
TEST_F(FailingClear, LastAddressOfAList) {
  clear_failing(address_clear, 2,
                clear_container + clear_service + clear_description + clear_list + clear_address +
                    release("address") + lists_fail,
                Lines{built_service, description_block, list_block, address_block, data_block} +
                    whole_service_left);
}

TEST_F(FailingClear, AddressOfTheSecondService) {
  clear_failing(address_clear, 3,
                clear_container + whole_service_released + clear_service + clear_description +
                    clear_list + lists_fail,
                whole_service_left);
}

// The lists go first; the connect data stay, and where they are can be told.
TEST_F(FailingClear, ConnectData) {
  clear_failing(connect_data_clear, 1,
                clear_container + clear_service + clear_description + whole_list_released +
                    clear_fails("KZCIConnectDataClear") + services_fail,
                Lines{built_service, description_block, data_block} + whole_service_left);
  const KZCIDescription &des = *tns_.tns_service->description;
  EXPECT_EQ(des.address_list, nullptr);
  EXPECT_EQ(des.address_list_count, 0u);
  EXPECT_NE(des.connect_data, nullptr);
  clear_again();
}

TEST_F(FailingClear, ConnectDataOfTheSecondService) {
  clear_failing(connect_data_clear, 2,
                clear_container + whole_service_released + clear_service + clear_description +
                    whole_list_released + clear_fails("KZCIConnectDataClear") + services_fail,
                {built_service, description_block, data_block});
}

// The system variables go before the descriptions.
TEST_F(FailingClear, SystemVariables) {
  const Lines fails = Lines{"ERROR fail to call KZCISystemVariablesClear, ret:STATUS"} +
                      clear_fails("KZCITnsServiceClear");
  clear_failing(variables_clear, 1, clear_container + clear_service + fails,
                whole_service_left + whole_service_left);
  clear_again();
  clear_failing(variables_clear, 2,
                clear_container + whole_service_released + clear_service + fails,
                whole_service_left);
}

// ----------------------------------------------------------------------
// Printing a tree
// ----------------------------------------------------------------------

const std::string list_text =
    "------AddressList:\n"
    "--------address_count:2\n"
    "--------kzlb_strategy:1001\n";
const std::string address_text =
    "--------Address:\n"
    "----------host:a\n"
    "----------port:\n"
    "----------weight:1\n";
const std::string description_text =
    "----Discription:\n"
    "------kzlb:0\n"
    "------kzlb_group_strategy:0\n"
    "------retry_all_downs:120\n"
    "------retry_timeout:10000\n"
    "------connect_timeout:0\n"
    "------read_timeout:0\n"
    "------write_timeout:0\n"
    "------append_strategy:3002\n"
    "------remove_strategy:2001\n"
    "------remove_timeout:50\n"
    "------duration:10\n"
    "------retry_times:1\n"
    "------address_list_count:1\n";
const std::string data_text =
    "--------ConnectData:\n"
    "----------dbname:s\n";
const std::string service_text =
    "--TnsService:DESCRIPTION\n"
    "----description_count:1\n";
const std::string container_text =
    "Tns:\n"
    "--tns_serivce_count:1\n";

struct DisplayRow {
  std::string name;
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

// What is written stays, the status goes up, every level adds its line.
TEST_F(FailingCallee, DisplayOfALeaf) {
  const std::string list = container_text + service_text + description_text + list_text;
  const std::string data = list + address_text + address_text;
  const DisplayRow rows[] = {
      {"first address", address_display, 1, list, address_fails},
      {"second address", address_display, 2, list + address_text, address_fails},
      {"connect data", connect_data_display, 1, data,
       Lines{"ERROR fail to call KZCIConnectDataDisplay, status:STATUS"} + description_fails},
      {"system variables", variables_display, 1, data + data_text,
       Lines{"ERROR fail to call KZCISystemVariablesDisplay, status:STATUS"} + container_fails},
  };
  const std::string text =
      "(DESCRIPTION=(ADDRESS_LIST=(ADDRESS=(HOST=a))(ADDRESS=(HOST=a)))(CONNECT_DATA=(SID=s)))";
  for (const DisplayRow &row : rows)
    for (const sword status : statuses) {
      SCOPED_TRACE(row.name + " with " + std::to_string(status));
      begin();
      ASSERT_EQ(build(tns_, text), (Outcome{0, 1}));
      const std::size_t events_before = support::events().size();
      fail_call(row.callee, row.call, status);
      sword displayed = 0;
      EXPECT_EQ(support::display_text(tns_, &displayed), row.text);
      EXPECT_EQ(displayed, status);
      EXPECT_TRUE(all_struck());
      EXPECT_EQ(joined(since(events_before)),
                joined(Lines{"DEBUG tns display in stdout"} + with_status(row.log, status)));
      EXPECT_EQ(KZCITnsClear(&tns_), 0);
    }
}

// The reserved entry is its variables, and its failure is worded otherwise.
TEST_F(FailingCallee, DisplayOfTheReservedEntry) {
  names_file("KZCISYSTEMVARIABLES = (LOG_COUNT = 3)");
  for (const sword status : statuses) {
    SCOPED_TRACE(status);
    begin();
    ASSERT_EQ(build(tns_, "KZCISYSTEMVARIABLES"), (Outcome{0, 1}));
    const std::size_t events_before = support::events().size();
    fail_call(variables_display, 1, status);
    sword displayed = 0;
    EXPECT_EQ(support::display_text(tns_, &displayed), container_text);
    EXPECT_EQ(displayed, status);
    EXPECT_EQ(since(events_before),
              Lines{"DEBUG tns display in stdout"} +
                  with_status(Lines{"ERROR fail to call KZCISystemVariablesDisplay, ret:STATUS"} +
                                  container_fails,
                              status));
    EXPECT_TRUE(all_struck());
  }
}

// The second service is never reached.
TEST_F(FailingCallee, DisplayStopsAtTheFirstServiceThatFails) {
  const std::string text = "(DESCRIPTION=(ADDRESS=(HOST=a)))";
  ASSERT_EQ(build(tns_, text), (Outcome{0, 1}));
  ASSERT_EQ(build(tns_, text), (Outcome{0, 1}));
  fail_call(address_display, 1, 42);
  sword displayed = 0;
  support::display_text(tns_, &displayed);
  EXPECT_EQ(displayed, 42);
  EXPECT_EQ(calls_of(address_display), 1u);
  EXPECT_EQ(calls_of(variables_display), 0u);
}

TEST_F(FailingCallee, DisplayStopsAtTheFirstListThatFails) {
  ASSERT_EQ(build(tns_,
                  "(DESCRIPTION=(ADDRESS_LIST=(ADDRESS=(HOST=a)))"
                  "(ADDRESS_LIST=(ADDRESS=(HOST=b)))(CONNECT_DATA=(SID=s)))"),
            (Outcome{0, 1}));
  fail_call(address_display, 1, 42);
  sword displayed = 0;
  support::display_text(tns_, &displayed);
  EXPECT_EQ(displayed, 42);
  EXPECT_EQ(calls_of(address_display), 1u);
  EXPECT_EQ(calls_of(connect_data_display), 0u);
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

class FailingFlush : public FailingCallee {
 protected:
  void SetUp() override {
    FailingCallee::SetUp();
    slowsql_ = {};
  }

  // A buffer of 16 characters with this text.
  void begin_with(const char *text) {
    begin();
    ASSERT_EQ(KZCISlowSQLBufferInit(&slowsql_, 16), 0);
    ASSERT_EQ(KZCISlowSQLWrite(&slowsql_, "%s", text), 0);
    events_before_ = support::events().size();
  }

  Lines happened() const { return since(events_before_); }

  KZCISLowSQL slowsql_;
  std::size_t events_before_ = 0;
};

const std::string lost_before = "ERROR KZCISlowSQLBufferFlush write to log fail.";
const std::string lost_after = "ERROR KZCISlowSQLBufferFlush write to log fail!";

// Nothing is written, what was there stays, and the next report finds it.
TEST_F(FailingFlush, BeforeAReport) {
  for (const sword status : statuses) {
    SCOPED_TRACE(status);
    begin_with("0123456789");
    fail_call(slow_sql_flush, 1, status);
    EXPECT_EQ(KZCISlowSQLWrite(&slowsql_, "%s", "abcde"), -1);
    EXPECT_TRUE(all_struck());
    EXPECT_EQ(calls_of(slow_sql_flush), 1u);
    EXPECT_EQ(happened(), Lines{lost_before});
    EXPECT_STREQ(slowsql_.buffer, "0123456789");
    EXPECT_EQ(slowsql_.buffer_pos, 10);
    EXPECT_EQ(KZCISlowSQLWrite(&slowsql_, "%s", "abcde"), 0);
    EXPECT_EQ(happened(), (Lines{lost_before, "SLOWSQL SLOWSQL:0123456789"}));
    EXPECT_STREQ(slowsql_.buffer, "abcde");
  }
}

// A report that fills the buffer is there, and stays there.
TEST_F(FailingFlush, AfterAReport) {
  for (const sword status : statuses) {
    SCOPED_TRACE(status);
    begin_with("");
    fail_call(slow_sql_flush, 2, status);
    EXPECT_EQ(KZCISlowSQLWrite(&slowsql_, "%s", "0123456789abcdefgh"), -1);
    EXPECT_TRUE(all_struck());
    EXPECT_EQ(calls_of(slow_sql_flush), 2u);
    EXPECT_EQ(happened(), Lines{lost_after});
    EXPECT_STREQ(slowsql_.buffer, "0123456789abcde");
    EXPECT_EQ(slowsql_.buffer_pos, 18);
  }
}

// A buffer that is full already is tried twice. The second attempt may help the
// text, not the report.
TEST_F(FailingFlush, BeforeAReportIntoAFullBuffer) {
  for (const sword status : statuses) {
    SCOPED_TRACE(status);
    begin_with("0123456789");
    slowsql_.buffer_pos = 15;
    fail_call(slow_sql_flush, 1, status);
    EXPECT_EQ(KZCISlowSQLWrite(&slowsql_, "%s", "abcde"), -1);
    EXPECT_TRUE(all_struck());
    EXPECT_EQ(calls_of(slow_sql_flush), 2u);
    EXPECT_EQ(happened(), (Lines{lost_before, "SLOWSQL SLOWSQL:0123456789"}));
    EXPECT_EQ(slowsql_.buffer_pos, 0);
    EXPECT_STREQ(slowsql_.buffer, "");
  }
}

// A flush that succeeds before the report does not hide the one that fails.
TEST_F(FailingFlush, AfterAReportThatFollowsABatch) {
  begin_with("0123456789");
  fail_call(slow_sql_flush, 2, -2);
  EXPECT_EQ(KZCISlowSQLWrite(&slowsql_, "%s", "abcdefghijklmno"), -1);
  EXPECT_EQ(happened(), (Lines{"SLOWSQL SLOWSQL:0123456789", lost_after}));
  EXPECT_STREQ(slowsql_.buffer, "abcdefghijklmno");
  EXPECT_EQ(slowsql_.buffer_pos, 15);
}

}  // namespace
