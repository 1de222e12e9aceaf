#include "random_input.h"

#include <cctype>
#include <span>

namespace support {
namespace {

using namespace std::string_view_literals;

enum class Value {
  on_off,
  list_strategy,
  group_strategy,
  remove_name,
  append_name,
  protocol,
  port,
  text,
  integer,
  address,
  address_list,
  connect_data,
  blacklist,
  remove_strategy,
  append_strategy,
};

struct Item {
  std::string_view key;
  Value value;
};

constexpr Item description_items[] = {
    {"KZLB", Value::on_off},
    {"KZLB_RETRY_ALL_DOWNS", Value::integer},
    {"KZLB_RETRY_TIMEOUT", Value::integer},
    {"KZLB_CONNECT_TIMEOUT", Value::integer},
    {"KZLB_READ_TIMEOUT", Value::integer},
    {"KZLB_WRITE_TIMEOUT", Value::integer},
    {"RETRY_DELAY", Value::integer},
    {"KZLB_GROUP_STRATEGY", Value::group_strategy},
    {"KZLB_BLACKLIST", Value::blacklist},
    {"ADDRESS_LIST", Value::address_list},
    {"ADDRESS_LIST", Value::address_list},
    {"CONNECT_DATA", Value::connect_data},
    {"CONNECT_DATA", Value::connect_data},
    {"ADDRESS", Value::address},
};

constexpr Item list_items[] = {
    {"KZLB", Value::on_off},
    {"KZLB_STRATEGY", Value::list_strategy},
    {"ADDRESS", Value::address},
    {"ADDRESS", Value::address},
};

constexpr Item address_items[] = {
    {"PROTOCOL", Value::protocol},
    {"HOST", Value::text},
    {"PORT", Value::port},
    {"WEIGHT", Value::integer},
};

constexpr Item data_items[] = {
    {"SERVICE_NAME", Value::text},       {"SID", Value::text},
    {"KZ_USER_EXTRA_INFO", Value::text}, {"SESSION_VARIABLE", Value::text},
    {"KZ_MODE", Value::integer},         {"USE_DEFAULT_SID", Value::integer},
};

constexpr Item blacklist_items[] = {
    {"REMOVE_STRATEGY", Value::remove_strategy},
    {"APPEND_STRATEGY", Value::append_strategy},
};

constexpr Item remove_items[] = {
    {"NAME", Value::remove_name},
    {"TIMEOUT", Value::integer},
};

constexpr Item append_items[] = {
    {"NAME", Value::append_name},
    {"RETRY_TIMES", Value::integer},
    {"RETRYTIMES", Value::integer},
    {"DURATION", Value::integer},
};

// In the reserved entry, keys that name no system variable are passed over.
constexpr Item variable_items[] = {
    {"SLOWSQL_THRESHOLD", Value::integer},
    {"SLOWSQL_BUFFER_SIZE", Value::integer},
    {"SLOWSQL_FLUSH_SECOND", Value::integer},
    {"SESSION_VARIABLE", Value::text},
    {"LOG_SIZE", Value::integer},
    {"LOG_LEVEL", Value::text},
    {"LOG_COUNT", Value::integer},
    {"LOG_PATH", Value::text},
    {"ANYTHING", Value::text},
    {"A_KEY_LONGER_THAN_ANY_WORD", Value::text},
    {"DESCRIPTION", Value::integer},
};

constexpr std::string_view on_off_words[] = {"ON", "OFF"};
constexpr std::string_view list_words[] = {"RANDOM", "SERVERAFFINITY", "ROTATION"};
constexpr std::string_view group_words[] = {"ROTATION"};
constexpr std::string_view remove_words[] = {"TIMEOUT"};
constexpr std::string_view append_words[] = {"RETRYDURATION"};

constexpr std::string_view integers[] = {
    "0",
    "-0",
    "1",
    "007",
    "+5",
    "-5",
    " 8",
    "\t-8",
    "2147483647",
    "2147483648",
    "1048575",
    "1048577",
    "-1",
    "\t +17",
    "4294967295",
    "4294967296",
    "100",
    "000000",
    "9223372036854775807",
    "-9223372036854775808",
    "9223372036854775808",
    "18446744073709551615",
};

constexpr std::string_view plain_characters =
    "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789._-/:,;<@+*";
constexpr std::string_view odd_characters = " \t\r\n\v()=##\0\xFFz09'\\%"sv;

std::string random_characters(Random &random, std::size_t length, bool odd) {
  std::string text;
  while (text.size() < length)
    text += odd && random.one_in(2) ? random.pick(odd_characters) : random.pick(plain_characters);
  return text;
}

std::string random_text(Random &random, const Taste &taste) {
  std::size_t length = random.between(1, 12);
  if (random.one_in(16)) length = random.between(0, taste.longest_text);
  if (random.one_in(40)) length = taste.longest_text;
  return random_characters(random, length, taste.odd_texts && random.one_in(4));
}

// A leading part of one of the words; seldom the empty one.
std::string random_word(Random &random, std::span<const std::string_view> words,
                        const Taste &taste) {
  const std::string_view word = random.pick(words);
  if (taste.odd_texts && random.one_in(30)) return "";
  return std::string(word.substr(0, random.between(1, word.size())));
}

// Appends tokens of the grammar.
class Composer {
 public:
  Composer(Random &random, const Taste &taste, Tokens &tokens)
      : random_(random), taste_(taste), tokens_(tokens) {
    tokens_.reserve(usual_size);
  }

