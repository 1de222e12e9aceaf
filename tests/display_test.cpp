// The dump of a tree: its lines, and where a failure stops it.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <memory>
#include <new>
#include <string>
#include <string_view>

#include "kzoci/oci_tnsname.h"
#include "support/expected_dump.h"
#include "support/parsing.h"

namespace {

using namespace std::string_view_literals;
using support::bytes;
using support::Lines;

// Chains entries into one ring, in this order.
void ring(std::initializer_list<list_entry_t *> entries) {
  list_entry_t *last = *(entries.end() - 1);
  for (list_entry_t *entry : entries) {
    last->next = entry;
    entry->prev = last;
    last = entry;
  }
}

template <std::size_t Size>
void put(char (&array)[Size], ub4 &length, std::string_view text) {
  std::memcpy(array, text.data(), text.size());
  length = static_cast<ub4>(text.size());
}

KZCIAddress address(std::string_view host, std::string_view port) {
  KZCIAddress made;
  KZCIAddressInit(&made);
  put(made.host, made.host_len, host);
  put(made.port, made.port_len, port);
  put(made.protocol, made.protocol_len, "tcp");
  return made;
}

KZCIConnectData connect_data(std::string_view service_name) {
  KZCIConnectData made;
  KZCIConnectDataInit(&made);
  put(made.service_name, made.service_name_len, service_name);
  return made;
}

// A service with its name after it, in a block of exactly that size.
class NamedService {
 public:
  explicit NamedService(std::string_view name)
      : block_(std::malloc(sizeof(KZCITnsService) + name.size())) {
    KZCITnsServiceInit(get(), static_cast<ub4>(name.size()), name.data());
  }
  ~NamedService() { std::free(block_); }
  NamedService(const NamedService &) = delete;
  NamedService &operator=(const NamedService &) = delete;

  KZCITnsService *get() const { return static_cast<KZCITnsService *>(block_); }
  KZCITnsService *operator->() const { return get(); }

 private:
  void *block_;
};

// A service with one description, one address list of two addresses, and
// connect data.
struct SmallTree {
  explicit SmallTree(std::string_view name = "mydb") : service(name) {
    KZCIAddressListInit(&list);
    ring({&first.le, &second.le});
    list.address = &first;
    list.address_count = 2;
    KZCIDescriptionInit(&description);
    description.address_list = &list;
    description.address_list_count = 1;
    description.connect_data = &data;
    service->description = &description;
    service->description_count = 1;
    tns = {service.get(), 1};
  }

  KZCIAddress first = address("10.0.0.1", "2881");
  KZCIAddress second = address("10.0.0.2", "2881");
  KZCIAddressList list;
  KZCIConnectData data = connect_data("orcl");
  KZCIDescription description;
  NamedService service;
  KZCITns tns;
};

const std::string container_lines = expected_dump::container();
const std::string service_lines = expected_dump::service("mydb");
const std::string description_lines = expected_dump::description();
const std::string list_lines = expected_dump::address_list(2);
const std::string first_address_lines = expected_dump::address("10.0.0.1", "2881");
const std::string second_address_lines = expected_dump::address("10.0.0.2", "2881");
const std::string connect_data_lines = expected_dump::connect_data("orcl");
const std::string variable_lines = expected_dump::variables();

std::string small_description() {
  return description_lines + list_lines + first_address_lines + second_address_lines +
         connect_data_lines;
}

std::string small_service() { return service_lines + small_description() + variable_lines; }

struct Dump {
  std::string text;
  sword status;
};

class Display : public testing::Test {
 protected:
  void SetUp() override { support::reset_platform(); }
  void TearDown() override {
    EXPECT_EQ(support::memory_events(), Lines{});
    EXPECT_EQ(support::bad_releases(), 0u);
  }

  static Dump dump(KZCITns &tns) {
    Dump result;
    result.text = support::display_text(tns, &result.status);
    return result;
  }

  // What a Display function of one record prints; its status must be this one.
  template <class Record>
  static std::string printed(sword (*display)(Record *, FILE *), Record *record, sword status = 0) {
    FILE *file = support::temporary_file();
    EXPECT_EQ(display(record, file), status);
    std::string text(static_cast<std::size_t>(std::ftell(file)), '\0');
    std::rewind(file);
    EXPECT_EQ(std::fread(text.data(), 1, text.size(), file), text.size());
    std::fclose(file);
    return text;
  }

