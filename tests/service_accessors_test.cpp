// What the connection layer reads of a service: KZCITnsServiceExtraInfoGet and
// KZCITnsServiceDblinkGet, over records made by hand and over built ones.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "kzoci/oci_tnsname.h"
#include "support/parsing.h"

namespace {

using namespace std::string_literals;
using support::Lines;

// What the outputs hold before a call, to show what the call writes.
constexpr char pattern = '#';
constexpr sb4 length_before = 7001;
constexpr sb4 mode_before = 7002;

constexpr std::size_t guard = 128;

// Text and the zero bytes that a string copy adds up to the length.
std::string filled(const std::string &text, std::size_t length) {
  return text + std::string(length - text.size(), '\0');
}

// What a buffer of the given size holds after these bytes were written to it.
std::string in_pattern(const std::string &written, std::size_t size) {
  return written + std::string(size - written.size(), pattern);
}

void set_entry(list_entry_t &entry) { entry = {0, &entry, &entry}; }

void link_after(list_entry_t &first, list_entry_t &second) {
  first = {0, &second, &second};
  second = {0, &first, &first};
}

template <std::size_t size>
void set_text(char (&array)[size], ub4 &length, const std::string &text) {
  ASSERT_LE(text.size(), size);
  std::memcpy(array, text.data(), text.size());
  length = static_cast<ub4>(text.size());
}

// One description with one address list, one address and connect data. Unused
// characters of every array are '?', so that a copy that goes too far shows.
struct Branch {
  Branch() {
    std::memset(&address, '?', sizeof address);
    std::memset(&data, '?', sizeof data);
    list = {&address, 1, {}, 1, LB_OPTION_RANDOM};
    std::memset(&des, 0, sizeof des);
    des.address_list = &list;
    des.address_list_count = 1;
    des.connect_data = &data;
    set_entry(address.le);
    set_entry(list.le);
    set_entry(des.le);
    data.kz_mode = 0;
    data.use_default_sid = 0;
    host("10.0.0.1");
    port("2881");
    protocol("TCP");
    service_name("sales");
    extra_info("report");
    session_variable("a=1");
  }

  void host(const std::string &text) { set_text(address.host, address.host_len, text); }
  void port(const std::string &text) { set_text(address.port, address.port_len, text); }
  void protocol(const std::string &text) { set_text(address.protocol, address.protocol_len, text); }
  void service_name(const std::string &text) {
    set_text(data.service_name, data.service_name_len, text);
  }
  void extra_info(const std::string &text) {
    set_text(data.user_extra_info, data.user_extra_info_len, text);
  }
  void session_variable(const std::string &text) {
    set_text(data.session_variable, data.session_variable_len, text);
  }

  KZCIAddress address;
  KZCIAddressList list;
  KZCIConnectData data;
  KZCIDescription des;
};

// The outputs of KZCITnsServiceExtraInfoGet.
struct ExtraInfo {
  std::string text;
  sb4 text_len = length_before;
  sb4 mode = mode_before;
  std::string session;
  sb4 session_len = length_before;

  bool operator==(const ExtraInfo &other) const {
    return text == other.text && text_len == other.text_len && mode == other.mode &&
           session == other.session && session_len == other.session_len;
  }
};

void PrintTo(const ExtraInfo &info, std::ostream *out) {
  *out << "{" << ::testing::PrintToString(info.text) << ", " << info.text_len << ", mode "
       << info.mode << ", " << ::testing::PrintToString(info.session) << ", " << info.session_len
       << "}";
}

// The guaranteed sizes, with a guard after them.
constexpr std::size_t extra_room = 256 + guard;
constexpr std::size_t session_room = 257 + guard;
constexpr std::size_t dblink_room = 256 + guard;

ExtraInfo untouched_info() {
  return {std::string(extra_room, pattern), length_before, mode_before,
          std::string(session_room, pattern), length_before};
}

// The outputs after these texts were handed out.
ExtraInfo info_of(const std::string &text, sb4 mode, const std::string &session) {
  return {in_pattern(text, extra_room), static_cast<sb4>(text.size()), mode,
          in_pattern(session, session_room), static_cast<sb4>(session.size())};
}

// The outputs of KZCITnsServiceDblinkGet.
struct Dblink {
  std::string text = std::string(dblink_room, pattern);
  sb4 length = length_before;