  void description() {
    begin("DESCRIPTION");
    bool has_list = false;
    bool has_data = false;
    for (std::size_t left = random_.between(1, 4); left > 0; --left) {
      Item item = random_.pick(description_items);
      // A bare address stands before any list, and connect data stand once.
      while ((has_list && item.key == "ADDRESS") || (has_data && item.key == "CONNECT_DATA"))
        item = random_.pick(description_items);
      has_list = has_list || item.key == "ADDRESS" || item.key == "ADDRESS_LIST";
      has_data = has_data || item.key == "CONNECT_DATA";
      write(item);
    }
    add(TokenKind::close, ")");
  }

  void variable() { write(random_.pick(variable_items)); }

  void name(const std::string &text) {
    add(TokenKind::name, text);
    add(TokenKind::equal, "=");
  }

 private:
  void add(TokenKind kind, std::string_view text) { tokens_.push_back({kind, std::string(text)}); }

  void begin(std::string_view key) {
    add(TokenKind::open, "(");
    add(TokenKind::key_word, key);
    add(TokenKind::equal, "=");
  }

  void write(const Item &item) {
    begin(item.key);
    write(item.value);
    add(TokenKind::close, ")");
  }

  void items(std::span<const Item> rows) {
    for (std::size_t left = random_.between(1, 3); left > 0; --left) write(random_.pick(rows));
  }

  void word(std::span<const std::string_view> words) {
    add(TokenKind::word, random_word(random_, words, taste_));
  }

  void write(Value value) {
    switch (value) {
      case Value::on_off:
        return word(on_off_words);
      case Value::list_strategy:
        return word(list_words);
      case Value::group_strategy:
        return word(group_words);
      case Value::remove_name:
        return word(remove_words);
      case Value::append_name:
        return word(append_words);
      case Value::protocol:
        return add(TokenKind::text, random_case(random_, "TCP"));
      case Value::port:
        return add(TokenKind::text, random_characters(random_, random_.between(1, 7), false));
      case Value::text:
        return add(TokenKind::text, random_text(random_, taste_));
      case Value::integer:
        return add(TokenKind::integer, random_integer(random_));
      case Value::address:
        return items(address_items);
      case Value::address_list:
        return items(list_items);
      case Value::connect_data:
        return items(data_items);
      case Value::blacklist:
        return items(blacklist_items);
      case Value::remove_strategy:
        return items(remove_items);
      case Value::append_strategy:
        return items(append_items);
    }
  }

  static constexpr std::size_t usual_size = 96;

  Random &random_;
  const Taste &taste_;
  Tokens &tokens_;
};

}  // namespace

std::string random_integer(Random &random) {
  if (random.one_in(3)) return std::string(random.pick(integers));
  // Shifted, so that all lengths are common; at most 2^63 - 1.
  const std::string digits = std::to_string(random.next() >> random.between(1, 63));
  return random.one_in(4) ? '-' + digits : digits;
}

std::string random_case(Random &random, std::string_view word) {
  std::string out(word);
  std::uint64_t bits = random.next();
  for (char &c : out) {
    const int byte = static_cast<unsigned char>(c);
    c = static_cast<char>((bits & 1) != 0 ? std::tolower(byte) : std::toupper(byte));
    bits >>= 1;
  }
  return out;
}

std::string random_name(Random &random, std::size_t number) {
  constexpr std::string_view beginnings[] = {"sales", "a", "Db.world", "my db", "x-1_", "10.0.0."};
  return std::string(random.pick(beginnings)) + std::to_string(number);
}

Tokens random_description(Random &random, const Taste &taste) {
  Tokens tokens;
  Composer(random, taste, tokens).description();
  return tokens;
}

Entry random_entry(Random &random, const std::string &name, const Taste &taste,
                   std::size_t most_blocks) {
  Entry entry{name, {}};
  Composer composer(random, taste, entry.tokens);
  composer.name(name);
  for (std::size_t left = random.between(1, most_blocks); left > 0; --left) composer.description();
  return entry;
}

Entry random_reserved_entry(Random &random, const std::string &name, const Taste &taste) {
  Entry entry{name, {}};
  Composer composer(random, taste, entry.tokens);
  composer.name(name);
  for (std::size_t left = random.between(1, 6); left > 0; --left) composer.variable();
  return entry;
}

}  // namespace support