  support::Environment environment_;
};

// ----------------------------------------------------------------------
// The whole tree
// ----------------------------------------------------------------------

TEST_F(Display, ASmallTreeToTheLetter) {
  SmallTree tree;
  const Dump result = dump(tree.tns);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.text, R"(Tns:
--tns_serivce_count:1
--TnsService:mydb
----description_count:1
----Discription:
------kzlb:0
------kzlb_group_strategy:0
------retry_all_downs:120
------retry_timeout:10000
------connect_timeout:0
------read_timeout:0
------write_timeout:0
------append_strategy:3002
------remove_strategy:2001
------remove_timeout:50
------duration:10
------retry_times:1
------address_list_count:1
------AddressList:
--------address_count:2
--------kzlb_strategy:1001
--------Address:
----------host:10.0.0.1
----------port:2881
----------weight:1
--------Address:
----------host:10.0.0.2
----------port:2881
----------weight:1
--------ConnectData:
----------dbname:orcl
--------SYSTEMVARIABLE:
----------SLOWSQL_THRESHOLD:100
----------SLOWSQL_BUFFER_SIZE:0
----------SLOWSQL_FLUSH_SECOND:60
----------SESSION_VARIABLE:
----------LOG_LEVEL:
----------LOG_SIZE:0
----------LOG_COUNT:0
----------LOG_PATH:
)");
  EXPECT_EQ(support::log_records(), Lines{"DEBUG tns display in stdout"});
}

TEST_F(Display, ATreeThatWasBuiltIsPrintedAlike) {
  KZCITns tns;
  KZCITnsInit(&tns);
  EXPECT_EQ(support::build(tns,
                           "(DESCRIPTION=(ADDRESS_LIST="
                           "(ADDRESS=(PROTOCOL=tcp)(HOST=10.0.0.1)(PORT=2881))"
                           "(ADDRESS=(PROTOCOL=tcp)(HOST=10.0.0.2)(PORT=2881)))"
                           "(CONNECT_DATA=(SERVICE_NAME=orcl)))"),
            (support::Outcome{0, 1}));
  const Dump result = dump(tns);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.text, container_lines + expected_dump::service("DESCRIPTION") +
                             small_description() + variable_lines);
  EXPECT_EQ(KZCITnsClear(&tns), 0);
  support::reset_platform();
}

TEST_F(Display, TheReservedServiceAloneIsItsVariables) {
  NamedService service("KZCISYSTEMVARIABLES");
  KZCITns tns = {service.get(), 1};
  const Dump result = dump(tns);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.text, container_lines + variable_lines);
  EXPECT_EQ(support::log_records(), Lines{"DEBUG tns display in stdout"});
}

TEST_F(Display, ServicesAreWrittenInTheirOrder) {
  SmallTree one, two;
  NamedService variables("kzci");
  variables->sys_vars.log_count = 9;
  ring({&one.service->le, &variables->le, &two.service->le});
  one.tns.tns_service_count = 3;
  two.first.host[7] = '9';
  std::string other = small_service();
  other.replace(other.find("10.0.0.1"), 8, "10.0.0.9");
  std::string counted = variable_lines;
  counted.replace(counted.find("LOG_COUNT:0"), 11, "LOG_COUNT:9");
  const Dump result = dump(one.tns);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.text, expected_dump::container(3) + small_service() + counted + other);
}

// The count says how far the ring is followed.
TEST_F(Display, TheCountsAreTaken) {
  SmallTree tree;
  SmallTree other("other");
  ring({&tree.service->le, &other.service->le});
  EXPECT_EQ(dump(tree.tns).text, container_lines + small_service());
  tree.list.address_count = 1;
  EXPECT_EQ(printed(KZCIAddressListDisplay, &tree.list),
            expected_dump::address_list(1) + first_address_lines);
  tree.list.address_count = 3;
  EXPECT_EQ(printed(KZCIAddressListDisplay, &tree.list),
            expected_dump::address_list(3) + first_address_lines + second_address_lines +
                first_address_lines);
}