  bool operator==(const Dblink &other) const {
    return text == other.text && length == other.length;
  }
};

void PrintTo(const Dblink &dblink, std::ostream *out) {
  *out << "{" << ::testing::PrintToString(dblink.text) << ", " << dblink.length << "}";
}

// The outputs after this text was written: cut to 255 characters, terminated.
Dblink dblink_of(const std::string &text) {
  const std::string kept = text.substr(0, 255) + '\0';
  return {in_pattern(kept, dblink_room), static_cast<sb4>(text.size())};
}

class Accessors : public ::testing::Test {
 protected:
  Accessors() : service_(new KZCITnsService) {
    std::memset(service_.get(), 0, sizeof(KZCITnsService));
    set_entry(service_->le);
    service_->description = &first_.des;
    service_->description_count = 1;
  }
  void SetUp() override { support::reset_platform(); }
  void TearDown() override {
    EXPECT_EQ(support::bad_releases(), 0u);
    support::reset_platform();
  }

  // A second description after the first one.
  void add_second_description() {
    link_after(first_.des.le, second_.des.le);
    service_->description_count = 2;
  }

  sword extra_info(KZCITnsService *service) {
    info_ = untouched_info();
    return KZCITnsServiceExtraInfoGet(service, info_.text.data(), &info_.text_len, &info_.mode,
                                      info_.session.data(), &info_.session_len);
  }
  sword dblink(KZCITnsService *service) {
    dblink_ = Dblink();
    return KZCITnsServiceDblinkGet(service, dblink_.text.data(), &dblink_.length);
  }

  // Success logs nothing and asks for no memory.
  void expect_info(const ExtraInfo &expected) {
    EXPECT_EQ(extra_info(service_.get()), 0);
    EXPECT_EQ(info_, expected);
    EXPECT_EQ(support::events(), Lines());
  }
  void expect_dblink(const std::string &text) {
    EXPECT_EQ(dblink(service_.get()), 0);
    EXPECT_EQ(dblink_, dblink_of(text));
    EXPECT_EQ(support::events(), Lines());
  }

  void expect_no_info(const std::string &message) {
    support::reset_platform();
    EXPECT_EQ(extra_info(service_.get()), -1);
    EXPECT_EQ(info_, untouched_info());
    EXPECT_EQ(support::events(), Lines{"ERROR " + message});
  }
  void expect_no_dblink(const std::string &message) {
    support::reset_platform();
    EXPECT_EQ(dblink(service_.get()), -1);
    EXPECT_EQ(dblink_, Dblink());
    EXPECT_EQ(support::events(), Lines{"ERROR " + message});
  }

