// What every builder of a block does alike, for each builder and each of its keys: its
// arguments, the protocol of items, what ends a block, and values by their kind. What is
// special to a builder is in the tests of its own.
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstring>
#include <ostream>
#include <string>
#include <vector>

#include "kzoci/oci_tnsname.h"
#include "support/builder_body.h"
#include "support/expected_log.h"
#include "support/key_inputs.h"
#include "support/model_numbers.h"
#include "support/parsing.h"

namespace {

using namespace builder_body;
using namespace expected_log;
using support::Key;
using support::Place;
using support::Takes;

struct Builder {
  std::string name;
  Place place;
  sword (*build)(void *parent, KZCITnsParseParams *params);
  void (*start)(void *parent);
  const void *(*record)(const void *parent);  // what the values went into
  std::string called;                         // the name in the first message
  std::string argument;                       // of the parent, there
  std::string key_met;                        // stands before "get key_type"
  std::string key_refused;
  std::string allocates;  // size and tag; empty: the values go into the parent itself
  std::string not_allocated;
  Lines built;  // when the block's first key that takes a value has its sample
  Lines (*failed)(sword status);

  std::string call(const std::string &record, const std::string &params) const {
    return "DEBUG call " + called + " with params [" + argument + ":" + record +
           "], [parse_params:" + params + "]";
  }
  Lines begins(int reading = mode) const {
    const Lines block = allocates.empty() ? Lines{} : allocated(allocates);
    return Lines{call("PTR", "PTR")} + block + refill(reading);
  }
  Lines handling(int number) const {
    return {"DEBUG " + key_met + "get key_type " + std::to_string(number)};
  }
  Item item(const Key &key, const std::string &value) const {
    return {std::string(key.word), key.number, handling(key.number), value};
  }
};

void PrintTo(const Builder &builder, std::ostream *out) { *out << builder.name; }

template <class Parent, sword (*function)(Parent *, KZCITnsParseParams *)>
sword build_in(void *parent, KZCITnsParseParams *params) {
  return function(static_cast<Parent *>(parent), params);
}

template <class Parent, sword (*init)(Parent *)>
void start(void *parent) {
  ASSERT_EQ(init(static_cast<Parent *>(parent)), 0);
}

void start_service(void *parent) {
  ASSERT_EQ(KZCITnsServiceInit(static_cast<KZCITnsService *>(parent), 0, ""), 0);
}

// No strategy stands where a name is to set one.
void start_blacklist(void *parent) {
  auto *const black = static_cast<KZCIBlacklistConf *>(parent);
  ASSERT_EQ(KZCIBlacklistConfInit(black), 0);
  black->remove_strategy = LB_OPTION_MAX;
  black->append_strategy = LB_OPTION_MAX;
}

template <auto child, class Parent>
const void *child_of(const void *parent) {
  return static_cast<const Parent *>(parent)->*child;
}

const void *itself(const void *parent) { return parent; }

// A description that cannot be allocated is reported with the size of a service.
const Builder builders[] = {
    {"Description",
     Place::description,
     build_in<KZCITnsService, KZCIDescriptionBuild>,
     start_service,
     child_of<&KZCITnsService::description, KZCITnsService>,
     "KZCIDescriptionBuild",
     "tns_service",
     "bulid_description ",
     "KZCIDescriptionBuild get error key_type",
     description_block,
     "malloc description error, malloc size:" + std::to_string(sizeof(KZCITnsService)),
     {"DEBUG success to build description, address count:0"},
     [](sword) {
       return Lines{"ERROR something error in build description", "FREE KZCIDescription"};
     }},
    {"AddressList",
     Place::address_list,
     build_in<KZCIDescription, KZCIAddressListBuild>,
     start<KZCIDescription, KZCIDescriptionInit>,
     child_of<&KZCIDescription::address_list, KZCIDescription>,
     "KZCIAddressListBuild",
     "des",
     "KZCIAddressListBuild ",
     "KZCIAddressListBuild get error key_type",
     list_block,
     "malloc address_list error, malloc size:" + std::to_string(sizeof(KZCIAddressList)),
     {"DEBUG success to call KZCIAddressListBuild, address count:0"},
     [](sword) {
       return Lines{"ERROR something error in KZCIAddressListBuild", "FREE address_list"};
     }},
    {"Address",
     Place::address,
     build_in<KZCIAddressList, KZCIAddressBuild>,
     start<KZCIAddressList, KZCIAddressListInit>,
     child_of<&KZCIAddressList::address, KZCIAddressList>,
     "KZCIAddressBuild",
     "address_list",
     "KZCIAddressBuild ",
     "KZCIAddressBuild get error key_type",
     address_block,
     "malloc address error, malloc size:" + std::to_string(sizeof(KZCIAddress)),
     {},
     [](sword status) {
       return Lines{"ERROR something error in build address, status:" + std::to_string(status),
                    "FREE address"};
     }},
    {"ConnectData",
     Place::connect_data,
     build_in<KZCIDescription, KZCIConnectDataBuild>,
     start<KZCIDescription, KZCIDescriptionInit>,
     child_of<&KZCIDescription::connect_data, KZCIDescription>,
     "KZCIConnectDataBuild",
     "des",
     "KZCIConnectDataBuild ",
     "KZCIConnectDataBuild get error key_type",
     data_block,
     "malloc connect_data error, malloc size:" + std::to_string(sizeof(KZCIConnectData)),
     {"DEBUG success to call KZCIConnectDataBuild, service_name:x"},
     [](sword) {
       return Lines{"ERROR something error in KZCIConnectDataBuild", "FREE KZCIConnectData"};
     }},
    {"RemoveStrategy",
     Place::remove_strategy,
     build_in<KZCIBlacklistConf, KZCIRemoveStrategyBuild>,
     start_blacklist,
     itself,
     "KZCIAddressListBuild",
     "black",
     "KZCIRemoveStrategyBuild ",
     "get error key_type",
     "",
     "",
     {"DEBUG success to call KZCIRemoveStrategyBuild"},
     [](sword) { return Lines{"ERROR something error in KZCIRemoveStrategyBuild"}; }},
    {"AppendStrategy",
     Place::append_strategy,
     build_in<KZCIBlacklistConf, KZCIAppendStrategyBuild>,
     start_blacklist,
     itself,
     "KZCIAddressListBuild",
     "black",
     "",
     "get error key_type",
     "",
     "",
     {"DEBUG success to call KZCIAppendStrategyBuild"},
     [](sword) { return Lines{"ERROR something error in KZCIAppendStrategyBuild"}; }},
    {"Blacklist",
     Place::blacklist,
     build_in<KZCIBlacklistConf, KZCIBlacklistConfBuild>,
     start_blacklist,
     itself,
     "KZCIBlacklistConfBuild",
     "black_list_conf",
     "KZCIAddressListBuild ",
     "build_black_list_conf get error key_type",
     "",
     "",
     {"DEBUG success to call build_black_list_conf"},
     [](sword) { return Lines{"ERROR something error in build_black_list_conf"}; }},
};

// What is logged of a number that was converted, refused or not, beyond the value.
Lines report_of(const Key &key, sb8 number) {
  if (key.word != "RETRY_DELAY") return {};
  return {"DEBUG oracle RETRY_DELAY=" + std::to_string(static_cast<int>(number))};
}

// The number in a field of its lower four bytes or all eight, whatever the order of bytes.
template <class Place>
void put(Place *at, sb8 number, std::size_t size) {
  const auto lower = static_cast<ub4>(number);
  std::memcpy(at, size == sizeof lower ? static_cast<const void *>(&lower) : &number, size);
}

class BuilderContract : public testing::TestWithParam<Builder> {
 protected:
  void TearDown() override {
    EXPECT_EQ(support::bad_releases(), 0u);
    support::reset_platform();
  }