TEST_F(Display, ANullOrEmptyContainerIsAnError) {
  SmallTree tree;
  KZCITns empty[] = {{nullptr, 0}, {nullptr, 1}, {tree.service.get(), 0}};
  for (const bool has_variable : {false, true}) {
    SCOPED_TRACE(has_variable);
    if (has_variable) environment_.set("KZCI_TNS_DISPLAY", "/no/such/file");
    for (KZCITns &tns : empty) {
      support::reset_platform();
      const Dump result = dump(tns);
      EXPECT_EQ(result.status, -1);
      EXPECT_EQ(result.text, "");
      EXPECT_EQ(support::log_records(), Lines{"ERROR error tns"});
    }
    support::reset_platform();
    EXPECT_EQ(KZCITnsDisplay(nullptr), -1);
    EXPECT_EQ(support::log_records(), Lines{"ERROR tns is NULL"});
  }
}

// ----------------------------------------------------------------------
// Failures
// ----------------------------------------------------------------------

TEST_F(Display, AServiceWithoutDescriptionsStopsTheDump) {
  SmallTree good, bad;
  ring({&good.service->le, &bad.service->le});
  good.tns.tns_service_count = 2;
  for (const bool has_pointer : {false, true}) {
    SCOPED_TRACE(has_pointer);
    support::reset_platform();
    bad.service->description = has_pointer ? &bad.description : nullptr;
    bad.service->description_count = has_pointer ? 0 : 1;
    const Dump result = dump(good.tns);
    EXPECT_EQ(result.status, -1);
    EXPECT_EQ(result.text, expected_dump::container(2) + small_service());
    EXPECT_EQ(support::log_records(),
              (Lines{"DEBUG tns display in stdout", "ERROR error tns_service",
                     "ERROR fail to call KZCITnsServiceDisplay, status:-1"}));
  }
}

TEST_F(Display, ADescriptionWithoutAddressListsStopsTheDump) {
  SmallTree tree, bad, unreached;
  ring({&tree.description.le, &bad.description.le, &unreached.description.le});
  tree.service->description_count = 3;
  for (const bool has_pointer : {false, true}) {
    SCOPED_TRACE(has_pointer);
    support::reset_platform();
    bad.description.address_list = has_pointer ? &bad.list : nullptr;
    bad.description.address_list_count = has_pointer ? 0 : 1;
    const Dump result = dump(tree.tns);
    EXPECT_EQ(result.status, -1);
    EXPECT_EQ(result.text, container_lines +
                               std::string("--TnsService:mydb\n----description_count:3\n") +
                               small_description());
    EXPECT_EQ(support::log_records(),
              (Lines{"DEBUG tns display in stdout", "ERROR error des",
                     "ERROR fail to call KZCIDescriptionDisplay, status:-1",
                     "ERROR fail to call KZCITnsServiceDisplay, status:-1"}));
  }
}

TEST_F(Display, AnAddressListWithoutAddressesIsNoFailure) {
  for (const bool has_pointer : {false, true}) {
    SCOPED_TRACE(has_pointer);
    support::reset_platform();
    SmallTree tree;
    if (has_pointer)
      tree.list.address_count = 0;
    else
      tree.list.address = nullptr;
    const Dump result = dump(tree.tns);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.text, container_lines + service_lines + description_lines +
                               connect_data_lines + variable_lines);
    EXPECT_EQ(support::log_records(),
              (Lines{"DEBUG tns display in stdout", "DEBUG address is NULL, do nothing"}));
  }
}

// Calls a Display function with each argument and both null; the stream must
// stay empty.
template <class Record>
void expect_null_arguments(sword (*display)(Record *, FILE *), Record *record, const Lines &lines) {
  support::reset_platform();
  FILE *file = support::temporary_file();
  EXPECT_EQ(display(nullptr, file), -2);
  EXPECT_EQ(support::log_records(), lines);
  EXPECT_EQ(std::ftell(file), 0);
  std::fclose(file);
  support::reset_platform();
  EXPECT_EQ(display(record, nullptr), -2);
  EXPECT_EQ(support::log_records(), lines);
  support::reset_platform();
  EXPECT_EQ(display(nullptr, nullptr), -2);
  EXPECT_EQ(support::log_records(), lines);
}