  std::unique_ptr<KZCITnsService> service_;
  Branch first_;
  Branch second_;
  ExtraInfo info_;
  Dblink dblink_;
};

using ExtraInfoGet = Accessors;
using DblinkGet = Accessors;

/* ---- Extra information, mode and session variables ---- */

TEST_F(ExtraInfoGet, HandsOutAllThree) {
  first_.data.kz_mode = 3;
  expect_info(info_of("report", 3, "a=1"));
}

TEST_F(ExtraInfoGet, TextsAreNotTerminated) {
  first_.extra_info("x");
  first_.session_variable("y");
  expect_info(info_of("x", 0, "y"));
  EXPECT_EQ(info_.text[1], pattern);
  EXPECT_EQ(info_.session[1], pattern);
}

TEST_F(ExtraInfoGet, EmptyExtraInfoKeepsTheModeBack) {
  first_.extra_info("");
  first_.data.kz_mode = 3;
  ExtraInfo expected = info_of("", mode_before, "a=1");
  expected.text_len = length_before;
  expect_info(expected);
}

TEST_F(ExtraInfoGet, EmptySessionVariableLeavesItsOutputs) {
  first_.session_variable("");
  first_.data.kz_mode = 3;
  ExtraInfo expected = info_of("report", 3, "");
  expected.session_len = length_before;
  expect_info(expected);
}

TEST_F(ExtraInfoGet, BothEmptyWritesNothing) {
  first_.extra_info("");
  first_.session_variable("");
  first_.data.kz_mode = 3;
  expect_info(untouched_info());
}

TEST_F(ExtraInfoGet, LengthsAroundTheLongest) {
  for (const std::size_t length : {1u, 2u, 254u, 255u, 256u}) {
    SCOPED_TRACE(length);
    const std::string extra(length, 'e');
    const std::string session(length + 1, 's');
    first_.extra_info(extra);
    first_.session_variable(session);
    expect_info(info_of(extra, 0, session));
  }
}

TEST_F(ExtraInfoGet, BuffersOfTheGuaranteedSizesSuffice) {
  const std::unique_ptr<char[]> extra(new char[256]);
  const std::unique_ptr<char[]> session(new char[257]);
  first_.extra_info(std::string(256, 'e'));
  first_.session_variable(std::string(257, 's'));
  sb4 extra_len = 0, mode = 0, session_len = 0;
  EXPECT_EQ(KZCITnsServiceExtraInfoGet(service_.get(), extra.get(), &extra_len, &mode,
                                       session.get(), &session_len),
            0);
  EXPECT_EQ(std::string(extra.get(), 256), std::string(256, 'e'));
  EXPECT_EQ(std::string(session.get(), 257), std::string(257, 's'));
  EXPECT_EQ(extra_len, 256);
  EXPECT_EQ(session_len, 257);
}

// The copy ends at a zero byte; what the length leaves is filled with zeros.
TEST_F(ExtraInfoGet, ZeroByteEndsTheCopy) {
  first_.extra_info("ab\0cd"s);
  first_.session_variable("\0a=1"s);
  expect_info(info_of(filled("ab", 5), 0, filled("", 4)));
}

TEST_F(ExtraInfoGet, LoneZeroByteIsAText) {
  first_.extra_info("\0"s);
  first_.session_variable("\0"s);
  first_.data.kz_mode = 3;
  expect_info(info_of("\0"s, 3, "\0"s));
}

TEST_F(ExtraInfoGet, BytesArePassedThrough) {
  first_.extra_info("%s%n\xFF\x80\n\"'");
  first_.session_variable("\x01\xC3\xA9 a='(b)'");
  expect_info(info_of("%s%n\xFF\x80\n\"'", 0, "\x01\xC3\xA9 a='(b)'"));
}

TEST_F(ExtraInfoGet, ModeIsNarrowedTo32Bits) {
  struct Row {
    sb8 mode;
    sb4 handed_out;
  };
  const Row rows[] = {
      {0, 0},
      {1, 1},
      {-1, -1},
      {2147483647, 2147483647},
      {2147483648, std::numeric_limits<sb4>::min()},
      {4294967295, -1},
      {4294967296, 0},
      {4294967297, 1},
      {-2147483648LL, std::numeric_limits<sb4>::min()},
      {-2147483649LL, 2147483647},
      {-4294967296, 0},
      {std::numeric_limits<sb8>::max(), -1},
      {std::numeric_limits<sb8>::min(), 0},
  };
  for (const Row &row : rows) {
    SCOPED_TRACE(row.mode);
    first_.data.kz_mode = row.mode;
    expect_info(info_of("report", row.handed_out, "a=1"));
  }
}

// A length that exceeds the array is handed out as it stands, but neither what
// lies after the array is read nor what lies after the guaranteed size
// written.
TEST_F(ExtraInfoGet, LengthBeyondTheArray) {
  const std::string extra(256, 'e');
  const std::string session(257, 's');
  first_.extra_info(extra);
  first_.session_variable(session);
  for (const ub4 excess : {1u, 44u, 100u}) {
    SCOPED_TRACE(excess);
    first_.data.user_extra_info_len = 256 + excess;
    first_.data.session_variable_len = 257 + excess;
    ExtraInfo expected = info_of(extra, 0, session);
    expected.text_len = static_cast<sb4>(256 + excess);
    expected.session_len = static_cast<sb4>(257 + excess);
    expect_info(expected);
  }
}

TEST_F(ExtraInfoGet, LargestLength) {
  const std::string extra(256, 'e');
  const std::string session(257, 's');
  first_.extra_info(extra);
  first_.session_variable(session);
  first_.data.user_extra_info_len = 4294967295;
  first_.data.session_variable_len = 2147483648;
  ExtraInfo expected = info_of(extra, 0, session);
  expected.text_len = -1;
  expected.session_len = std::numeric_limits<sb4>::min();
  expect_info(expected);
}

TEST_F(ExtraInfoGet, LengthBeyondTheArrayAfterAZeroByte) {
  first_.extra_info(in_pattern("ab\0"s, 256));
  first_.session_variable(in_pattern("c\0"s, 257));
  first_.data.user_extra_info_len = 300;
  first_.data.session_variable_len = 300;
  ExtraInfo expected = info_of(filled("ab", 256), 0, filled("c", 257));
  expected.text_len = 300;
  expected.session_len = 300;
  expect_info(expected);
}

TEST_F(ExtraInfoGet, FirstDescriptionOnly) {
  second_.extra_info("other");
  second_.session_variable("b=2");
  second_.data.kz_mode = 9;
  add_second_description();
  expect_info(info_of("report", 0, "a=1"));
}

TEST_F(ExtraInfoGet, EmptyTextsAreNotSoughtInTheSecondDescription) {
  first_.extra_info("");
  first_.session_variable("");
  add_second_description();
  expect_info(untouched_info());
}

TEST_F(ExtraInfoGet, AddressesAreNotNeeded) {
  first_.des.address_list = nullptr;
  first_.des.address_list_count = 0;
  expect_info(info_of("report", 0, "a=1"));
}

TEST_F(ExtraInfoGet, NullArguments) {
  for (unsigned nulls = 1; nulls < 64; ++nulls) {
    SCOPED_TRACE(nulls);
    support::reset_platform();
    const auto unless_null = [nulls](unsigned bit, auto *pointer) {
      return nulls & (1u << bit) ? nullptr : pointer;
    };
    info_ = untouched_info();
    KZCITnsService *const service = unless_null(0, service_.get());
    char *const extra = unless_null(1, info_.text.data());
    sb4 *const extra_len = unless_null(2, &info_.text_len);
    char *const session = unless_null(3, info_.session.data());
    sb4 *const session_len = unless_null(4, &info_.session_len);
    sb4 *const mode = unless_null(5, &info_.mode);
    EXPECT_EQ(KZCITnsServiceExtraInfoGet(service, extra, extra_len, mode, session, session_len),
              -2);
    EXPECT_EQ(info_, untouched_info());
    EXPECT_EQ(support::log_records(),
              Lines{"ERROR invalid handle, tns_service:" + support::pointer_text(service) +
                    ", extra_info:" + support::pointer_text(extra) +
                    ", extra_info_len:" + support::pointer_text(extra_len) +
                    ", session_variable:" + support::pointer_text(session) +
                    ", session_variable_len:" + support::pointer_text(session_len)});
  }
}

TEST_F(ExtraInfoGet, NoDescription) {
  service_->description_count = 0;
  expect_no_info("description is NULL, count:0");
  service_->description = nullptr;
  expect_no_info("description is NULL, count:0");
  service_->description_count = 2;
  expect_no_info("description is NULL, count:2");
  service_->description_count = 4294967295;
  expect_no_info("description is NULL, count:4294967295");
}

TEST_F(ExtraInfoGet, NoConnectData) {
  first_.des.connect_data = nullptr;
  expect_no_info("con_data is NULL");
  add_second_description();
  expect_no_info("con_data is NULL");
}

/* ---- The link string ---- */

struct LinkRow {
  std::string host;
  std::string port;
  std::string service;
  sb8 use_default_sid;
  std::string dblink;
};

const LinkRow link_rows[] = {
    {"10.0.0.1", "2881", "sales", 0, "10.0.0.1:2881/sales"},
    {"10.0.0.1", "2881", "sales", 1, "10.0.0.1:2881"},
    {"10.0.0.1", "2881", "", 0, "10.0.0.1:2881/"},
    {"10.0.0.1", "2881", "", 1, "10.0.0.1:2881"},
    // Any number but 0 leaves the service out, one whose low 32 bits are 0 too.
    {"h", "1", "s", -1, "h:1"},
    {"h", "1", "s", 2, "h:1"},
    {"h", "1", "s", 4294967296, "h:1"},
    {"h", "1", "s", std::numeric_limits<sb8>::max(), "h:1"},
    {"h", "1", "s", std::numeric_limits<sb8>::min(), "h:1"},
    // Empty parts keep their separators.
    {"", "2881", "sales", 0, ":2881/sales"},
    {"h", "", "sales", 0, "h:/sales"},
    {"", "", "sales", 0, ":/sales"},
    {"", "", "", 0, ":/"},
    {"", "", "", 1, ":"},
    // Longest port, and an array that is full.
    {"h", "123456", "s", 0, "h:123456/s"},
    {"h", "1234567", "s", 0, "h:1234567/s"},
    // A zero byte ends a part.
    {"a\0b"s, "1\0002"s, "c\0d"s, 0, "a:1/c"},
    {"\0a"s, "\0001"s, "\0b"s, 0, ":/"},
    // Nothing in a part is special.
    {"%s%n", "%d", "%c", 0, "%s%n:%d/%c"},
    {"::1", "a/b", "c:d/e", 0, "::1:a/b/c:d/e"},
    {"\xFF\x80", "\xC3", "\xA9\n", 0, "\xFF\x80:\xC3/\xA9\n"},
};

TEST_F(DblinkGet, Forms) {
  for (const LinkRow &row : link_rows) {
    SCOPED_TRACE("expected link string " + row.dblink);
    first_.host(row.host);
    first_.port(row.port);
    first_.service_name(row.service);
    first_.data.use_default_sid = row.use_default_sid;
    expect_dblink(row.dblink);
  }
}

// The terminator is at 255 for every text that is longer than that.
TEST_F(DblinkGet, CutTo255Characters) {
  first_.port("1");
  first_.data.use_default_sid = 1;
  for (const std::size_t length : {253u, 254u, 255u, 256u, 257u, 258u}) {
    SCOPED_TRACE(length);
    const std::string host(length - 2, 'h');
    first_.host(host);
    expect_dblink(host + ":1");
    EXPECT_EQ(dblink_.text[std::min<std::size_t>(length, 255)], '\0');
    EXPECT_EQ(dblink_.length, static_cast<sb4>(length));
  }
}

TEST_F(DblinkGet, LongestHostAndPort) {
  first_.host(std::string(256, 'h'));
  first_.port("123456");
  first_.data.use_default_sid = 1;
  expect_dblink(std::string(256, 'h') + ":123456");
  EXPECT_EQ(dblink_.length, 263);
  EXPECT_EQ(dblink_.text.substr(0, 257), std::string(255, 'h') + '\0' + pattern);
}

TEST_F(DblinkGet, LongestOfAll) {
  first_.host(std::string(256, 'h'));
  first_.port("123456");
  first_.service_name(std::string(256, 's'));
  expect_dblink(std::string(256, 'h') + ":123456/" + std::string(256, 's'));
  EXPECT_EQ(dblink_.length, 520);
}

TEST_F(DblinkGet, CutInsideTheServiceName) {
  first_.host("h");
  first_.port("1");
  for (const std::size_t length : {250u, 251u, 252u, 256u}) {
    SCOPED_TRACE(length);
    first_.service_name(std::string(length, 's'));
    expect_dblink("h:1/" + std::string(length, 's'));
  }
}

TEST_F(DblinkGet, BufferOfTheGuaranteedSizeSuffices) {
  const std::unique_ptr<char[]> buffer(new char[256]);
  first_.host(std::string(256, 'h'));
  sb4 length = 0;
  EXPECT_EQ(KZCITnsServiceDblinkGet(service_.get(), buffer.get(), &length), 0);
  EXPECT_EQ(std::string(buffer.get(), 256), std::string(255, 'h') + '\0');
  EXPECT_EQ(length, 256 + 1 + 4 + 1 + 5);
}

// A length that exceeds the array prints the array and nothing after it, a
// length that is negative as a precision too.
TEST_F(DblinkGet, LengthBeyondTheArray) {
  const std::string host(257, 'h'), port(7, '9'), service(257, 's');
  for (const ub4 length : {258u, 300u, 2147483647u, 2147483648u, 4294967295u}) {
    SCOPED_TRACE(length);
    first_.host(host);
    first_.address.host_len = length;
    expect_dblink(host + ":2881/sales");
    first_.host("h");
    first_.port(port);
    first_.address.port_len = length;
    expect_dblink("h:" + port + "/sales");
    first_.port("1");
    first_.service_name(service);
    first_.data.service_name_len = length;
    expect_dblink("h:1/" + service);
    first_.port("2881");
    first_.service_name("sales");
  }
}

TEST_F(DblinkGet, PortLengthJustBeyondItsArray) {
  first_.port("1234567");
  for (const ub4 length : {8u, 9u, 13u}) {
    first_.address.port_len = length;
    expect_dblink("10.0.0.1:1234567/sales");
  }
}

TEST_F(DblinkGet, LengthBeyondTheArrayAfterAZeroByte) {
  first_.host("h\0x"s);
  first_.port("1\0x"s);
  first_.service_name("s\0x"s);
  first_.address.host_len = first_.address.port_len = first_.data.service_name_len = 4294967295;
  expect_dblink("h:1/s");
}

TEST_F(DblinkGet, ProtocolDoesNotMatter) {
  for (const std::string &protocol : {""s, "UDP"s, "TCPS"s, "junk!!"s}) {
    SCOPED_TRACE(protocol);
    first_.protocol(protocol);
    expect_dblink("10.0.0.1:2881/sales");
  }
  first_.address.protocol_len = 4294967295;
  expect_dblink("10.0.0.1:2881/sales");
}

TEST_F(DblinkGet, FirstDescriptionOnly) {
  second_.host("other");
  second_.service_name("other");
  second_.data.use_default_sid = 1;
  add_second_description();
  expect_dblink("10.0.0.1:2881/sales");
}

TEST_F(DblinkGet, FirstAddressListOnly) {
  second_.host("other");
  link_after(first_.list.le, second_.list.le);
  first_.des.address_list_count = 2;
  expect_dblink("10.0.0.1:2881/sales");
}

TEST_F(DblinkGet, FirstAddressOnly) {
  second_.host("other");
  link_after(first_.address.le, second_.address.le);
  first_.list.address_count = 2;
  expect_dblink("10.0.0.1:2881/sales");
}

TEST_F(DblinkGet, NullArguments) {
  for (unsigned nulls = 1; nulls < 8; ++nulls) {
    SCOPED_TRACE(nulls);
    support::reset_platform();
    dblink_ = Dblink();
    KZCITnsService *const service = nulls & 1 ? nullptr : service_.get();
    char *const text = nulls & 2 ? nullptr : dblink_.text.data();
    sb4 *const length = nulls & 4 ? nullptr : &dblink_.length;
    EXPECT_EQ(KZCITnsServiceDblinkGet(service, text, length), -2);
    EXPECT_EQ(dblink_, Dblink());
    EXPECT_EQ(support::log_records(),
              Lines{"ERROR invalid handle, tns_service:" + support::pointer_text(service) +
                    ", dblink_info:" + support::pointer_text(text) +
                    ", dblink_len:" + support::pointer_text(length)});
  }
}

TEST_F(DblinkGet, NoDescription) {
  service_->description_count = 0;
  expect_no_dblink("description is NULL, count:0");
  service_->description = nullptr;
  expect_no_dblink("description is NULL, count:0");
  service_->description_count = 4294967295;
  expect_no_dblink("description is NULL, count:4294967295");
}

TEST_F(DblinkGet, NoAddressList) {
  first_.des.address_list_count = 0;
  expect_no_dblink("address_list is NULL, count:0");
  first_.des.address_list = nullptr;
  expect_no_dblink("address_list is NULL, count:0");
  first_.des.address_list_count = 4294967295;
  expect_no_dblink("address_list is NULL, count:4294967295");
}

TEST_F(DblinkGet, NoAddress) {
  first_.list.address_count = 0;
  expect_no_dblink("address is NULL, count:0");
  first_.list.address = nullptr;
  expect_no_dblink("address is NULL, count:0");
  first_.list.address_count = 4294967295;
  expect_no_dblink("address is NULL, count:4294967295");
}

TEST_F(DblinkGet, NoConnectData) {
  first_.des.connect_data = nullptr;
  expect_no_dblink("con_data is NULL");
}

// The records are looked for from the top down, connect data last.
TEST_F(DblinkGet, FirstMissingRecordIsNamed) {
  first_.des.connect_data = nullptr;
  first_.list.address = nullptr;
  expect_no_dblink("address is NULL, count:1");
  first_.des.address_list = nullptr;
  expect_no_dblink("address_list is NULL, count:1");
  service_->description = nullptr;
  expect_no_dblink("description is NULL, count:1");
}

TEST_F(DblinkGet, MissingRecordsAreNotSoughtInTheSecondDescription) {
  add_second_description();
  first_.des.connect_data = nullptr;
  expect_no_dblink("con_data is NULL");
  first_.des.address_list = nullptr;
  first_.des.address_list_count = 0;
  expect_no_dblink("address_list is NULL, count:0");
}

TEST_F(DblinkGet, AddressIsNotSoughtInTheSecondList) {
  link_after(first_.list.le, second_.list.le);
  first_.des.address_list_count = 2;
  first_.list.address = nullptr;
  first_.list.address_count = 0;
  expect_no_dblink("address is NULL, count:0");
}

/* ---- Both ---- */

TEST_F(Accessors, RecordsStayAsTheyAre) {
  std::vector<char> service(sizeof(KZCITnsService));
  std::memcpy(service.data(), service_.get(), service.size());
  std::vector<char> branch(sizeof(Branch));
  std::memcpy(branch.data(), static_cast<const void *>(&first_), branch.size());
  EXPECT_EQ(extra_info(service_.get()), 0);
  EXPECT_EQ(dblink(service_.get()), 0);
  EXPECT_EQ(std::memcmp(service.data(), service_.get(), service.size()), 0);
  EXPECT_EQ(std::memcmp(branch.data(), static_cast<const void *>(&first_), branch.size()), 0);
}

TEST_F(Accessors, AnswerTheSameTwice) {
  for (int i = 0; i < 2; ++i) {
    expect_info(info_of("report", 0, "a=1"));
    expect_dblink("10.0.0.1:2881/sales");
  }
}

// Services as they are built.
class BuiltService : public Accessors {
 protected:
  void SetUp() override {
    Accessors::SetUp();
    ASSERT_EQ(KZCITnsInit(&tns_), 0);
  }
  void TearDown() override {
    EXPECT_EQ(KZCITnsClear(&tns_), 0);
    EXPECT_EQ(support::live_blocks().size(), 0u);
    Accessors::TearDown();
  }