  void begin() {
    support::reset_platform();
    builder.start(&parent_);
    before_ = parent_;
  }

  bool is_untouched() const { return parent_ == before_; }

  // The parent is left alone, or, when the values go into it, holds the number that was
  // read last.
  void expect_record(const Key *key, sb8 number) {
    if (key != nullptr && builder.allocates.empty())
      put(before_.data() + key->field.at, number, key->field.size);
    EXPECT_TRUE(is_untouched());
  }

  void expect_failure(const Fault &fault, const Key *read = nullptr, sb8 number = 0) {
    SCOPED_TRACE(fault.name + ": " + fault.input);
    begin();
    Body input(fault.input);
    EXPECT_EQ(builder.build(&parent_, &input.params), -1);
    EXPECT_EQ(joined(support::events()),
              joined(builder.begins() + fault.log + builder.failed(fault.status)));
    EXPECT_EQ(input.unread(), fault.unread);
    EXPECT_EQ(live(), Lines{});
    expect_record(read, number);
  }

  void expect_value(const Key &key, const std::string &value, sb8 number) {
    const void *const record = builder.record(&parent_);
    ASSERT_NE(record, nullptr);
    if (key.field.size == 0) return;
    if (key.takes == Takes::text)
      EXPECT_EQ(support::text_in(record, key.field), value);
    else
      EXPECT_EQ(support::number_in(record, key.field), number);
  }