TEST_F(Display, NullArguments) {
  SmallTree tree;
  const Lines handle = {"ERROR invalid handle, handle is NULL"};
  expect_null_arguments(KZCITnsServiceDisplay, tree.service.get(), handle);
  expect_null_arguments(KZCIDescriptionDisplay, &tree.description, handle);
  expect_null_arguments(KZCIAddressListDisplay, &tree.list, {"DEBUG address_list is NULL"});
  expect_null_arguments(KZCIAddressDisplay, &tree.first, {});
  expect_null_arguments(KZCIConnectDataDisplay, &tree.data, {});
  expect_null_arguments(KZCISystemVariablesDisplay, &tree.service->sys_vars, {});
}

TEST_F(Display, SingleRecordsFailAlike) {
  SmallTree tree;
  tree.service->description_count = 0;
  EXPECT_EQ(printed(KZCITnsServiceDisplay, tree.service.get(), -1), "");
  tree.service->description_count = 1;
  tree.description.address_list = nullptr;
  EXPECT_EQ(printed(KZCIDescriptionDisplay, &tree.description, -1), "");
  EXPECT_EQ(printed(KZCITnsServiceDisplay, tree.service.get(), -1), service_lines);
  EXPECT_EQ(support::log_records(),
            (Lines{"ERROR error tns_service", "ERROR error des", "ERROR error des",
                   "ERROR fail to call KZCIDescriptionDisplay, status:-1"}));
  tree.list.address = nullptr;
  EXPECT_EQ(printed(KZCIAddressListDisplay, &tree.list), "");
  EXPECT_EQ(support::log_records().back(), "DEBUG address is NULL, do nothing");
}

// ----------------------------------------------------------------------
// Services
// ----------------------------------------------------------------------

TEST_F(Display, ALeadingPartOfTheReservedNameShowsVariablesOnly) {
  const std::string names[] = {
      "KZCISYSTEMVARIABLES",           "kzcisystemvariables", "KzciSystem", "kzci", "K", "",
      bytes("KZCISYSTEMVARIABLES\0"sv)};
  for (const std::string &name : names) {
    SCOPED_TRACE(name);
    SmallTree tree(name);
    EXPECT_EQ(printed(KZCITnsServiceDisplay, tree.service.get()), variable_lines);
    tree.service->description = nullptr;
    EXPECT_EQ(printed(KZCITnsServiceDisplay, tree.service.get()), variable_lines);
  }
  EXPECT_EQ(support::log_records(), Lines{});
}

TEST_F(Display, AnyOtherNameIsWrittenWithItsDescriptions) {
  for (const char *name : {"mydb", "KZCISYSTEMVARIABLES1", "xkzci", "KZ_", "zci"}) {
    SCOPED_TRACE(name);
    SmallTree tree(name);
    EXPECT_EQ(printed(KZCITnsServiceDisplay, tree.service.get()),
              expected_dump::service(name) + small_description() + variable_lines);
  }
}

TEST_F(Display, TextsEndAtTheirLengthOrAZeroByte) {
  SmallTree tree("my\0db"sv);
  EXPECT_EQ(printed(KZCITnsServiceDisplay, tree.service.get()).substr(0, 16), "--TnsService:my\n");
  put(tree.first.host, tree.first.host_len, "a\0b"sv);
  std::memcpy(tree.first.port, "123456", 7);
  tree.first.port_len = 2;
  EXPECT_EQ(printed(KZCIAddressDisplay, &tree.first),
            "--------Address:\n----------host:a\n----------port:12\n----------weight:1\n");
}

// ----------------------------------------------------------------------
// Single records
// ----------------------------------------------------------------------

