// The grammar: one row for each key of each block, with the values that it takes and the
// field that keeps them. The builders read by it, the Inits take their defaults from it,
// the dump prints by it.
//
// docs/design.md says what else a new key needs.
#pragma once

#include <array>
#include <cstddef>
#include <iterator>

#include "grammar_types.h"
#include "kzoci/oci_tnsname.h"
#include "messages.h"

namespace kzoci::tns {

// For a key whose builder reads it without storing it.
constexpr Field not_kept = {};

// A number, a word or a text of a record.
#define KZ_FIELD(storage, record, field) \
  Field { Storage::storage, offsetof(record, field) }
#define KZ_TEXT(record, field)                                                                   \
  Field {                                                                                        \
    Storage::text, offsetof(record, field), offsetof(record, field##_len), sizeof(record::field) \
  }

constexpr ub4 max_text = 256;  // limit of most texts: the longest key
constexpr ub4 max_port = 6;
constexpr ub4 max_protocol = 6;
constexpr ub4 max_log_text = 1025;  // beyond what one key can be

// What is kept of LOG_SIZE, at least a mebibyte, and of LOG_COUNT, which counts as 0 when it is
// too large.
constexpr sb8 smallest_log_size = 0x100000;
constexpr sb8 largest_log_count = 4294967295;
constexpr sb8 stored_log_size(sb8 number) {
  return number > smallest_log_size ? number : smallest_log_size;
}
constexpr ub4 stored_log_count(sb8 number) {
  return number <= largest_log_count ? static_cast<ub4>(number) : 0;
}

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
    // Accepted because files are shared with other readers.
    {"RETRY_DELAY", LB_RETRY_DELAY, Block::description, integer(not_kept)},

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

inline constexpr std::size_t rows_of_grammar = std::size(grammar);

// By block and key type, the row in the grammar plus 1; 0 where a key has no place.
inline constexpr auto grammar_rows = [] {
  constexpr std::size_t blocks = static_cast<std::size_t>(Block::append_strategy) + 1;
  using Row = unsigned char;
  static_assert(rows_of_grammar < 256);
  std::array<std::array<Row, LB_MAX_KEY_TYPE>, blocks> rows{};
  // Backwards: of two words of one key, RETRY_TIMES and RETRYTIMES, the first one counts.
  for (std::size_t i = rows_of_grammar; i-- > 0;)
    rows[static_cast<std::size_t>(grammar[i].block)][grammar[i].type] = static_cast<Row>(i + 1);
  return rows;
}();

#pragma GCC visibility pop
#undef KZ_FIELD
#undef KZ_TEXT

// The row of a key in a block; null for a key that has no place there.
inline const Key *key_of(Block block, KZCILBKeyType type) {
  if (static_cast<std::size_t>(type) >= LB_MAX_KEY_TYPE) return nullptr;
  const auto row = grammar_rows[static_cast<std::size_t>(block)][type];
  return row == 0 ? nullptr : &grammar[row - 1];
}

}  // namespace kzoci::tns