  void expect_success(const Lines &log) {
    EXPECT_EQ(joined(support::events()), joined(log));
    EXPECT_EQ(live(), builder.allocates.empty() ? Lines{} : Lines{builder.allocates});
  }

  // The keys that take a value.
  std::vector<Key> values() const {
    std::vector<Key> out;
    for (const Key &key : support::keys_of(builder.place))
      if (key.takes != Takes::block) out.push_back(key);
    return out;
  }

  static sb8 number_of(const Key &key, const std::string &value) {
    for (const support::Word &word : key.words)
      if (word.text == value) return word.value;
    return key.takes == Takes::integer ? model::number_of(value).value : 0;
  }

  // "(KEY=value" up to the value's end.
  Lines read(const Key &key, const std::string &text) const {
    return item_begins(builder.item(key, text)) + value(text) +
           (key.takes == Takes::integer ? report_of(key, model::number_of(text).value) : Lines{});
  }

  // The first key with its sample; of a block without values, a block in it.
  Item good_item() const {
    const Key &key = support::keys_of(builder.place).front();
    const auto keys = values();
    return keys.empty() ? builder.item(key, "(TIMEOUT=7)")
                        : builder.item(keys.front(), support::sample_value(keys.front()));
  }

  Lines good_item_read() const {
    const auto keys = values();
    if (!keys.empty()) return read(keys.front(), support::sample_value(keys.front()));
    return item_begins(good_item()) +
           Lines{"DEBUG call KZCIAddressListBuild with params [black:PTR], [parse_params:PTR]"} +
           key_word("TIMEOUT", LB_TIMEOUT) +
           Lines{"DEBUG KZCIRemoveStrategyBuild get key_type 12"} + value("7") + block_end() +
           Lines{"DEBUG success to call KZCIRemoveStrategyBuild"};
  }

  void expect_good_item() {
    if (!values().empty()) {
      const std::string value = good_item().value;
      expect_value(values().front(), value, number_of(values().front(), value));
    } else {
      expect_value(*support::key_in(Place::remove_strategy, "TIMEOUT"), "", 7);
    }
  }