TEST_F(Display, ADescriptionShowsEachOfItsValues) {
  SmallTree tree, other;
  KZCIDescription &description = tree.description;
  description.kzlb = 1;
  description.kzlb_group_strategy = LB_OPTION_ROTATION;
  description.retry_all_downs = -2;
  description.retry_timeout = 3;
  description.connect_timout = 4;
  description.read_timout = 5;
  description.write_timout = INT64_MAX;
  description.black_list_conf = {LB_OPTION_RANDOM, 6, LB_OPTION_RETRY_DERUATION, 7, INT64_MIN};
  ring({&tree.list.le, &other.list.le});
  description.address_list_count = 2;
  description.connect_data = nullptr;
  const std::string list = list_lines + first_address_lines + second_address_lines;
  EXPECT_EQ(printed(KZCIDescriptionDisplay, &description),
            "----Discription:\n"
            "------kzlb:1\n"
            "------kzlb_group_strategy:1003\n"
            "------retry_all_downs:-2\n"
            "------retry_timeout:3\n"
            "------connect_timeout:4\n"
            "------read_timeout:5\n"
            "------write_timeout:9223372036854775807\n"
            "------append_strategy:3001\n"
            "------remove_strategy:1001\n"
            "------remove_timeout:6\n"
            "------duration:-9223372036854775808\n"
            "------retry_times:7\n"
            "------address_list_count:2\n" +
                list + list);
  EXPECT_EQ(support::log_records(), Lines{});
}

// A field that a caller has filled with no strategy at all prints as a signed number.
TEST_F(Display, AStrategyPrintsAsASignedNumber) {
  SmallTree tree;
  const int none = -1;
  for (KZCILBOption *strategy :
       {&tree.description.kzlb_group_strategy, &tree.description.black_list_conf.remove_strategy,
        &tree.description.black_list_conf.append_strategy, &tree.list.kzlb_strategy})
    std::memcpy(strategy, &none, sizeof none);
  const std::string text = printed(KZCIDescriptionDisplay, &tree.description);
  for (const char *line : {"------kzlb_group_strategy:-1\n", "------append_strategy:-1\n",
                           "------remove_strategy:-1\n", "--------kzlb_strategy:-1\n"})
    EXPECT_NE(text.find(line), std::string::npos) << line << text;
}

TEST_F(Display, AnAddressListShowsItsStrategyAndNotItsSwitch) {
  SmallTree tree;
  tree.list.kzlb_strategy = LB_OPTION_SERVERAFFINITY;
  for (const boolean kzlb : {0, 1}) {
    tree.list.kzlb = kzlb;
    EXPECT_EQ(printed(KZCIAddressListDisplay, &tree.list),
              std::string("------AddressList:\n"
                          "--------address_count:2\n"
                          "--------kzlb_strategy:1002\n") +
                  first_address_lines + second_address_lines);
  }
}

TEST_F(Display, AnAddressShowsItsWeightAndNotItsProtocol) {
  KZCIAddress one = address("", "");
  one.weight = -5;
  EXPECT_EQ(printed(KZCIAddressDisplay, &one),
            "--------Address:\n----------host:\n----------port:\n----------weight:-5\n");
}

// The mode and the default-SID switch stand only beside extra information.
TEST_F(Display, ConnectDataShowWhatIsThere) {
  KZCIConnectData data = connect_data("sales");
  data.kz_mode = -1;
  data.use_default_sid = 2;
  const std::string name = "--------ConnectData:\n----------dbname:sales\n";
  const std::string variable = "----------session_variable:a=1\n";
  const std::string extra =
      "----------extra_info:report\n----------kzmode:-1\n----------use_default_sid:2\n";
  EXPECT_EQ(printed(KZCIConnectDataDisplay, &data), name);
  put(data.session_variable, data.session_variable_len, "a=1");
  EXPECT_EQ(printed(KZCIConnectDataDisplay, &data), name + variable);
  put(data.user_extra_info, data.user_extra_info_len, "report");
  EXPECT_EQ(printed(KZCIConnectDataDisplay, &data), name + extra + variable);
  data.session_variable_len = 0;
  EXPECT_EQ(printed(KZCIConnectDataDisplay, &data), name + extra);
  data.service_name_len = 0;
  EXPECT_EQ(printed(KZCIConnectDataDisplay, &data),
            "--------ConnectData:\n----------dbname:\n" + extra);
}

