// What the tests of single builders share: a block's body as input, events as
// one text, and the faults that every kind of block meets in the same way.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "expected_log.h"
#include "joined.h"
#include "keys.h"
#include "parsing.h"

namespace builder_body {

using expected_log::operator+;
using support::joined;
using support::Lines;

constexpr int mode = TNS_MODE_DESCRIPTION;

// A parse state right after a block's "=", where a builder is called.
class Body : public support::DescriptorState {
 public:
  explicit Body(std::string_view text) : DescriptorState(text) {
    params.tns_token_type = TNS_EQUAL_SIGN;
  }

  // The input that is not consumed, at hand or still to be read.
  std::string unread() const {
    const std::string at_hand(params.tns_buffer + params.buffer_pos,
                              params.buffer_len - params.buffer_pos);
    return at_hand + std::string(params.description + params.description_offset,
                                 static_cast<std::size_t>(params.description_len) -
                                     static_cast<std::size_t>(params.description_offset));
  }
};

inline std::string block(std::size_t size, const std::string &tag) {
  return std::to_string(size) + " " + tag;
}

inline const std::string description_block = block(sizeof(KZCIDescription), "KZCIDescription");
inline const std::string list_block = block(sizeof(KZCIAddressList), "address_list");
inline const std::string address_block = block(sizeof(KZCIAddress), "address");
inline const std::string data_block = block(sizeof(KZCIConnectData), "KZCIConnectData");

inline std::string service_block(const std::string &name, const std::string &tag) {
  return block(sizeof(KZCITnsService) + name.size(), tag);
}

inline Lines allocated(const std::string &what) { return {"MALLOC " + what}; }
inline Lines refused(const std::string &what) { return {"MALLOC FAILS " + what}; }
inline Lines release(const std::string &tag) { return {"FREE " + tag}; }

// The blocks that are allocated now, in the order of their allocation.
inline Lines live() {
  Lines out;
  for (const support::Block &b : support::live_blocks()) out.push_back(block(b.size, b.tag));
  return out;
}

// A value that was read. "%.*s" prints it up to its first zero byte.
inline Lines value(const std::string &text) {
  return {"DEBUG get key size:" + std::to_string(text.size()) + ", key:" + text.c_str()};
}

// A value that another token stands for.
inline Lines no_value(int met) { return expected_log::mismatch(TNS_KEY, met); }

// One input that a builder refuses: the records between the first refill and
// the builder's verdict, what is left of the input, the status of the loop and
// the blocks that stay allocated.
struct Fault {
  std::string name;
  std::string input;
  Lines log;
  std::string unread;
  sword status = -1;
  Lines left = {};
};

// An item of a block: key word, the builder's line for it, and a good value.
struct Item {
  std::string key;
  int type;
  Lines handling;
  std::string value;
};

inline Lines item_begins(const Item &item) {
  return expected_log::key_word(item.key, item.type) + item.handling;
}

inline Lines read_item(const Item &item, const std::string &text) {
  return item_begins(item) + value(text);
}

// The beginnings of records, up to the first token of their bodies.
inline Lines new_description() {
  return expected_log::description_call() + allocated(description_block);
}

inline Lines new_list() { return expected_log::list_begins() + allocated(list_block); }

inline Lines new_listed_address() {
  return expected_log::listed_address_begins() + allocated(address_block);
}

inline Lines new_implied_list() {
  return expected_log::description_key("ADDRESS", LB_ADDRESS) + allocated(list_block);
}

inline Lines new_bare_address() { return expected_log::address_call() + allocated(address_block); }

inline Lines new_data() { return expected_log::data_begins() + allocated(data_block); }

// "(ADDRESS=(HOST=name))" of an address list, and of a description.
inline Lines listed_address(const std::string &name) {
  return new_listed_address() + expected_log::host(name) + expected_log::block_end();
}

inline Lines bare_address(const std::string &name) {
  return new_implied_list() + new_bare_address() + expected_log::host(name) +
         expected_log::block_end();
}

// Faults in front of an item's value.
inline std::vector<Fault> key_faults(const Item &item) {
  using namespace expected_log;
  const std::string &k = item.key;
  const Lines word = key_word(k, item.type);
  const std::string beyond_table = "KZLB_CONNECT_TIMEOUTS";
  return {
      {"empty block", ")", block_end(), ")"},
      {"empty input", "", ended(), "", 100},
      {"only blanks", " \t\r\n", input_end(mode), "", 100},
      {"only a comment", "# (" + k + "=v)", input_end(mode), "", 100},
      {"word for an item", k + "=v))", mismatch(TNS_LEFT_PARENTHESES, TNS_KEY), k + "=v))"},
      {"equal sign for an item", "=)", mismatch(TNS_LEFT_PARENTHESES, TNS_EQUAL_SIGN), "=)"},
      {"item without anything", "())", mismatch(TNS_KEY, TNS_RIGHT_PARENTHESES), "))"},
      {"block for a key", "((v)))", mismatch(TNS_KEY, TNS_LEFT_PARENTHESES), "(v)))"},
      {"equal sign for a key", "(=v))", mismatch(TNS_KEY, TNS_EQUAL_SIGN), "=v))"},
      {"end for a key", "(", input_end(mode), "", 100},
      {"end inside a key", "(" + k, key_cut_off(mode), "", 100},
      {"end after a key", "(" + k + " ", word + input_end(mode), "", 100},
      {"key alone", "(" + k + "))", word + mismatch(TNS_EQUAL_SIGN, TNS_RIGHT_PARENTHESES), "))"},
      {"block after a key", "(" + k + "(v)))",
       word + mismatch(TNS_EQUAL_SIGN, TNS_LEFT_PARENTHESES), "(v)))"},
      {"word after a key", "(" + k + " v))", word + mismatch(TNS_EQUAL_SIGN, TNS_KEY), "v))"},
      {"no key word", "(HOSTS=v))", unknown_word("HOSTS"), "=v))"},
      {"leading part of a key word", "(DESCRIPTIO=v))", unknown_word("DESCRIPTIO"), "=v))"},
      {"empty quotes for a key", "(\"\"=v))", unknown_word(""), "=v))"},
      {"key beyond the table", "(" + beyond_table + "=v))", longer_than_any_word(beyond_table),
       "=v))"},
  };
}

// Faults after a good value, after which a builder may report what it was.
inline std::vector<Fault> closing_faults(const Item &item, const Lines &report = {}) {
  using namespace expected_log;
  const std::string text = "(" + item.key + "=" + item.value;
  const Lines read = item_begins(item) + value(item.value) + report;
  return {
      {"block after the value", text + "(v)))",
       read + mismatch(TNS_RIGHT_PARENTHESES, TNS_LEFT_PARENTHESES), "(v)))"},
      {"equal sign after the value", text + "=v))",
       read + mismatch(TNS_RIGHT_PARENTHESES, TNS_EQUAL_SIGN), "=v))"},
      {"second value", text + " v))", read + mismatch(TNS_RIGHT_PARENTHESES, TNS_KEY), "v))"},
      {"end after the value", text + " ", read + input_end(mode), "", 100},
      {"good item, then a key alone", text + ")(" + item.key + "))",
       read + key_word(item.key, item.type) + mismatch(TNS_EQUAL_SIGN, TNS_RIGHT_PARENTHESES),
       "))"},
      {"good item, then no key word", text + ")(HOSTS=v))", read + unknown_word("HOSTS"), "=v))"},
      {"good item, then an open parenthesis", text + ")(", read + input_end(mode), "", 100},
  };
}

// What may stand after the last complete item of a good block.
struct Ending {
  std::string text;
  Lines log;
  std::string unread;
};

inline std::vector<Ending> good_endings() {
  using namespace expected_log;
  return {
      {")", block_end(), ")"},
      {" # comment )\n ) (v", block_end(), ") (v"},
      {"", input_end(mode), ""},
      {"v)", mismatch(TNS_LEFT_PARENTHESES, TNS_KEY), "v)"},
      {"=v)", mismatch(TNS_LEFT_PARENTHESES, TNS_EQUAL_SIGN), "=v)"},
  };
}

// Key words that a block refuses: every one that is not its own. Builders tell
// of each with the line "<prefix> get key_type <n>" and an error of their own.
inline std::vector<Fault> refused_words(support::Place place, const std::string &prefix,
                                        const std::string &error) {
  std::vector<Fault> out;
  for (const support::Key &key : support::keys) {
    if (support::key_in(place, key.word) != nullptr) continue;
    const std::string text(key.word);
    out.push_back({"refused " + text, "(" + text + "=v))",
                   expected_log::key_word(text, key.number) +
                       Lines{"DEBUG " + prefix + "get key_type " + std::to_string(key.number),
                             "ERROR " + error},
                   "v))"});
  }
  return out;
}

// Texts that are no integer although they can be read as values.
inline std::vector<std::string> bad_integers() {
  using namespace std::string_literals;
  return {"5s"s,
          "x"s,
          "1.5"s,
          "--5"s,
          "-"s,
          "+"s,
          "5-"s,
          "10h"s,
          "\" \""s,
          "\"\""s,
          "\"5 \""s,
          "\"5 5\""s,
          "5\0"s,
          "\0005"s,
          "\v5"s,
          "18446744073709551616"s,
          "-9223372036854775809"s};
}

struct GoodInteger {
  const char *text;
  sb8 number;
};

inline constexpr GoodInteger good_integers[] = {
    {"3000", 3000},
    {"0", 0},
    {"-0", 0},
    {"-5", -5},
    {"+7", 7},
    {"007", 7},
    {"\" 8\"", 8},
    {"\"\t-8\"", -8},
    {"1\"2\"3", 123},
    {"9223372036854775807", 9223372036854775807},
    {"-9223372036854775808", -9223372036854775807 - 1},
    {"18446744073709551615", -1},
};

// A value without its quotes, as the reader of keys delivers it.
inline std::string unquoted(const std::string &text) {
  std::string out;
  for (const char c : text)
    if (c != '"') out += c;
  return out;
}

// The faults of an item whose value is not read and that consume nothing; the
// item's handling then runs on the key word itself and logs the given lines.
inline std::vector<Fault> missing_values(const Item &item, const Lines &verdict,
                                         sword status_at_end = -1) {
  using namespace expected_log;
  const std::string text = "(" + item.key + "=";
  const Lines begins = item_begins(item);
  return {
      {"missing value", text + "))", begins + no_value(TNS_RIGHT_PARENTHESES) + verdict, "))"},
      {"block for a value", text + "(v=1)))", begins + no_value(TNS_LEFT_PARENTHESES) + verdict,
       "(v=1)))"},
      {"equal sign for a value", text + "=1))", begins + no_value(TNS_EQUAL_SIGN) + verdict,
       "=1))"},
      {"end for a value", text, begins + input_end(mode) + verdict, "", status_at_end},
      {"blanks for a value", text + " \n", begins + input_end(mode) + verdict, "", status_at_end},
  };
}

}  // namespace builder_body
