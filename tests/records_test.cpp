// The records of the tree: what each Init gives, how children hang on their
// parent, and how a Clear takes a tree apart.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <initializer_list>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "support/parsing.h"

namespace {

using support::Block;
using support::DescriptorState;
using support::Lines;
using support::pointer_text;
using support::operator+;

class RecordTest : public ::testing::Test {
 protected:
  void SetUp() override { support::reset_platform(); }
  void TearDown() override {
    EXPECT_EQ(support::bad_releases(), 0u);
    support::reset_platform();  // Gives back what a test leaves allocated.
  }
};

// The suites share one set-up and differ in what they look at.
class RecordTypes : public RecordTest {};
class RecordDefaults : public RecordTest {};
class RecordRings : public RecordTest {};
class RecordRelease : public RecordTest {};

template <class Record>
void fill_with_garbage(Record &record) {
  std::memset(static_cast<void *>(&record), 0xA5, sizeof record);
}

template <std::size_t size>
bool is_all_zero(const char (&text)[size]) {
  for (const char c : text)
    if (c != '\0') return false;
  return true;
}

void expect_alone(const list_entry_t &entry) {
  EXPECT_EQ(entry.type, 0u);
  EXPECT_EQ(entry.prev, &entry);
  EXPECT_EQ(entry.next, &entry);
}

// What is logged, allocated and released while the action runs.
template <class Action>
Lines events_of(Action action) {
  const std::size_t before = support::events().size();
  action();
  const Lines all = support::events();
  return {all.begin() + static_cast<std::ptrdiff_t>(before), all.end()};
}

template <class Record>
Record *allocate(const char *tag, std::size_t after = 0) {
  return static_cast<Record *>(kzci_malloc(sizeof(Record) + after, tag));
}

KZCITnsService *new_service(const std::string &name = "svc") {
  auto *service = allocate<KZCITnsService>("KZCITnsServiceBuild", name.size());
  EXPECT_EQ(KZCITnsServiceInit(service, static_cast<ub4>(name.size()), name.data()), 0);
  return service;
}

KZCIDescription *new_description() {
  auto *des = allocate<KZCIDescription>("KZCIDescription");
  EXPECT_EQ(KZCIDescriptionInit(des), 0);
  return des;
}

KZCIAddressList *new_address_list() {
  auto *list = allocate<KZCIAddressList>("address_list");
  EXPECT_EQ(KZCIAddressListInit(list), 0);
  return list;
}

KZCIAddress *new_address() {
  auto *address = allocate<KZCIAddress>("address");
  EXPECT_EQ(KZCIAddressInit(address), 0);
  return address;
}

KZCIConnectData *new_connect_data() {
  auto *data = allocate<KZCIConnectData>("KZCIConnectData");
  EXPECT_EQ(KZCIConnectDataInit(data), 0);
  return data;
}

// Puts a child at the tail of its parent's ring, by hand.
template <class Child>
Child *hang(Child *&first, ub4 &count, Child *child) {
  ++count;
  if (first == nullptr) {
    first = child;
    return child;
  }
  list_entry_t *head = &first->le;
  child->le.prev = head->prev;
  child->le.next = head;
  head->prev->next = &child->le;
  head->prev = &child->le;
  return child;
}

KZCIAddress *hang_address(KZCIAddressList *list) {
  return hang(list->address, list->address_count, new_address());
}

KZCIAddressList *hang_list(KZCIDescription *des, int addresses) {
  KZCIAddressList *list = hang(des->address_list, des->address_list_count, new_address_list());
  for (int i = 0; i < addresses; ++i) hang_address(list);
  return list;
}

KZCIDescription *hang_description(KZCITnsService *service) {
  return hang(service->description, service->description_count, new_description());
}

KZCITnsService *hang_service(KZCITns *tns, const std::string &name) {
  return hang(tns->tns_service, tns->tns_service_count, new_service(name));
}

std::string check_message(ub4 i, ub4 count, const void *header, const void *entry) {
  return "ERROR clear tns check error, i:" + std::to_string(i) +
         ", count:" + std::to_string(count) + ", header:" + pointer_text(header) +
         ", entry:" + pointer_text(entry);
}

// ----------------------------------------------------------------------
// Types
// ----------------------------------------------------------------------

template <class Expected, class Record, class Field>
constexpr bool has_type(Field Record::*) {
  return std::is_same_v<Expected, Field>;
}

TEST_F(RecordTypes, IntegersHaveTheirWidths) {
  static_assert(sizeof(ub4) == 4 && std::is_unsigned_v<ub4>);
  static_assert(sizeof(sb4) == 4 && std::is_signed_v<sb4>);
  static_assert(sizeof(sb8) == 8 && std::is_signed_v<sb8>);
  static_assert(sizeof(time_t) == 8 && std::is_signed_v<time_t>);
  static_assert(std::is_same_v<boolean, int>);
  static_assert(sizeof(KZCILBOption) == 4);
  static_assert(sizeof(KZCILBKeyType) == sizeof(int));
  static_assert(has_type<ub4>(&list_entry_t::type));
}

TEST_F(RecordTypes, TextFieldsHaveTheirSizes) {
  static_assert(has_type<char[257]>(&KZCIAddress::host));
  static_assert(has_type<char[7]>(&KZCIAddress::port));
  static_assert(has_type<char[6]>(&KZCIAddress::protocol));
  static_assert(has_type<char[257]>(&KZCIConnectData::service_name));
  static_assert(has_type<char[256]>(&KZCIConnectData::user_extra_info));
  static_assert(has_type<char[257]>(&KZCIConnectData::session_variable));
  static_assert(has_type<char[257]>(&KZCISystemVariables::session_variable));
  static_assert(has_type<char[1025]>(&KZCISystemVariables::log_level));
  static_assert(has_type<char[1025]>(&KZCISystemVariables::log_path));
}

TEST_F(RecordTypes, CountsAndLengthsAreUnsigned) {
  static_assert(has_type<ub4>(&KZCITns::tns_service_count));
  static_assert(has_type<ub4>(&KZCITnsService::description_count));
  static_assert(has_type<ub4>(&KZCITnsService::net_service_name_len));
  static_assert(has_type<ub4>(&KZCIDescription::address_list_count));
  static_assert(has_type<ub4>(&KZCIAddressList::address_count));
  static_assert(has_type<ub4>(&KZCIAddress::host_len));
  static_assert(has_type<ub4>(&KZCIAddress::port_len));
  static_assert(has_type<ub4>(&KZCIAddress::protocol_len));
  static_assert(has_type<ub4>(&KZCIConnectData::service_name_len));
  static_assert(has_type<ub4>(&KZCIConnectData::user_extra_info_len));
  static_assert(has_type<ub4>(&KZCIConnectData::session_variable_len));
  static_assert(has_type<ub4>(&KZCISystemVariables::slowsql_flush_second));
  static_assert(has_type<ub4>(&KZCISystemVariables::session_variable_len));
  static_assert(has_type<ub4>(&KZCISystemVariables::log_count));
  static_assert(has_type<ub4>(&KZCISystemVariables::log_level_len));
  static_assert(has_type<ub4>(&KZCISystemVariables::log_path_len));
}

TEST_F(RecordTypes, NumbersAreSignedAndWide) {
  static_assert(has_type<boolean>(&KZCIDescription::kzlb));
  static_assert(has_type<sb8>(&KZCIDescription::retry_all_downs));
  static_assert(has_type<sb8>(&KZCIDescription::connect_timout));
  static_assert(has_type<sb8>(&KZCIDescription::read_timout));
  static_assert(has_type<sb8>(&KZCIDescription::write_timout));
  static_assert(has_type<time_t>(&KZCIDescription::retry_timeout));
  static_assert(has_type<boolean>(&KZCIAddressList::kzlb));
  static_assert(has_type<sb8>(&KZCIAddress::weight));
  static_assert(has_type<sb8>(&KZCIConnectData::kz_mode));
  static_assert(has_type<sb8>(&KZCIConnectData::use_default_sid));
  static_assert(has_type<sb8>(&KZCIBlacklistConf::remove_timeout));
  static_assert(has_type<sb8>(&KZCIBlacklistConf::retry_times));
  static_assert(has_type<sb8>(&KZCIBlacklistConf::duration));
  static_assert(has_type<sb8>(&KZCISystemVariables::slowsql_threshold));
  static_assert(has_type<sb8>(&KZCISystemVariables::slowsql_buffer_size));
  static_assert(has_type<sb8>(&KZCISystemVariables::log_size));
}

TEST_F(RecordTypes, StrategiesHaveTheirNumbers) {
  EXPECT_EQ(LB_OPTION_GROUP_ROTATION, 0);
  EXPECT_EQ(LB_OPTION_RANDOM, 1001);
  EXPECT_EQ(LB_OPTION_SERVERAFFINITY, 1002);
  EXPECT_EQ(LB_OPTION_ROTATION, 1003);
  EXPECT_EQ(LB_OPTION_TIMEOUT, 2001);
  EXPECT_EQ(LB_OPTION_RETRY_DERUATION, 3001);
  EXPECT_EQ(LB_OPTION_NORMAL, 3002);
  EXPECT_EQ(LB_OPTION_MAX, 3003);
}

TEST_F(RecordTypes, FieldsOfTheServiceStandInOrder) {
  EXPECT_LT(offsetof(KZCITnsService, description), offsetof(KZCITnsService, description_count));
  EXPECT_LT(offsetof(KZCITnsService, description_count), offsetof(KZCITnsService, le));
  EXPECT_LT(offsetof(KZCITnsService, le), offsetof(KZCITnsService, sys_vars));
  EXPECT_LT(offsetof(KZCITnsService, sys_vars), offsetof(KZCITnsService, net_service_name_len));
  EXPECT_LT(offsetof(KZCITnsService, net_service_name_len),
            offsetof(KZCITnsService, net_service_name));
}

TEST_F(RecordTypes, FieldsOfTheDescriptionStandInOrder) {
  const std::vector<std::size_t> offsets = {offsetof(KZCIDescription, address_list),
                                            offsetof(KZCIDescription, address_list_count),
                                            offsetof(KZCIDescription, le),
                                            offsetof(KZCIDescription, connect_data),
                                            offsetof(KZCIDescription, kzlb),
                                            offsetof(KZCIDescription, retry_all_downs),
                                            offsetof(KZCIDescription, connect_timout),
                                            offsetof(KZCIDescription, read_timout),
                                            offsetof(KZCIDescription, write_timout),
                                            offsetof(KZCIDescription, retry_timeout),
                                            offsetof(KZCIDescription, kzlb_group_strategy),
                                            offsetof(KZCIDescription, black_list_conf)};
  for (std::size_t i = 1; i < offsets.size(); ++i) EXPECT_LT(offsets[i - 1], offsets[i]) << i;
}

TEST_F(RecordTypes, FieldsOfTheAddressStandInOrder) {
  const std::vector<std::size_t> offsets = {
      offsetof(KZCIAddress, host),     offsetof(KZCIAddress, port),
      offsetof(KZCIAddress, protocol), offsetof(KZCIAddress, host_len),
      offsetof(KZCIAddress, port_len), offsetof(KZCIAddress, protocol_len),
      offsetof(KZCIAddress, le),       offsetof(KZCIAddress, connect_le),
      offsetof(KZCIAddress, weight)};
  for (std::size_t i = 1; i < offsets.size(); ++i) EXPECT_LT(offsets[i - 1], offsets[i]) << i;
}

// ----------------------------------------------------------------------
// Defaults
// ----------------------------------------------------------------------

void expect_default(const KZCIBlacklistConf &black) {
  EXPECT_EQ(black.remove_strategy, LB_OPTION_TIMEOUT);
  EXPECT_EQ(black.remove_timeout, 50);
  EXPECT_EQ(black.append_strategy, LB_OPTION_NORMAL);
  EXPECT_EQ(black.retry_times, 1);
  EXPECT_EQ(black.duration, 10);
}

void expect_default(const KZCISystemVariables &vars) {
  EXPECT_EQ(vars.slowsql_threshold, 100);
  EXPECT_EQ(vars.slowsql_buffer_size, 0);
  EXPECT_EQ(vars.slowsql_flush_second, 60u);
  EXPECT_TRUE(is_all_zero(vars.session_variable));
  EXPECT_EQ(vars.session_variable_len, 0u);
  EXPECT_EQ(vars.log_size, 0);
  EXPECT_EQ(vars.log_count, 0u);
  EXPECT_TRUE(is_all_zero(vars.log_level));
  EXPECT_EQ(vars.log_level_len, 0u);
  EXPECT_TRUE(is_all_zero(vars.log_path));
  EXPECT_EQ(vars.log_path_len, 0u);
}

TEST_F(RecordDefaults, TnsIsEmpty) {
  KZCITns tns;
  fill_with_garbage(tns);
  EXPECT_EQ(KZCITnsInit(&tns), 0);
  EXPECT_EQ(tns.tns_service, nullptr);
  EXPECT_EQ(tns.tns_service_count, 0u);
  EXPECT_EQ(support::events(), Lines{});
}

TEST_F(RecordDefaults, GarbageInitialisedThenClearedIsNothingToDo) {
  KZCITns tns;
  fill_with_garbage(tns);
  EXPECT_EQ(KZCITnsInit(&tns), 0);
  EXPECT_EQ(KZCITnsClear(&tns), 0);
  EXPECT_EQ(support::log_without_pointers(), (Lines{"DEBUG call KZCITnsClear with params [tns:PTR]",
                                                    "DEBUG tns service is NULL, do nothing"}));
}

TEST_F(RecordDefaults, ServiceHasItsNameAndDefaultVariables) {
  auto *service = allocate<KZCITnsService>("service", 5);
  EXPECT_EQ(KZCITnsServiceInit(service, 5, "sales"), 0);
  EXPECT_EQ(service->description, nullptr);
  EXPECT_EQ(service->description_count, 0u);
  expect_alone(service->le);
  expect_default(service->sys_vars);
  EXPECT_EQ(service->net_service_name_len, 5u);
  EXPECT_EQ(support::text_of(service->net_service_name, 5), "sales");
  EXPECT_EQ(support::log_records(), Lines{});
}

// The source has no terminator and no byte to spare: a byte read too many
// shows under the address sanitizer.
TEST_F(RecordDefaults, ServiceNameIsReadOverItsLengthOnly) {
  auto *service = allocate<KZCITnsService>("service", 300);
  const auto name = std::make_unique<char[]>(300);
  std::memset(name.get(), 'n', 300);
  EXPECT_EQ(KZCITnsServiceInit(service, 300, name.get()), 0);
  EXPECT_EQ(service->net_service_name_len, 300u);
  EXPECT_EQ(support::text_of(service->net_service_name, 300), std::string(300, 'n'));
}

TEST_F(RecordDefaults, ServiceNameIsTheFirstCharactersOfALongerText) {
  auto *service = allocate<KZCITnsService>("service", 2);
  EXPECT_EQ(KZCITnsServiceInit(service, 2, "sales"), 0);
  EXPECT_EQ(service->net_service_name_len, 2u);
  EXPECT_EQ(support::text_of(service->net_service_name, 2), "sa");
}

TEST_F(RecordDefaults, ServiceNameIsZeroAfterAZeroByte) {
  auto *service = allocate<KZCITnsService>("service", 6);
  EXPECT_EQ(KZCITnsServiceInit(service, 6, "ab\0cde"), 0);
  EXPECT_EQ(service->net_service_name_len, 6u);
  EXPECT_EQ(support::text_of(service->net_service_name, 6), std::string("ab\0\0\0\0", 6));
}

// The allocator hands out blocks filled with 0xA5.
TEST_F(RecordDefaults, ServiceNameLeavesWhatIsAfterItAlone) {
  auto *service = allocate<KZCITnsService>("service", 16);
  EXPECT_EQ(KZCITnsServiceInit(service, 8, "abcdefgh"), 0);
  const auto *name =
      reinterpret_cast<const unsigned char *>(service) + offsetof(KZCITnsService, net_service_name);
  const auto *end = reinterpret_cast<const unsigned char *>(service) + sizeof(KZCITnsService) + 16;
  for (const unsigned char *byte = name + 8; byte < end; ++byte) EXPECT_EQ(*byte, 0xA5);
}

// The fixed part ends after the name's first bytes; a shorter name is followed by zeros
// there.
TEST_F(RecordDefaults, TheWholeFixedPartOfAServiceIsSet) {
  for (const std::size_t length : std::initializer_list<std::size_t>{0, 1, 2, 3, 4, 5}) {
    SCOPED_TRACE(length);
    const std::string name = std::string("abcde").substr(0, length);
    auto *service = allocate<KZCITnsService>("service", length);
    EXPECT_EQ(KZCITnsServiceInit(service, static_cast<ub4>(length), name.data()), 0);
    const auto *bytes = reinterpret_cast<const char *>(service);
    for (std::size_t at = offsetof(KZCITnsService, net_service_name) + length;
         at < sizeof(KZCITnsService); ++at)
      EXPECT_EQ(bytes[at], 0) << at;
  }
}

TEST_F(RecordDefaults, ServiceNameOfLengthZeroNeedsTheFixedPartAlone) {
  auto *service = allocate<KZCITnsService>("service");
  EXPECT_EQ(KZCITnsServiceInit(service, 0, ""), 0);
  EXPECT_EQ(service->net_service_name_len, 0u);
  expect_alone(service->le);
  expect_default(service->sys_vars);
}

TEST_F(RecordDefaults, ServiceNameOfLengthZeroIsNotRead) {
  auto *service = allocate<KZCITnsService>("service");
  EXPECT_EQ(KZCITnsServiceInit(service, 0, nullptr), 0);
  EXPECT_EQ(service->net_service_name_len, 0u);
}

TEST_F(RecordDefaults, Description) {
  KZCIDescription des;
  fill_with_garbage(des);
  EXPECT_EQ(KZCIDescriptionInit(&des), 0);
  EXPECT_EQ(des.address_list, nullptr);
  EXPECT_EQ(des.address_list_count, 0u);
  expect_alone(des.le);
  EXPECT_EQ(des.connect_data, nullptr);
  EXPECT_EQ(des.kzlb, 0);
  EXPECT_EQ(des.retry_all_downs, 120);
  EXPECT_EQ(des.connect_timout, 0);
  EXPECT_EQ(des.read_timout, 0);
  EXPECT_EQ(des.write_timout, 0);
  EXPECT_EQ(des.retry_timeout, 10000);
  EXPECT_EQ(des.kzlb_group_strategy, LB_OPTION_GROUP_ROTATION);
  expect_default(des.black_list_conf);
  EXPECT_EQ(support::events(), Lines{});
}

TEST_F(RecordDefaults, AddressList) {
  KZCIAddressList list;
  fill_with_garbage(list);
  EXPECT_EQ(KZCIAddressListInit(&list), 0);
  EXPECT_EQ(list.address, nullptr);
  EXPECT_EQ(list.address_count, 0u);
  expect_alone(list.le);
  EXPECT_EQ(list.kzlb, 1);
  EXPECT_EQ(list.kzlb_strategy, LB_OPTION_RANDOM);
  EXPECT_EQ(support::events(), Lines{});
}

TEST_F(RecordDefaults, Address) {
  KZCIAddress address;
  fill_with_garbage(address);
  EXPECT_EQ(KZCIAddressInit(&address), 0);
  EXPECT_TRUE(is_all_zero(address.host));
  EXPECT_TRUE(is_all_zero(address.port));
  EXPECT_TRUE(is_all_zero(address.protocol));
  EXPECT_EQ(address.host_len, 0u);
  EXPECT_EQ(address.port_len, 0u);
  EXPECT_EQ(address.protocol_len, 0u);
  expect_alone(address.le);
  expect_alone(address.connect_le);
  EXPECT_EQ(address.weight, 1);
  EXPECT_EQ(support::events(), Lines{});
}

TEST_F(RecordDefaults, ConnectData) {
  KZCIConnectData data;
  fill_with_garbage(data);
  EXPECT_EQ(KZCIConnectDataInit(&data), 0);
  EXPECT_TRUE(is_all_zero(data.service_name));
  EXPECT_EQ(data.service_name_len, 0u);
  EXPECT_TRUE(is_all_zero(data.user_extra_info));
  EXPECT_EQ(data.user_extra_info_len, 0u);
  EXPECT_TRUE(is_all_zero(data.session_variable));
  EXPECT_EQ(data.session_variable_len, 0u);
  EXPECT_EQ(data.kz_mode, 0);
  EXPECT_EQ(data.use_default_sid, 0);
  EXPECT_EQ(support::events(), Lines{});
}

TEST_F(RecordDefaults, Blacklist) {
  KZCIBlacklistConf black;
  fill_with_garbage(black);
  EXPECT_EQ(KZCIBlacklistConfInit(&black), 0);
  expect_default(black);
  EXPECT_EQ(support::events(), Lines{});
}

TEST_F(RecordDefaults, SystemVariables) {
  KZCISystemVariables vars;
  fill_with_garbage(vars);
  EXPECT_EQ(KZCISystemVariablesInit(&vars), 0);
  expect_default(vars);
  EXPECT_EQ(support::events(), Lines{});
}

struct NullRow {
  const char *name;
  sword (*call)();
  sword status;
  Lines log;
};

void expect_rows(const std::vector<NullRow> &rows) {
  for (const NullRow &row : rows) {
    SCOPED_TRACE(row.name);
    support::reset_platform();
    EXPECT_EQ(row.call(), row.status);
    EXPECT_EQ(support::log_without_pointers(), row.log);
    EXPECT_EQ(support::memory_events(), Lines{});
  }
}

TEST_F(RecordDefaults, NullRecords) {
  expect_rows({
      {"tns", [] { return KZCITnsInit(nullptr); }, -1, {"ERROR tns is NULL"}},
      {"service",
       [] { return KZCITnsServiceInit(nullptr, 5, "sales"); },
       -1,
       {"ERROR tns_service is NULL"}},
      {"description",
       [] { return KZCIDescriptionInit(nullptr); },
       -1,
       {"ERROR description is NULL"}},
      {"address list",
       [] { return KZCIAddressListInit(nullptr); },
       -1,
       {"ERROR address_list is NULL"}},
      {"address", [] { return KZCIAddressInit(nullptr); }, -1, {"ERROR address is NULL"}},
      {"connect data", [] { return KZCIConnectDataInit(nullptr); }, -1, {"ERROR con_data is NULL"}},
      {"blacklist",
       [] { return KZCIBlacklistConfInit(nullptr); },
       -2,
       {"ERROR invalid handle, handle is NULL"}},
      {"system variables", [] { return KZCISystemVariablesInit(nullptr); }, -2, {}},
  });
}

// ----------------------------------------------------------------------
// Rings, as the builders make them
// ----------------------------------------------------------------------

template <class Child>
std::vector<Child *> children_of(Child *first, ub4 count, Child *(*next)(Child *)) {
  std::vector<Child *> children;
  for (ub4 i = 0; i < count; ++i, first = next(first)) children.push_back(first);
  return children;
}

// The children form one circle in both directions, in this order.
template <class Child>
void expect_ring(const std::vector<Child *> &children) {
  for (std::size_t i = 0; i < children.size(); ++i) {
    SCOPED_TRACE(i);
    Child *after = children[(i + 1) % children.size()];
    EXPECT_EQ(children[i]->le.next, &after->le);
    EXPECT_EQ(after->le.prev, &children[i]->le);
    EXPECT_EQ(children[i]->le.type, 0u);
  }
}

boolean build_descriptor(KZCITns &tns, const std::string &text) {
  boolean find = 7;
  EXPECT_EQ(KZCITnsBuildDes(&tns, reinterpret_cast<const OraText *>(text.c_str()),
                            static_cast<ub4>(text.size()), &find),
            0);
  return find;
}

TEST_F(RecordRings, ServicesKeepTheirOrder) {
  KZCITns tns;
  KZCITnsInit(&tns);
  const Lines names = {"DESCRIPTION", "Description", "description"};
  for (const std::string &name : names)
    EXPECT_EQ(build_descriptor(tns, "(" + name + "=(ADDRESS=(HOST=h)))"), 1);
  ASSERT_EQ(tns.tns_service_count, 3u);
  const auto services = children_of(tns.tns_service, 3, KZCITnsServiceNext);
  expect_ring(services);
  for (std::size_t i = 0; i < 3; ++i)
    EXPECT_EQ(support::text_of(services[i]->net_service_name, services[i]->net_service_name_len),
              names[i]);
  EXPECT_EQ(KZCITnsClear(&tns), 0);
}

TEST_F(RecordRings, AnOnlyServiceIsAlone) {
  KZCITns tns;
  KZCITnsInit(&tns);
  EXPECT_EQ(build_descriptor(tns, "(DESCRIPTION=(ADDRESS=(HOST=h)))"), 1);
  ASSERT_EQ(tns.tns_service_count, 1u);
  expect_alone(tns.tns_service->le);
  expect_alone(tns.tns_service->description->le);
  expect_alone(tns.tns_service->description->address_list->le);
  expect_alone(tns.tns_service->description->address_list->address->le);
  expect_alone(tns.tns_service->description->address_list->address->connect_le);
  EXPECT_EQ(KZCITnsClear(&tns), 0);
}

TEST_F(RecordRings, DescriptionsKeepTheirOrder) {
  KZCITnsService *service = new_service();
  for (const char *number : {"11", "22", "33", "44"}) {
    DescriptorState state("(KZLB_RETRY_ALL_DOWNS=" + std::string(number) + "))");
    EXPECT_EQ(KZCIDescriptionBuild(service, &state.params), 0);
  }
  ASSERT_EQ(service->description_count, 4u);
  const auto descriptions = children_of(service->description, 4, KZCIDescriptionNext);
  expect_ring(descriptions);
  for (std::size_t i = 0; i < 4; ++i)
    EXPECT_EQ(descriptions[i]->retry_all_downs, static_cast<sb8>(11 * (i + 1)));
}

TEST_F(RecordRings, AddressListsKeepTheirOrder) {
  KZCIDescription *des = new_description();
  for (const char *word : {"RANDOM", "SERVERAFFINITY", "ROTATION"}) {
    DescriptorState state("(KZLB_STRATEGY=" + std::string(word) + "))");
    EXPECT_EQ(KZCIAddressListBuild(des, &state.params), 0);
  }
  ASSERT_EQ(des->address_list_count, 3u);
  const auto lists = children_of(des->address_list, 3, KZCIAddressListNext);
  expect_ring(lists);
  EXPECT_EQ(lists[0]->kzlb_strategy, LB_OPTION_RANDOM);
  EXPECT_EQ(lists[1]->kzlb_strategy, LB_OPTION_SERVERAFFINITY);
  EXPECT_EQ(lists[2]->kzlb_strategy, LB_OPTION_ROTATION);
}

TEST_F(RecordRings, AddressesKeepTheirOrder) {
  KZCIAddressList *list = new_address_list();
  for (const char *host : {"a", "bb", "ccc", "dddd", "eeeee"}) {
    DescriptorState state("(HOST=" + std::string(host) + "))");
    EXPECT_EQ(KZCIAddressBuild(list, &state.params), 0);
  }
  ASSERT_EQ(list->address_count, 5u);
  const auto addresses = children_of(list->address, 5, KZCIAddressNext);
  expect_ring(addresses);
  for (std::size_t i = 0; i < 5; ++i) {
    EXPECT_EQ(addresses[i]->host_len, i + 1);
    expect_alone(addresses[i]->connect_le);
  }
}

std::string malloc_event(std::size_t size, const char *tag) {
  return "MALLOC " + std::to_string(size) + " " + tag;
}

TEST_F(RecordRings, EveryRecordOfADescriptorIsABlockOfItsOwn) {
  KZCITns tns;
  KZCITnsInit(&tns);
  EXPECT_EQ(build_descriptor(tns,
                             "(DESCRIPTION=(ADDRESS_LIST=(ADDRESS=(HOST=h)))"
                             "(CONNECT_DATA=(SID=s)))"),
            1);
  EXPECT_EQ(support::memory_events(),
            (Lines{malloc_event(sizeof(KZCITnsService) + 11, "KZCITnsBuildDes"),
                   malloc_event(sizeof(KZCIDescription), "KZCIDescription"),
                   malloc_event(sizeof(KZCIAddressList), "address_list"),
                   malloc_event(sizeof(KZCIAddress), "address"),
                   malloc_event(sizeof(KZCIConnectData), "KZCIConnectData")}));
  EXPECT_EQ(KZCITnsClear(&tns), 0);
  EXPECT_EQ(support::live_blocks(), std::vector<Block>{});
}

TEST_F(RecordRings, AServiceOfTheFileIsAllocatedWithItsName) {
  KZCITns tns;
  KZCITnsInit(&tns);
  DescriptorState state("(DESCRIPTION=(KZLB=ON))");
  std::memcpy(state.params.tns_key, "sales", 5);
  state.params.tns_key_len = 5;
  EXPECT_EQ(KZCITnsServiceBuild(&tns, &state.params), 0);
  EXPECT_EQ(support::memory_events(),
            (Lines{malloc_event(sizeof(KZCITnsService) + 5, "KZCITnsServiceBuild"),
                   malloc_event(sizeof(KZCIDescription), "KZCIDescription")}));
  EXPECT_EQ(KZCITnsClear(&tns), 0);
  EXPECT_EQ(support::live_blocks(), std::vector<Block>{});
}

// ----------------------------------------------------------------------
// Release: the four parents alike
// ----------------------------------------------------------------------

// A parent, its children, and what the two say when the child has none itself.
struct TnsLevel {
  using Parent = KZCITns;
  using Child = KZCITnsService;
  static void init(Parent &parent) { KZCITnsInit(&parent); }
  static Child *new_child() { return new_service(); }
  static Child *&first(Parent &parent) { return parent.tns_service; }
  static ub4 &count(Parent &parent) { return parent.tns_service_count; }
  static sword clear(Parent &parent) { return KZCITnsClear(&parent); }
  static constexpr const char *entry = "call KZCITnsClear with params [tns:";
  static constexpr const char *nothing = "DEBUG tns service is NULL, do nothing";
  static Lines child_release() {
    return {"DEBUG call KZCITnsServiceClear with params [tns_service:PTR]",
            "DEBUG description is NULL, do nothing", "FREE KZCITnsServiceBuild"};
  }
};

struct ServiceLevel {
  using Parent = KZCITnsService;
  using Child = KZCIDescription;
  static void init(Parent &parent) { KZCITnsServiceInit(&parent, 0, ""); }
  static Child *new_child() { return new_description(); }
  static Child *&first(Parent &parent) { return parent.description; }
  static ub4 &count(Parent &parent) { return parent.description_count; }
  static sword clear(Parent &parent) { return KZCITnsServiceClear(&parent); }
  static constexpr const char *entry = "call KZCITnsServiceClear with params [tns_service:";
  static constexpr const char *nothing = "DEBUG description is NULL, do nothing";
  static Lines child_release() {
    return {"DEBUG call KZCIDescriptionClear with params [des:PTR]",
            "DEBUG address is NULL, do nothing", "FREE KZCIDescription"};
  }
};

struct DescriptionLevel {
  using Parent = KZCIDescription;
  using Child = KZCIAddressList;
  static void init(Parent &parent) { KZCIDescriptionInit(&parent); }
  static Child *new_child() { return new_address_list(); }
  static Child *&first(Parent &parent) { return parent.address_list; }
  static ub4 &count(Parent &parent) { return parent.address_list_count; }
  static sword clear(Parent &parent) { return KZCIDescriptionClear(&parent); }
  static constexpr const char *entry = "call KZCIDescriptionClear with params [des:";
  static constexpr const char *nothing = "DEBUG address is NULL, do nothing";
  static Lines child_release() {
    return {"DEBUG call KZCIAddressListClear with params [address_list:PTR]",
            "DEBUG address is NULL, do nothing", "FREE address_list"};
  }
};

struct AddressListLevel {
  using Parent = KZCIAddressList;
  using Child = KZCIAddress;
  static void init(Parent &parent) { KZCIAddressListInit(&parent); }
  static Child *new_child() { return new_address(); }
  static Child *&first(Parent &parent) { return parent.address; }
  static ub4 &count(Parent &parent) { return parent.address_count; }
  static sword clear(Parent &parent) { return KZCIAddressListClear(&parent); }
  static constexpr const char *entry = "call KZCIAddressListClear with params [address_list:";
  static constexpr const char *nothing = "DEBUG address is NULL, do nothing";
  static Lines child_release() {
    return {"DEBUG call KZCIAddressClear with params [address:PTR]", "FREE address"};
  }
};

template <class Level>
class ReleaseOfChildren : public RecordTest {
 protected:
  using Child = typename Level::Child;

