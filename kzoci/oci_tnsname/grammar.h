// The grammar: one row for each key of each block, with the values that it takes and the
// field that keeps them. The builders read by it, the Inits take their defaults from it,
// the dump prints by it.
//
// To add a key: its identifier and its field in the public headers, its row here.
#pragma once

#include <cstddef>
#include <cstring>
#include <ctime>
#include <iterator>
#include <span>
#include <utility>

#include "kzoci/oci_tnsname.h"
#include "messages.h"

namespace kzoci::tns {

// The blocks in which keys have their place.
enum class Block : unsigned char {
  entry,  // an ordinary entry, and a literal descriptor
  system_variables,
  description,
  address_list,
  address,
  connect_data,
  blacklist,
  remove_strategy,
  append_strategy
};

enum class ValueKind : unsigned char { block, word, integer, text };

// How a field keeps a number.
enum class Storage : unsigned char {
  number,   // sb8
  seconds,  // time_t
  count,    // ub4, the value's low 32 bits
  option    // an int or an enumeration of its size
};

enum class TextCopy : unsigned char {
  bytes,  // byte for byte
  string  // up to the first zero byte, zeros after it
};

struct Word {
  const char *text;
  int value;
};

// The words that a value may be, in the order in which they are tried.
struct Words {
  std::span<const Word> words;
  Message<int, const char *> refused;
};

// A field of the record of the key's block: a number, or characters with a length beside
// them.
struct Field {
  Storage storage = Storage::number;
  std::size_t at = 0;
  std::size_t length_at = 0;
  ub4 capacity = 0;  // of the characters' array
};

struct Value {
  ValueKind kind;
  Field field = {};
  sb8 by_default = 0;  // texts are empty by default
  ub4 limit = 0;       // longest text
  TextCopy copy = TextCopy::bytes;
  const Words *words = nullptr;  // of a word
  Block opens = Block::entry;    // of a block
};

// The message that logs a system variable after it was read.
struct Report {
  const Message<long_argument> *number = nullptr;
  const Message<int, const char *> *text = nullptr;
};

struct Key {
  const char *word;
  KZCILBKeyType type;
  Block block;
  Value value;
  const char *name = nullptr;   // of the field, for people; null: no field of its own
  const char *label = nullptr;  // of its line in the dump; null: not printed
  Report report = {};
};

constexpr Value block(Block opens) {
  Value value = {ValueKind::block};
  value.opens = opens;
  return value;
}

constexpr Value integer(Field field, sb8 by_default = 0) {
  return {ValueKind::integer, field, by_default};
}

constexpr Value word(Field field, const Words &words, sb8 by_default) {
  Value value = {ValueKind::word, field, by_default};
  value.words = &words;
  return value;
}

constexpr Value text(Field field, ub4 limit, TextCopy copy = TextCopy::bytes) {
  return {ValueKind::text, field, 0, limit, copy};
}

// A number, a word or a text of a record.
#define KZ_FIELD(storage, record, field) \
  Field { Storage::storage, offsetof(record, field) }
#define KZ_TEXT(record, field)                                                                     \
  Field {                                                                                          \
    Storage::number, offsetof(record, field), offsetof(record, field##_len), sizeof(record::field) \
  }

constexpr ub4 max_text = 256;  // limit of most texts: the longest key
constexpr ub4 max_port = 6;
constexpr ub4 max_protocol = 6;
constexpr ub4 max_log_text = 1025;  // beyond what one key can be

// Beyond these LOG_SIZE counts as the smallest, LOG_COUNT as 0.
constexpr sb8 smallest_log_size = 0x100000;
constexpr sb8 largest_log_count = 4294967295;

#pragma GCC visibility push(hidden)
inline constexpr Word switch_word[] = {{"ON", 1}, {"OFF", 0}};
inline constexpr Words switch_words = {switch_word, message::bad_switch};
inline constexpr Word group_strategy[] = {{"ROTATION", LB_OPTION_GROUP_ROTATION}};
inline constexpr Words group_strategies = {group_strategy, message::bad_group_strategy};
inline constexpr Word list_strategy[] = {{"RANDOM", LB_OPTION_RANDOM},
                                         {"SERVERAFFINITY", LB_OPTION_SERVERAFFINITY},
                                         {"ROTATION", LB_OPTION_ROTATION}};
inline constexpr Words list_strategies = {list_strategy, message::bad_list_strategy};
inline constexpr Word remove_strategy[] = {{"TIMEOUT", LB_OPTION_TIMEOUT}};
inline constexpr Words remove_strategies = {remove_strategy, message::bad_blacklist_strategy};
inline constexpr Word append_strategy[] = {{"RETRYDURATION", LB_OPTION_RETRY_DERUATION}};
inline constexpr Words append_strategies = {append_strategy, message::bad_blacklist_strategy};

// Within a block in the order of the dump; the blocks that are written most often first.
inline constexpr Key grammar[] = {
    {"HOST", LB_HOST, Block::address, text(KZ_TEXT(KZCIAddress, host), max_text), "host", "host"},
    {"PORT", LB_PORT, Block::address, text(KZ_TEXT(KZCIAddress, port), max_port), "port", "port"},
    {"PROTOCOL", LB_PROTOCOL, Block::address, text(KZ_TEXT(KZCIAddress, protocol), max_protocol),
     "protocol"},
    {"WEIGHT", LB_WEIGHT, Block::address, integer(KZ_FIELD(number, KZCIAddress, weight), 1),
     "weight", "weight"},

    {"ADDRESS", LB_ADDRESS, Block::address_list, block(Block::address)},
    {"KZLB", LB_KZLB, Block::address_list,
     word(KZ_FIELD(option, KZCIAddressList, kzlb), switch_words, 1), "kzlb"},
    {"KZLB_STRATEGY", LB_KZLB_STRATEGY, Block::address_list,
     word(KZ_FIELD(option, KZCIAddressList, kzlb_strategy), list_strategies, LB_OPTION_RANDOM),
     "kzlb_strategy", "kzlb_strategy"},

    {"SERVICE_NAME", LB_SERVICE_NAME, Block::connect_data,
     text(KZ_TEXT(KZCIConnectData, service_name), max_text), "service_name", "dbname"},
    {"SID", LB_SID, Block::connect_data, text(KZ_TEXT(KZCIConnectData, service_name), max_text)},
    {"KZ_USER_EXTRA_INFO", LB_EXTRA_INFO, Block::connect_data,
     text(KZ_TEXT(KZCIConnectData, user_extra_info), max_text), "user_extra_info", "extra_info"},
    {"KZ_MODE", LB_KZ_MODE, Block::connect_data,
     integer(KZ_FIELD(number, KZCIConnectData, kz_mode)), "kz_mode", "kzmode"},
    {"USE_DEFAULT_SID", LB_USE_DEFAULT_SID, Block::connect_data,
     integer(KZ_FIELD(number, KZCIConnectData, use_default_sid)), "use_default_sid",
     "use_default_sid"},
    {"SESSION_VARIABLE", LB_SESSION_VARIABLE, Block::connect_data,
     text(KZ_TEXT(KZCIConnectData, session_variable), max_text), "session_variable",
     "session_variable"},

    {"DESCRIPTION", LB_DESCRIPTION, Block::entry, block(Block::description)},

    {"ADDRESS_LIST", LB_ADDRESS_LIST, Block::description, block(Block::address_list)},
    {"ADDRESS", LB_ADDRESS, Block::description, block(Block::address)},
    {"CONNECT_DATA", LB_CONNECT_DATA, Block::description, block(Block::connect_data)},
    {"KZLB_BLACKLIST", LB_KZLB_BLACKLIST, Block::description, block(Block::blacklist)},
    {"KZLB", LB_KZLB, Block::description,
     word(KZ_FIELD(option, KZCIDescription, kzlb), switch_words, 0), "kzlb", "kzlb"},
    {"KZLB_GROUP_STRATEGY", LB_KZLB_GROUP_STRATEGY, Block::description,
     word(KZ_FIELD(option, KZCIDescription, kzlb_group_strategy), group_strategies,
          LB_OPTION_GROUP_ROTATION),
     "kzlb_group_strategy", "kzlb_group_strategy"},
    {"KZLB_RETRY_ALL_DOWNS", LB_KZLB_RETRY_ALL_DOWNS, Block::description,
     integer(KZ_FIELD(number, KZCIDescription, retry_all_downs), 120), "retry_all_downs",
     "retry_all_downs"},
    {"KZLB_RETRY_TIMEOUT", LB_KZLB_RETRY_TIMEOUT, Block::description,
     integer(KZ_FIELD(seconds, KZCIDescription, retry_timeout), 10000), "retry_timeout",
     "retry_timeout"},
    {"KZLB_CONNECT_TIMEOUT", LB_CONNECT_TIMEOUT, Block::description,
     integer(KZ_FIELD(number, KZCIDescription, connect_timout)), "connect_timeout",
     "connect_timeout"},
    {"KZLB_READ_TIMEOUT", LB_READ_TIMEOUT, Block::description,
     integer(KZ_FIELD(number, KZCIDescription, read_timout)), "read_timeout", "read_timeout"},
    {"KZLB_WRITE_TIMEOUT", LB_WRITE_TIMEOUT, Block::description,
     integer(KZ_FIELD(number, KZCIDescription, write_timout)), "write_timeout", "write_timeout"},
    // Accepted because files are shared with other readers; not kept.
    {"RETRY_DELAY", LB_RETRY_DELAY, Block::description, integer({})},

    {"REMOVE_STRATEGY", LB_REMOVE_STRATEGY, Block::blacklist, block(Block::remove_strategy)},
    {"APPEND_STRATEGY", LB_APPEND_STRATEGY, Block::blacklist, block(Block::append_strategy)},

    {"NAME", LB_NAME, Block::append_strategy,
     word(KZ_FIELD(option, KZCIBlacklistConf, append_strategy), append_strategies,
          LB_OPTION_NORMAL),
     "append_strategy", "append_strategy"},
    {"NAME", LB_NAME, Block::remove_strategy,
     word(KZ_FIELD(option, KZCIBlacklistConf, remove_strategy), remove_strategies,
          LB_OPTION_TIMEOUT),
     "remove_strategy", "remove_strategy"},
    {"TIMEOUT", LB_TIMEOUT, Block::remove_strategy,
     integer(KZ_FIELD(number, KZCIBlacklistConf, remove_timeout), 50), "remove_timeout",
     "remove_timeout"},
    {"DURATION", LB_DRUATION, Block::append_strategy,
     integer(KZ_FIELD(number, KZCIBlacklistConf, duration), 10), "duration", "duration"},
    {"RETRY_TIMES", LB_RETRY_TIMES, Block::append_strategy,
     integer(KZ_FIELD(number, KZCIBlacklistConf, retry_times), 1), "retry_times", "retry_times"},
    {"RETRYTIMES", LB_RETRY_TIMES, Block::append_strategy,
     integer(KZ_FIELD(number, KZCIBlacklistConf, retry_times), 1)},

    {"SLOWSQL_THRESHOLD",
     LB_SLOWSQL_THRESHOLD,
     Block::system_variables,
     integer(KZ_FIELD(number, KZCISystemVariables, slowsql_threshold), 100),
     "slowsql_threshold",
     "SLOWSQL_THRESHOLD",
     {&message::threshold_read}},
    {"SLOWSQL_BUFFER_SIZE",
     LB_SLOWSQL_BUFFER_SIZE,
     Block::system_variables,
     integer(KZ_FIELD(number, KZCISystemVariables, slowsql_buffer_size)),
     "slowsql_buffer_size",
     "SLOWSQL_BUFFER_SIZE",
     {&message::buffer_size_read}},
    {"SLOWSQL_FLUSH_SECOND",
     LB_SLOWSQL_FLUSH_SECOND,
     Block::system_variables,
     integer(KZ_FIELD(count, KZCISystemVariables, slowsql_flush_second), 60),
     "slowsql_flush_second",
     "SLOWSQL_FLUSH_SECOND",
     {&message::flush_second_read}},
    {"SESSION_VARIABLE",
     LB_SESSION_VARIABLE,
     Block::system_variables,
     text(KZ_TEXT(KZCISystemVariables, session_variable), max_text, TextCopy::string),
     "session_variable",
     "SESSION_VARIABLE",
     {nullptr, &message::session_variable_read}},
    {"LOG_LEVEL",
     LB_LOG_LEVEL,
     Block::system_variables,
     text(KZ_TEXT(KZCISystemVariables, log_level), max_log_text, TextCopy::string),
     "log_level",
     "LOG_LEVEL",
     {nullptr, &message::log_level_read}},
    {"LOG_SIZE",
     LB_LOG_SIZE,
     Block::system_variables,
     integer(KZ_FIELD(number, KZCISystemVariables, log_size)),
     "log_size",
     "LOG_SIZE",
     {&message::log_size_read}},
    {"LOG_COUNT",
     LB_LOG_COUNT,
     Block::system_variables,
     integer(KZ_FIELD(count, KZCISystemVariables, log_count)),
     "log_count",
     "LOG_COUNT",
     {&message::log_count_read}},
    {"LOG_PATH",
     LB_LOG_PATH,
     Block::system_variables,
     text(KZ_TEXT(KZCISystemVariables, log_path), max_log_text, TextCopy::string),
     "log_path",
     "LOG_PATH",
     {nullptr, &message::log_path_read}},
};

#pragma GCC visibility pop
#undef KZ_FIELD
#undef KZ_TEXT

inline constexpr std::size_t rows_of_grammar = std::size(grammar);

// The row of a key in a block; null for a key that has no place there.
const Key *key_of(Block block, KZCILBKeyType type);

inline void *field_of(void *record, const Field &field) {
  return static_cast<char *>(record) + field.at;
}
inline const void *field_of(const void *record, const Field &field) {
  return static_cast<const char *>(record) + field.at;
}

// Stores a number in a field of a record, in the field's type.
inline void store_number(void *record, const Field &field, sb8 number) {
  const auto store = [&](auto as_stored) {
    std::memcpy(field_of(record, field), &as_stored, sizeof as_stored);
  };
  switch (field.storage) {
    case Storage::seconds:
      return store(static_cast<std::time_t>(number));
    case Storage::count:
      return store(static_cast<ub4>(number));
    case Storage::option:
      return store(static_cast<int>(number));
    default:
      return store(number);
  }
}

template <class Stored>
sb8 stored_number(const void *record, const Field &field) {
  Stored stored;
  std::memcpy(&stored, field_of(record, field), sizeof stored);
  return static_cast<sb8>(stored);
}

// The number that a field of a record holds.
inline sb8 number_of(const void *record, const Field &field) {
  switch (field.storage) {
    case Storage::seconds:
      return stored_number<std::time_t>(record, field);
    case Storage::count:
      return stored_number<ub4>(record, field);
    case Storage::option:
      return stored_number<int>(record, field);
    default:
      return stored_number<sb8>(record, field);
  }
}

// The characters of a text field, never more than its array holds.
inline std::span<const char> text_of(const void *record, const Field &field) {
  ub4 length = 0;
  std::memcpy(&length, static_cast<const char *>(record) + field.length_at, sizeof length);
  return {static_cast<const char *>(field_of(record, field)),
          length < field.capacity ? length : field.capacity};
}

// Stores the default of a row's key if the row belongs to one of the blocks.
template <std::size_t row, Block... blocks>
void set_default(void *record) {
  constexpr Value value = grammar[row].value;
  if constexpr (((grammar[row].block == blocks) || ...) && value.by_default != 0)
    store_number(record, value.field, value.by_default);
}

template <Block... blocks, std::size_t... row>
void set_defaults_of_rows(void *record, std::index_sequence<row...>) {
  (set_default<row, blocks...>(record), ...);
}

// Stores the defaults of the keys of some blocks that share a record of zeros.
template <Block... blocks>
void set_defaults(void *record) {
  set_defaults_of_rows<blocks...>(record, std::make_index_sequence<rows_of_grammar>{});
}

}  // namespace kzoci::tns