TEST_F(Display, SystemVariablesShowEachOfTheirValues) {
  KZCISystemVariables vars;
  KZCISystemVariablesInit(&vars);
  EXPECT_EQ(printed(KZCISystemVariablesDisplay, &vars), variable_lines);
  vars.slowsql_threshold = -1;
  vars.slowsql_buffer_size = INT64_MAX;
  vars.slowsql_flush_second = 4294967295u;
  put(vars.session_variable, vars.session_variable_len, "a=1");
  put(vars.log_level, vars.log_level_len, "INFO");
  vars.log_size = 1048576;
  vars.log_count = 4294967295u;
  put(vars.log_path, vars.log_path_len, "/var/log");
  EXPECT_EQ(printed(KZCISystemVariablesDisplay, &vars),
            "--------SYSTEMVARIABLE:\n"
            "----------SLOWSQL_THRESHOLD:-1\n"
            "----------SLOWSQL_BUFFER_SIZE:9223372036854775807\n"
            "----------SLOWSQL_FLUSH_SECOND:4294967295\n"
            "----------SESSION_VARIABLE:a=1\n"
            "----------LOG_LEVEL:INFO\n"
            "----------LOG_SIZE:1048576\n"
            "----------LOG_COUNT:4294967295\n"
            "----------LOG_PATH:/var/log\n");
  EXPECT_EQ(support::log_records(), Lines{});
}

// ----------------------------------------------------------------------
// Lengths that no array holds
// ----------------------------------------------------------------------

class DisplayOfOverlongTexts : public Display {
 protected:
  // Fills an array to its end, with a length beyond it.
  template <std::size_t Size>
  void fill(char (&array)[Size], ub4 &length, char with) {
    std::memset(array, with, Size);
    length = length_;
  }

  // Lengths just above the arrays, above a signed number, and all bits set.
  static constexpr ub4 lengths[] = {1026, 100000, 0x80000000u, 0xFFFFFFFFu};
  ub4 length_ = 0;
};

TEST_F(DisplayOfOverlongTexts, AnAddressPrintsAtMostItsArrays) {
  for (const ub4 length : lengths) {
    length_ = length;
    SCOPED_TRACE(length_);
    auto one = std::make_unique<KZCIAddress>(address("", ""));
    fill(one->host, one->host_len, 'h');
    fill(one->port, one->port_len, 'p');
    EXPECT_EQ(printed(KZCIAddressDisplay, one.get()),
              "--------Address:\n----------host:" + std::string(257, 'h') +
                  "\n----------port:" + std::string(7, 'p') + "\n----------weight:1\n");
  }
}

TEST_F(DisplayOfOverlongTexts, ConnectDataPrintAtMostTheirArrays) {
  for (const ub4 length : lengths) {
    length_ = length;
    SCOPED_TRACE(length_);
    auto data = std::make_unique<KZCIConnectData>(connect_data(""));
    fill(data->service_name, data->service_name_len, 'n');
    fill(data->user_extra_info, data->user_extra_info_len, 'e');
    fill(data->session_variable, data->session_variable_len, 's');
    EXPECT_EQ(printed(KZCIConnectDataDisplay, data.get()),
              "--------ConnectData:\n----------dbname:" + std::string(257, 'n') +
                  "\n----------extra_info:" + std::string(256, 'e') +
                  "\n----------kzmode:0\n----------use_default_sid:0"
                  "\n----------session_variable:" +
                  std::string(257, 's') + "\n");
  }
}

TEST_F(DisplayOfOverlongTexts, SystemVariablesPrintAtMostTheirArrays) {
  for (const ub4 length : lengths) {
    length_ = length;
    SCOPED_TRACE(length_);
    auto vars = std::make_unique<KZCISystemVariables>();
    KZCISystemVariablesInit(vars.get());
    fill(vars->session_variable, vars->session_variable_len, 's');
    fill(vars->log_level, vars->log_level_len, 'l');
    fill(vars->log_path, vars->log_path_len, 'p');
    EXPECT_EQ(printed(KZCISystemVariablesDisplay, vars.get()),
              "--------SYSTEMVARIABLE:\n"
              "----------SLOWSQL_THRESHOLD:100\n"
              "----------SLOWSQL_BUFFER_SIZE:0\n"
              "----------SLOWSQL_FLUSH_SECOND:60\n"
              "----------SESSION_VARIABLE:" +
                  std::string(257, 's') + "\n----------LOG_LEVEL:" + std::string(1025, 'l') +
                  "\n----------LOG_SIZE:0\n----------LOG_COUNT:0\n----------LOG_PATH:" +
                  std::string(1025, 'p') + "\n");
  }
}

}  // namespace