  void SetUp() override {
    RecordTest::SetUp();
    Level::init(parent_);
  }

  std::vector<Child *> hang_children(int n) {
    std::vector<Child *> children;
    for (int i = 0; i < n; ++i)
      children.push_back(hang(Level::first(parent_), Level::count(parent_), Level::new_child()));
    return children;
  }

  // The entry line with the parent's own address, to be found in log_records().
  std::string entry_line() const {
    return "DEBUG " + std::string(Level::entry) + pointer_text(&parent_) + "]";
  }
  static Lines entry_event() { return {"DEBUG " + std::string(Level::entry) + "PTR]"}; }
  static Lines check_event(int i, int count) {
    return {"ERROR clear tns check error, i:" + std::to_string(i) +
            ", count:" + std::to_string(count) + ", header:PTR, entry:PTR"};
  }

  // On the heap, since a service with its open end cannot be a member.
  std::unique_ptr<typename Level::Parent> owner_ = std::make_unique<typename Level::Parent>();
  typename Level::Parent &parent_ = *owner_;
};

using Levels = ::testing::Types<TnsLevel, ServiceLevel, DescriptionLevel, AddressListLevel>;
TYPED_TEST_SUITE(ReleaseOfChildren, Levels);

TYPED_TEST(ReleaseOfChildren, EntryMessageNamesTheRecord) {
  EXPECT_EQ(TypeParam::clear(this->parent_), 0);
  EXPECT_EQ(support::log_records(), (Lines{this->entry_line(), TypeParam::nothing}));
}

TYPED_TEST(ReleaseOfChildren, NoChildrenIsNothingToDo) {
  EXPECT_EQ(events_of([&] { EXPECT_EQ(TypeParam::clear(this->parent_), 0); }),
            this->entry_event() + Lines{TypeParam::nothing});
  EXPECT_EQ(TypeParam::first(this->parent_), nullptr);
  EXPECT_EQ(TypeParam::count(this->parent_), 0u);
}

TYPED_TEST(ReleaseOfChildren, OneChild) {
  this->hang_children(1);
  EXPECT_EQ(events_of([&] { EXPECT_EQ(TypeParam::clear(this->parent_), 0); }),
            this->entry_event() + TypeParam::child_release());
  EXPECT_EQ(TypeParam::first(this->parent_), nullptr);
  EXPECT_EQ(TypeParam::count(this->parent_), 0u);
  EXPECT_EQ(support::live_blocks(), std::vector<Block>{});
}

TYPED_TEST(ReleaseOfChildren, ThreeChildrenInTheirOrder) {
  const auto children = this->hang_children(3);
  EXPECT_EQ(events_of([&] { EXPECT_EQ(TypeParam::clear(this->parent_), 0); }),
            this->entry_event() + TypeParam::child_release() + TypeParam::child_release() +
                TypeParam::child_release());
  EXPECT_EQ(TypeParam::first(this->parent_), nullptr);
  EXPECT_EQ(TypeParam::count(this->parent_), 0u);
  EXPECT_EQ(support::live_blocks(), std::vector<Block>{});
  Lines named;
  for (const std::string &line : support::log_records())
    for (const auto *child : children)
      if (line.find(":" + pointer_text(child) + "]") != std::string::npos)
        named.push_back(pointer_text(child));
  EXPECT_EQ(named, (Lines{pointer_text(children[0]), pointer_text(children[1]),
                          pointer_text(children[2])}));
}

TYPED_TEST(ReleaseOfChildren, TwiceInARow) {
  this->hang_children(2);
  EXPECT_EQ(TypeParam::clear(this->parent_), 0);
  EXPECT_EQ(events_of([&] { EXPECT_EQ(TypeParam::clear(this->parent_), 0); }),
            this->entry_event() + Lines{TypeParam::nothing});
}

// Either of the two says that there is nothing to release.
TYPED_TEST(ReleaseOfChildren, CountOfZeroReleasesNothing) {
  const auto children = this->hang_children(2);
  TypeParam::count(this->parent_) = 0;
  EXPECT_EQ(events_of([&] { EXPECT_EQ(TypeParam::clear(this->parent_), 0); }),
            this->entry_event() + Lines{TypeParam::nothing});
  EXPECT_EQ(TypeParam::first(this->parent_), children[0]);
  EXPECT_EQ(support::live_blocks().size(), 2u);
}

TYPED_TEST(ReleaseOfChildren, NullFirstChildReleasesNothing) {
  TypeParam::count(this->parent_) = 2;
  EXPECT_EQ(events_of([&] { EXPECT_EQ(TypeParam::clear(this->parent_), 0); }),
            this->entry_event() + Lines{TypeParam::nothing});
  EXPECT_EQ(TypeParam::first(this->parent_), nullptr);
}

TYPED_TEST(ReleaseOfChildren, CountTooSmallStopsBeforeTheOthers) {
  const auto children = this->hang_children(4);
  const std::string check = check_message(2, 2, &children[0]->le, &children[2]->le);
  TypeParam::count(this->parent_) = 2;
  EXPECT_EQ(events_of([&] { EXPECT_EQ(TypeParam::clear(this->parent_), -1); }),
            this->entry_event() + TypeParam::child_release() + TypeParam::child_release() +
                this->check_event(2, 2));
  EXPECT_EQ(support::log_records().back(), check);
  EXPECT_EQ(support::live_blocks().size(), 2u);
  EXPECT_EQ(TypeParam::first(this->parent_), children[0]);
  EXPECT_EQ(TypeParam::count(this->parent_), 2u);
}

TYPED_TEST(ReleaseOfChildren, CountSmallerByOne) {
  const auto children = this->hang_children(2);
  const std::string check = check_message(1, 1, &children[0]->le, &children[1]->le);
  TypeParam::count(this->parent_) = 1;
  EXPECT_EQ(TypeParam::clear(this->parent_), -1);
  EXPECT_EQ(support::log_records().back(), check);
  EXPECT_EQ(support::live_blocks().size(), 1u);
}

// The walk ends when it is back at the head: the blocks after are gone, and
// reading one would show under the address sanitizer.
TYPED_TEST(ReleaseOfChildren, CountTooLargeStopsAtTheHead) {
  const auto children = this->hang_children(2);
  const std::string check = check_message(2, 5, &children[0]->le, &children[0]->le);
  TypeParam::count(this->parent_) = 5;
  EXPECT_EQ(events_of([&] { EXPECT_EQ(TypeParam::clear(this->parent_), -1); }),
            this->entry_event() + TypeParam::child_release() + TypeParam::child_release() +
                this->check_event(2, 5));
  EXPECT_EQ(support::log_records().back(), check);
  EXPECT_EQ(support::live_blocks(), std::vector<Block>{});
  EXPECT_EQ(TypeParam::first(this->parent_), children[0]);
  EXPECT_EQ(TypeParam::count(this->parent_), 5u);
}

TYPED_TEST(ReleaseOfChildren, CountLargerByOneOverAnOnlyChild) {
  const auto children = this->hang_children(1);
  const std::string check = check_message(1, 2, &children[0]->le, &children[0]->le);
  TypeParam::count(this->parent_) = 2;
  EXPECT_EQ(TypeParam::clear(this->parent_), -1);
  EXPECT_EQ(support::log_records().back(), check);
  EXPECT_EQ(support::live_blocks(), std::vector<Block>{});
}

TYPED_TEST(ReleaseOfChildren, LargestCountStopsAtTheHead) {
  const auto children = this->hang_children(3);
  const std::string check = check_message(3, 4294967295u, &children[0]->le, &children[0]->le);
  TypeParam::count(this->parent_) = 4294967295u;
  EXPECT_EQ(TypeParam::clear(this->parent_), -1);
  EXPECT_EQ(support::log_records().back(), check);
  EXPECT_EQ(support::live_blocks(), std::vector<Block>{});
}

TYPED_TEST(ReleaseOfChildren, ManyChildren) {
  this->hang_children(1000);
  EXPECT_EQ(TypeParam::clear(this->parent_), 0);
  EXPECT_EQ(support::warnings_and_errors(), Lines{});
  EXPECT_EQ(support::live_blocks(), std::vector<Block>{});
}

// ----------------------------------------------------------------------
// Release: null records, leaves, and the levels together
// ----------------------------------------------------------------------

TEST_F(RecordRelease, NullRecords) {
  expect_rows({
      {"tns",
       [] { return KZCITnsClear(nullptr); },
       0,
       {"DEBUG call KZCITnsClear with params [tns:NULL]", "DEBUG tns is NULL, do nothing"}},
      {"service",
       [] { return KZCITnsServiceClear(nullptr); },
       0,
       {"DEBUG call KZCITnsServiceClear with params [tns_service:NULL]",
        "DEBUG tns_service is NULL, do nothing"}},
      {"description",
       [] { return KZCIDescriptionClear(nullptr); },
       0,
       {"DEBUG call KZCIDescriptionClear with params [des:NULL]",
        "ERROR description is NULL, do nothing"}},
      {"address list",
       [] { return KZCIAddressListClear(nullptr); },
       0,
       {"DEBUG call KZCIAddressListClear with params [address_list:NULL]",
        "DEBUG address_list is NULL, do nothing"}},
      {"address",
       [] { return KZCIAddressClear(nullptr); },
       0,
       {"DEBUG call KZCIAddressClear with params [address:NULL]"}},
      {"connect data",
       [] { return KZCIConnectDataClear(nullptr); },
       0,
       {"DEBUG call KZCIConnectDataClear with params [con_data:NULL]"}},
      {"system variables", [] { return KZCISystemVariablesClear(nullptr); }, 0, {}},
  });
}

TEST_F(RecordRelease, AddressHasNothingToRelease) {
  KZCIAddress *address = new_address();
  address->weight = 9;
  EXPECT_EQ(KZCIAddressClear(address), 0);
  EXPECT_EQ(address->weight, 9);
  EXPECT_EQ(
      support::log_records(),
      (Lines{"DEBUG call KZCIAddressClear with params [address:" + pointer_text(address) + "]"}));
  EXPECT_EQ(support::live_blocks().size(), 1u);
}

TEST_F(RecordRelease, ConnectDataHasNothingToRelease) {
  KZCIConnectData *data = new_connect_data();
  data->kz_mode = 9;
  EXPECT_EQ(KZCIConnectDataClear(data), 0);
  EXPECT_EQ(data->kz_mode, 9);
  EXPECT_EQ(
      support::log_records(),
      (Lines{"DEBUG call KZCIConnectDataClear with params [con_data:" + pointer_text(data) + "]"}));
  EXPECT_EQ(support::live_blocks().size(), 1u);
}

TEST_F(RecordRelease, SystemVariablesHaveNothingToReleaseAndLogNothing) {
  KZCISystemVariables vars;
  KZCISystemVariablesInit(&vars);
  vars.slowsql_threshold = 9;
  EXPECT_EQ(KZCISystemVariablesClear(&vars), 0);
  EXPECT_EQ(vars.slowsql_threshold, 9);
  EXPECT_EQ(support::events(), Lines{});
}

TEST_F(RecordRelease, ConnectDataGoesAfterTheAddressLists) {
  KZCIDescription *des = new_description();
  hang_list(des, 1);
  des->connect_data = new_connect_data();
  EXPECT_EQ(
      events_of([&] { EXPECT_EQ(KZCIDescriptionClear(des), 0); }),
      (Lines{"DEBUG call KZCIDescriptionClear with params [des:PTR]",
             "DEBUG call KZCIAddressListClear with params [address_list:PTR]",
             "DEBUG call KZCIAddressClear with params [address:PTR]", "FREE address",
             "FREE address_list", "DEBUG call KZCIConnectDataClear with params [con_data:PTR]",
             "FREE KZCIConnectData"}));
  EXPECT_EQ(des->connect_data, nullptr);
  EXPECT_EQ(des->address_list, nullptr);
  EXPECT_EQ(des->address_list_count, 0u);
}

TEST_F(RecordRelease, ConnectDataGoesWithoutAddressListsToo) {
  KZCIDescription *des = new_description();
  des->connect_data = new_connect_data();
  EXPECT_EQ(events_of([&] { EXPECT_EQ(KZCIDescriptionClear(des), 0); }),
            (Lines{"DEBUG call KZCIDescriptionClear with params [des:PTR]",
                   "DEBUG address is NULL, do nothing",
                   "DEBUG call KZCIConnectDataClear with params [con_data:PTR]",
                   "FREE KZCIConnectData"}));
  EXPECT_EQ(des->connect_data, nullptr);
}

TEST_F(RecordRelease, ADescriptionClearedTwice) {
  KZCIDescription *des = new_description();
  hang_list(des, 2);
  des->connect_data = new_connect_data();
  EXPECT_EQ(KZCIDescriptionClear(des), 0);
  EXPECT_EQ(events_of([&] { EXPECT_EQ(KZCIDescriptionClear(des), 0); }),
            (Lines{"DEBUG call KZCIDescriptionClear with params [des:PTR]",
                   "DEBUG address is NULL, do nothing"}));
}

TEST_F(RecordRelease, AServiceKeepsItsNameAndVariables) {
  KZCITnsService *service = new_service("sales");
  service->sys_vars.log_count = 3;
  hang_description(service);
  EXPECT_EQ(KZCITnsServiceClear(service), 0);
  EXPECT_EQ(service->sys_vars.log_count, 3u);
  EXPECT_EQ(support::text_of(service->net_service_name, service->net_service_name_len), "sales");
}

// The record that a Clear is given stays its owner's.
TEST_F(RecordRelease, TheRecordItselfIsNeverReleased) {
  KZCITnsService *service = new_service("sales");
  KZCIDescription *des = hang_description(service);
  hang_list(des, 1);
  EXPECT_EQ(KZCITnsServiceClear(service), 0);
  EXPECT_EQ(support::live_blocks(),
            (std::vector<Block>{{"KZCITnsServiceBuild", sizeof(KZCITnsService) + 5}}));
}

KZCITns two_services() {
  KZCITns tns;
  KZCITnsInit(&tns);
  KZCITnsService *first = hang_service(&tns, "one");
  KZCIDescription *des = hang_description(first);
  hang_list(des, 2);
  hang_list(des, 1);
  des->connect_data = new_connect_data();
  hang_description(first);
  hang_service(&tns, "two");
  return tns;
}

TEST_F(RecordRelease, AWholeTree) {
  KZCITns tns = two_services();
  EXPECT_EQ(events_of([&] { EXPECT_EQ(KZCITnsClear(&tns), 0); }),
            (Lines{"DEBUG call KZCITnsClear with params [tns:PTR]",
                   "DEBUG call KZCITnsServiceClear with params [tns_service:PTR]",
                   "DEBUG call KZCIDescriptionClear with params [des:PTR]",
                   "DEBUG call KZCIAddressListClear with params [address_list:PTR]",
                   "DEBUG call KZCIAddressClear with params [address:PTR]",
                   "FREE address",
                   "DEBUG call KZCIAddressClear with params [address:PTR]",
                   "FREE address",
                   "FREE address_list",
                   "DEBUG call KZCIAddressListClear with params [address_list:PTR]",
                   "DEBUG call KZCIAddressClear with params [address:PTR]",
                   "FREE address",
                   "FREE address_list",
                   "DEBUG call KZCIConnectDataClear with params [con_data:PTR]",
                   "FREE KZCIConnectData",
                   "FREE KZCIDescription",
                   "DEBUG call KZCIDescriptionClear with params [des:PTR]",
                   "DEBUG address is NULL, do nothing",
                   "FREE KZCIDescription",
                   "FREE KZCITnsServiceBuild",
                   "DEBUG call KZCITnsServiceClear with params [tns_service:PTR]",
                   "DEBUG description is NULL, do nothing",
                   "FREE KZCITnsServiceBuild"}));
  EXPECT_EQ(tns.tns_service, nullptr);
  EXPECT_EQ(tns.tns_service_count, 0u);
  EXPECT_EQ(support::live_blocks(), std::vector<Block>{});
}

TEST_F(RecordRelease, AFailingListStopsItsDescription) {
  KZCIDescription *des = new_description();
  KZCIAddressList *first = hang_list(des, 1);
  hang_list(des, 2)->address_count = 1;
  hang_list(des, 1);
  KZCIConnectData *data = des->connect_data = new_connect_data();
  EXPECT_EQ(
      events_of([&] { EXPECT_EQ(KZCIDescriptionClear(des), -1); }),
      (Lines{"DEBUG call KZCIDescriptionClear with params [des:PTR]",
             "DEBUG call KZCIAddressListClear with params [address_list:PTR]",
             "DEBUG call KZCIAddressClear with params [address:PTR]", "FREE address",
             "FREE address_list", "DEBUG call KZCIAddressListClear with params [address_list:PTR]",
             "DEBUG call KZCIAddressClear with params [address:PTR]", "FREE address",
             "ERROR clear tns check error, i:1, count:1, header:PTR, entry:PTR",
             "ERROR fail to call KZCIAddressListClear, status:-1"}));
  EXPECT_EQ(des->address_list, first);
  EXPECT_EQ(des->address_list_count, 3u);
  EXPECT_EQ(des->connect_data, data);
  EXPECT_EQ(support::live_blocks(),
            (std::vector<Block>{{"KZCIDescription", sizeof(KZCIDescription)},
                                {"address_list", sizeof(KZCIAddressList)},
                                {"address", sizeof(KZCIAddress)},
                                {"address_list", sizeof(KZCIAddressList)},
                                {"address", sizeof(KZCIAddress)},
                                {"KZCIConnectData", sizeof(KZCIConnectData)}}));
}

TEST_F(RecordRelease, AFailureTravelsUpThroughEveryLevel) {
  KZCITns tns;
  KZCITnsInit(&tns);
  KZCITnsService *service = hang_service(&tns, "one");
  hang_list(hang_description(service), 2)->address_count = 1;
  hang_service(&tns, "two");
  EXPECT_EQ(events_of([&] { EXPECT_EQ(KZCITnsClear(&tns), -1); }),
            (Lines{"DEBUG call KZCITnsClear with params [tns:PTR]",
                   "DEBUG call KZCITnsServiceClear with params [tns_service:PTR]",
                   "DEBUG call KZCIDescriptionClear with params [des:PTR]",
                   "DEBUG call KZCIAddressListClear with params [address_list:PTR]",
                   "DEBUG call KZCIAddressClear with params [address:PTR]", "FREE address",
                   "ERROR clear tns check error, i:1, count:1, header:PTR, entry:PTR",
                   "ERROR fail to call KZCIAddressListClear, status:-1",
                   "ERROR fail to call KZCIDescriptionClear, status:-1",
                   "ERROR fail to call KZCITnsServiceClear, status:-1"}));
  EXPECT_EQ(tns.tns_service, service);
  EXPECT_EQ(tns.tns_service_count, 2u);
  EXPECT_EQ(support::live_blocks().size(), 5u);
}

// The check fails in the middle of the tree: what is above keeps its block.
TEST_F(RecordRelease, AFailingDescriptionStopsItsService) {
  KZCITnsService *service = new_service();
  KZCIDescription *first = hang_description(service);
  hang_list(first, 0);
  hang_list(first, 0);
  first->address_list_count = 1;
  hang_description(service);
  EXPECT_EQ(KZCITnsServiceClear(service), -1);
  EXPECT_EQ(support::warnings_and_errors(),
            (Lines{"ERROR clear tns check error, i:1, count:1, header:PTR, entry:PTR",
                   "ERROR fail to call KZCIDescriptionClear, status:-1"}));
  EXPECT_EQ(service->description, first);
  EXPECT_EQ(service->description_count, 2u);
}

TEST_F(RecordRelease, AFailingServiceStopsTheContainer) {
  KZCITns tns;
  KZCITnsInit(&tns);
  KZCITnsService *bad = hang_service(&tns, "bad");
  hang_description(bad);
  bad->description_count = 7;
  EXPECT_EQ(KZCITnsClear(&tns), -1);
  EXPECT_EQ(support::warnings_and_errors(),
            (Lines{"ERROR clear tns check error, i:1, count:7, header:PTR, entry:PTR",
                   "ERROR fail to call KZCITnsServiceClear, status:-1"}));
  EXPECT_EQ(tns.tns_service, bad);
  EXPECT_EQ(tns.tns_service_count, 1u);
  EXPECT_EQ(support::live_blocks().size(), 1u);
}

}  // namespace