  const Builder &builder = GetParam();
  alignas(std::max_align_t) std::array<char, sizeof(KZCITnsService)> parent_ = {};
  std::array<char, sizeof(KZCITnsService)> before_ = {};
};

INSTANTIATE_TEST_SUITE_P(Of, BuilderContract, testing::ValuesIn(builders),
                         [](const auto &info) { return info.param.name; });

// ------------------------------------------------------------------------ arguments

TEST_P(BuilderContract, NamesItsArgumentsInTheLog) {
  begin();
  Body input(")");
  builder.build(&parent_, &input.params);
  EXPECT_EQ(support::log_records().front(),
            builder.call(support::pointer_text(&parent_), support::pointer_text(&input.params)));
}

TEST_P(BuilderContract, NullArgumentsAreRefusedBeforeAnythingIsDone) {
  begin();
  Body input("(NAME=T))");
  EXPECT_EQ(builder.build(nullptr, &input.params), -2);
  EXPECT_EQ(builder.build(&parent_, nullptr), -2);
  EXPECT_EQ(builder.build(nullptr, nullptr), -2);
  const Lines refusal = {"ERROR invalid handle, handle is NULL"};
  EXPECT_EQ(joined(support::events()), joined(Lines{builder.call("NULL", "PTR")} + refusal +
                                              Lines{builder.call("PTR", "NULL")} + refusal +
                                              Lines{builder.call("NULL", "NULL")} + refusal));
  EXPECT_EQ(input.unread(), "(NAME=T))");
  EXPECT_TRUE(is_untouched());
}

TEST_P(BuilderContract, NoMemoryForItsRecordLeavesTheInputUnread) {
  begin();
  support::fail_allocation(1);
  if (builder.allocates.empty()) {
    Body input('(' + good_item().key + '=' + good_item().value + "))");
    EXPECT_EQ(builder.build(&parent_, &input.params), 0);
    EXPECT_EQ(support::allocation_count(), 0u);
    return;
  }
  Body input("(NAME=T))");
  EXPECT_EQ(builder.build(&parent_, &input.params), -1);
  EXPECT_EQ(joined(support::events()),
            joined(Lines{builder.call("PTR", "PTR")} + refused(builder.allocates) +
                   Lines{"ERROR " + builder.not_allocated}));
  EXPECT_EQ(input.unread(), "(NAME=T))");
  EXPECT_TRUE(is_untouched());
}

// ---------------------------------------------------------------------------- items

TEST_P(BuilderContract, FaultsBeforeAValue) {
  for (const Key &key : support::keys_of(builder.place))
    for (const Fault &fault : key_faults(builder.item(key, ""))) expect_failure(fault);
}

TEST_P(BuilderContract, FaultsAfterAValue) {
  for (const Key &key : values()) {
    const std::string sample = support::sample_value(key);
    for (const Fault &fault : closing_faults(builder.item(key, sample), report_of(key, 1234567)))
      expect_failure(fault, &key, number_of(key, sample));
  }
}

TEST_P(BuilderContract, KeyWordsOfOtherBlocksAreRefused) {
  for (const Fault &fault : refused_words(builder.place, builder.key_met, builder.key_refused))
    expect_failure(fault);
}

TEST_P(BuilderContract, AcceptsWhatEndsAfterACompleteItem) {
  for (const Ending &ending : good_endings()) {
    SCOPED_TRACE(ending.text);
    begin();
    const Item item = good_item();
    Body input('(' + item.key + '=' + item.value + ')' + ending.text);
    EXPECT_EQ(builder.build(&parent_, &input.params), 0);
    expect_success(builder.begins() + good_item_read() + ending.log + builder.built);
    EXPECT_EQ(input.unread(), ending.unread);
    EXPECT_EQ(input.params.tns_token_type, TNS_RIGHT_PARENTHESES);
    expect_good_item();
  }
}

TEST_P(BuilderContract, LeavesTheTokenBeforeAFaultAsTheLastOne) {
  const Item item = good_item();
  const struct {
    std::string text;
    KZCITnsTokenType last;
  } rows[] = {{"(", TNS_LEFT_PARENTHESES},
              {'(' + item.key + ')', TNS_KEY},
              {'(' + item.key + "=)", TNS_EQUAL_SIGN}};
  for (const auto &row : rows) {
    SCOPED_TRACE(row.text);
    // Keys that are followed by enough characters are read in another way.
    for (const std::size_t blanks : {0, 32}) {
      begin();
      Body input(row.text + std::string(blanks, ' '));
      EXPECT_EQ(builder.build(&parent_, &input.params), -1);
      EXPECT_EQ(input.params.tns_token_type, row.last);
    }
  }
}

TEST_P(BuilderContract, ReadsFromAFileAsWell) {
  begin();
  const Item item = good_item();
  support::FileState file('(' + item.key + '=' + item.value + "))");
  file.params.tns_token_type = TNS_EQUAL_SIGN;
  EXPECT_EQ(builder.build(&parent_, &file.params), 0);
  expect_success(builder.begins(TNS_MODE_FILE) + good_item_read() + block_end() + builder.built);
  expect_good_item();
}

// --------------------------------------------------------------------------- values

TEST_P(BuilderContract, ValuesContinueAcrossARefill) {
  constexpr std::size_t slice = 1024;
  for (const Key &key : values()) {
    SCOPED_TRACE(key.word);
    begin();
    const std::string sample = support::sample_value(key);
    const std::string text = '(' + std::string(key.word) + '=';
    Body input(std::string(slice - text.size() - 1, ' ') + text + sample + "))");
    EXPECT_EQ(builder.build(&parent_, &input.params), 0);
    EXPECT_EQ(input.unread(), ")");
    const Lines expected = builder.begins() + item_begins(builder.item(key, sample)) +
                           refill(mode) + value(sample) + report_of(key, 1234567) + block_end();
    Lines seen = support::events();
    seen.resize(expected.size());
    EXPECT_EQ(joined(seen), joined(expected));
    expect_value(key, sample, number_of(key, sample));
  }
}

TEST_P(BuilderContract, IntegersAreKeptAsWritten) {
  for (const Key &key : values()) {
    if (key.takes != Takes::integer) continue;
    for (const GoodInteger &row : good_integers) {
      const std::string text = '(' + std::string(key.word) + '=' + row.text + ')';
      SCOPED_TRACE(text);
      begin();
      Body input(text + ')');
      EXPECT_EQ(builder.build(&parent_, &input.params), 0);
      EXPECT_EQ(input.unread(), ")");
      EXPECT_EQ(support::warnings_and_errors(), block_end());
      expect_value(key, "", row.number);
    }
  }
}

// A number that is refused is stored all the same.
TEST_P(BuilderContract, TextsThatAreNoIntegersAreRefused) {
  for (const Key &key : values()) {
    if (key.takes != Takes::integer) continue;
    for (const std::string &text : bad_integers()) {
      const std::string bare = unquoted(text);
      const sb8 number = model::number_of(bare).value;
      expect_failure({"no integer", '(' + std::string(key.word) + '=' + text + "))",
                      item_begins(builder.item(key, "")) + value(bare) + not_a_number(bare) +
                          report_of(key, number),
                      "))"},
                     &key, number);
    }
  }
}

// A value that is not read leaves the key word in its place.
TEST_P(BuilderContract, ValuesThatCannotBeReadAreTakenFromTheirKeyWord) {
  for (const Key &key : values()) {
    const Item item = builder.item(key, "");
    const bool any_text = key.takes == Takes::text && key.words.empty();
    const bool is_stored = key.takes == Takes::integer;
    Lines verdict = no_text();
    if (key.takes == Takes::word) verdict = {"ERROR " + std::string(key.complaint) + item.key};
    if (is_stored) verdict = not_a_number(item.key) + report_of(key, 0);
    for (const Fault &fault : missing_values(item, verdict, any_text ? 100 : -1))
      expect_failure(fault, is_stored ? &key : nullptr, 0);
  }
}

}  // namespace