  // Builds "sales" from a file with this text.
  void build_from_file(const std::string &text, const std::string &name = "sales") {
    environment_.set("KZCI_TNS_FILE", folder_.write("names", text));
    ASSERT_EQ(support::build(tns_, name), (support::Outcome{0, 1}));
    records_ = support::log_records();
  }
  void build_descriptor(const std::string &text) {
    ASSERT_EQ(support::build(tns_, text), (support::Outcome{0, 1}));
    records_ = support::log_records();
  }

  void expect_info(const ExtraInfo &expected) {
    EXPECT_EQ(extra_info(tns_.tns_service), 0);
    EXPECT_EQ(info_, expected);
    EXPECT_EQ(support::log_records(), records_);
  }
  void expect_dblink(const std::string &text) {
    EXPECT_EQ(dblink(tns_.tns_service), 0);
    EXPECT_EQ(dblink_, dblink_of(text));
    EXPECT_EQ(support::log_records(), records_);
  }
  // What was logged since the service was built.
  Lines new_records() const {
    const Lines all = support::log_without_pointers();
    return {all.begin() + static_cast<std::ptrdiff_t>(records_.size()), all.end()};
  }

  KZCITns tns_;
  Lines records_;
  support::Environment environment_;
  support::TemporaryFolder folder_;
};

TEST_F(BuiltService, EveryValueFromADescriptor) {
  build_descriptor(
      "(DESCRIPTION=(ADDRESS=(PROTOCOL=TCP)(HOST=10.0.0.1)(PORT=2881))"
      "(CONNECT_DATA=(SERVICE_NAME=sales)(KZ_USER_EXTRA_INFO=report)(KZ_MODE=1)"
      "(SESSION_VARIABLE=\"a=1;b=2\")))");
  expect_info(info_of("report", 1, "a=1;b=2"));
  expect_dblink("10.0.0.1:2881/sales");
}

TEST_F(BuiltService, DefaultSidLeavesTheServiceOut) {
  build_descriptor(
      "(DESCRIPTION=(ADDRESS=(HOST=10.0.0.1)(PORT=2881))"
      "(CONNECT_DATA=(SERVICE_NAME=sales)(USE_DEFAULT_SID=1)))");
  expect_info(untouched_info());
  expect_dblink("10.0.0.1:2881");
}

TEST_F(BuiltService, EmptyServiceNameKeepsTheSlash) {
  build_descriptor(
      "(DESCRIPTION=(ADDRESS=(HOST=10.0.0.1)(PORT=2881))(CONNECT_DATA=(USE_DEFAULT_SID=0)))");
  expect_dblink("10.0.0.1:2881/");
}

TEST_F(BuiltService, ModeGoesWithExtraInfo) {
  build_descriptor(
      "(DESCRIPTION=(ADDRESS=(HOST=h)(PORT=1))(CONNECT_DATA=(KZ_MODE=5)(SESSION_VARIABLE=v)))");
  ExtraInfo expected = info_of("", mode_before, "v");
  expected.text_len = length_before;
  expect_info(expected);
}

TEST_F(BuiltService, LongestHostAndPort) {
  const std::string host(256, 'h');
  build_from_file("sales=(DESCRIPTION=(ADDRESS=(HOST=" + host +
                  ")(PORT=123456))(CONNECT_DATA=(SERVICE_NAME=s)(USE_DEFAULT_SID=1)))");
  expect_dblink(host + ":123456");
  EXPECT_EQ(dblink_.length, 263);
}

TEST_F(BuiltService, LongestTexts) {
  const std::string extra(256, 'e'), session(256, 's');
  build_from_file("sales=(DESCRIPTION=(ADDRESS=(HOST=h)(PORT=1))(CONNECT_DATA=(KZ_MODE=-7)" +
                  ("(KZ_USER_EXTRA_INFO=" + extra) + ")(SESSION_VARIABLE=" + session + ")))");
  expect_info(info_of(extra, -7, session));
}

TEST_F(BuiltService, FirstOfTwoDescriptions) {
  build_from_file(
      "sales=(DESCRIPTION=(ADDRESS=(HOST=one)(PORT=1))"
      "(CONNECT_DATA=(SERVICE_NAME=a)(KZ_USER_EXTRA_INFO=x)(KZ_MODE=1)(SESSION_VARIABLE=v)))\n"
      "(DESCRIPTION=(ADDRESS=(HOST=two)(PORT=2))"
      "(CONNECT_DATA=(SERVICE_NAME=b)(KZ_USER_EXTRA_INFO=yy)(KZ_MODE=2)(SESSION_VARIABLE=ww)))\n");
  ASSERT_EQ(tns_.tns_service->description_count, 2u);
  expect_info(info_of("x", 1, "v"));
  expect_dblink("one:1/a");
}

TEST_F(BuiltService, FirstOfSeveralListsAndAddresses) {
  build_from_file(
      "sales=(DESCRIPTION=(ADDRESS_LIST=(ADDRESS=(HOST=one)(PORT=1))(ADDRESS=(HOST=two)(PORT=2)))"
      "(ADDRESS_LIST=(ADDRESS=(HOST=three)(PORT=3)))(CONNECT_DATA=(SERVICE_NAME=a)))");
  ASSERT_EQ(tns_.tns_service->description->address_list_count, 2u);
  expect_dblink("one:1/a");
}

TEST_F(BuiltService, WithoutConnectData) {
  build_descriptor("(DESCRIPTION=(ADDRESS=(HOST=h)(PORT=1)))");
  EXPECT_EQ(extra_info(tns_.tns_service), -1);
  EXPECT_EQ(dblink(tns_.tns_service), -1);
  EXPECT_EQ(info_, untouched_info());
  EXPECT_EQ(dblink_, Dblink());
  EXPECT_EQ(new_records(), (Lines{"ERROR con_data is NULL", "ERROR con_data is NULL"}));
}

TEST_F(BuiltService, WithoutAddresses) {
  build_descriptor("(DESCRIPTION=(CONNECT_DATA=(SERVICE_NAME=a)(KZ_USER_EXTRA_INFO=x)))");
  EXPECT_EQ(dblink(tns_.tns_service), -1);
  EXPECT_EQ(dblink_, Dblink());
  EXPECT_EQ(new_records(), Lines{"ERROR address_list is NULL, count:0"});
}

// The reserved entry has no description.
TEST_F(BuiltService, ReservedEntry) {
  build_from_file("KZCISYSTEMVARIABLES=(SESSION_VARIABLE=v)\n", "KZCISYSTEMVARIABLES");
  EXPECT_EQ(extra_info(tns_.tns_service), -1);
  EXPECT_EQ(dblink(tns_.tns_service), -1);
  EXPECT_EQ(info_, untouched_info());
  EXPECT_EQ(new_records(),
            (Lines{"ERROR description is NULL, count:0", "ERROR description is NULL, count:0"}));
}

}  // namespace
