// Every key of the grammar, written down by hand: what the random inputs, the second
// reader, the checks of fuzzed trees and the tests of single builders go by. A test
// compares it with the module's own grammar row by row.
//
// docs/design.md says what else a new key needs.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <span>
#include <string_view>
#include <type_traits>

#include "kzoci/oci_tnsname.h"

namespace support {

// Where a key stands.
enum class Place {
  entry,
  description,
  address_list,
  address,
  connect_data,
  blacklist,
  remove_strategy,
  append_strategy,
  system_variables
};

enum class Takes { block, word, integer, text };

struct Word {
  std::string_view text;
  sb8 value = 0;
};

// Where a record keeps a value; a size of 0: nowhere.
struct Field {
  std::size_t at = 0;
  std::size_t size = 0;
  std::size_t length_at = 0;  // of a text
  bool is_signed = true;
};

// What becomes of a number before it is kept.
using Kept = sb8 (*)(sb8 number);
constexpr sb8 as_read(sb8 number) { return number; }
constexpr sb8 low_32_bits(sb8 number) { return static_cast<ub4>(number); }
constexpr sb8 of_log_size(sb8 number) { return std::max<sb8>(number, 1048576); }
constexpr sb8 of_log_count(sb8 number) { return number > 4294967295 ? 0 : low_32_bits(number); }

struct Key {
  std::string_view word;
  KZCILBKeyType type;
  int number;  // of the type
  Place place;
  Takes takes;
  Field field = {};
  std::string_view label = {};       // in the dump; empty: not printed
  sb8 by_default = 0;                // texts are empty by default
  std::size_t limit = 0;             // longest text
  std::span<const Word> words = {};  // the only ones; of a text too, if it has any
  std::string_view complaint = {};   // about any other word
  Kept kept = as_read;
  Place opens = Place::entry;  // of a block
};

constexpr Key block_key(std::string_view word, KZCILBKeyType type, int number, Place place,
                        Place opens) {
  Key key = {word, type, number, place, Takes::block};
  key.opens = opens;
  return key;
}

constexpr Key integer_key(std::string_view word, KZCILBKeyType type, int number, Place place,
                          Field field, std::string_view label, sb8 by_default = 0,
                          Kept kept = as_read) {
  Key key = {word, type, number, place, Takes::integer, field, label, by_default};
  key.kept = kept;
  return key;
}

constexpr Key text_key(std::string_view word, KZCILBKeyType type, int number, Place place,
                       Field field, std::string_view label, std::size_t limit,
                       std::span<const Word> words = {}) {
  return {word, type, number, place, Takes::text, field, label, 0, limit, words};
}

constexpr Key word_key(std::string_view word, KZCILBKeyType type, int number, Place place,
                       Field field, std::string_view label, sb8 by_default,
                       std::span<const Word> words, std::string_view complaint) {
  return {word, type, number, place, Takes::word, field, label, by_default, 0, words, complaint};
}

inline constexpr Word on_off[] = {{"ON", 1}, {"OFF", 0}};
inline constexpr Word group_words[] = {{"ROTATION", 0}};
inline constexpr Word list_words[] = {
    {"RANDOM", 1001}, {"SERVERAFFINITY", 1002}, {"ROTATION", 1003}};
inline constexpr Word remove_words[] = {{"TIMEOUT", 2001}};
inline constexpr Word append_words[] = {{"RETRYDURATION", 3001}};
inline constexpr Word tcp[] = {{"TCP"}};

#define KZ_NUMBER(record, field)                                                                 \
  Field {                                                                                        \
    offsetof(record, field), sizeof(record::field), 0, std::is_signed_v<decltype(record::field)> \
  }
#define KZ_TEXT(record, field) \
  Field { offsetof(record, field), sizeof(record::field), offsetof(record, field##_len) }

// The rows of a place stand together.
inline constexpr Key keys[] = {
    block_key("DESCRIPTION", LB_DESCRIPTION, 1, Place::entry, Place::description),

    block_key("ADDRESS_LIST", LB_ADDRESS_LIST, 16, Place::description, Place::address_list),
    block_key("ADDRESS", LB_ADDRESS, 18, Place::description, Place::address),
    block_key("CONNECT_DATA", LB_CONNECT_DATA, 23, Place::description, Place::connect_data),
    block_key("KZLB_BLACKLIST", LB_KZLB_BLACKLIST, 9, Place::description, Place::blacklist),
    word_key("KZLB", LB_KZLB, 2, Place::description, KZ_NUMBER(KZCIDescription, kzlb), "kzlb", 0,
             on_off, "parse LB_KZLB get wrong key:"),
    word_key("KZLB_GROUP_STRATEGY", LB_KZLB_GROUP_STRATEGY, 6, Place::description,
             KZ_NUMBER(KZCIDescription, kzlb_group_strategy), "kzlb_group_strategy", 0, group_words,
             "parse LB_KZLB_GROUP_STRATEGY get wrong key:"),
    integer_key("KZLB_RETRY_ALL_DOWNS", LB_KZLB_RETRY_ALL_DOWNS, 7, Place::description,
                KZ_NUMBER(KZCIDescription, retry_all_downs), "retry_all_downs", 120),
    integer_key("KZLB_RETRY_TIMEOUT", LB_KZLB_RETRY_TIMEOUT, 8, Place::description,
                KZ_NUMBER(KZCIDescription, retry_timeout), "retry_timeout", 10000),
    integer_key("KZLB_CONNECT_TIMEOUT", LB_CONNECT_TIMEOUT, 3, Place::description,
                KZ_NUMBER(KZCIDescription, connect_timout), "connect_timeout"),
    integer_key("KZLB_READ_TIMEOUT", LB_READ_TIMEOUT, 4, Place::description,
                KZ_NUMBER(KZCIDescription, read_timout), "read_timeout"),
    integer_key("KZLB_WRITE_TIMEOUT", LB_WRITE_TIMEOUT, 5, Place::description,
                KZ_NUMBER(KZCIDescription, write_timout), "write_timeout"),
    integer_key("RETRY_DELAY", LB_RETRY_DELAY, 37, Place::description, {}, ""),

    block_key("ADDRESS", LB_ADDRESS, 18, Place::address_list, Place::address),
    word_key("KZLB", LB_KZLB, 2, Place::address_list, KZ_NUMBER(KZCIAddressList, kzlb), "", 1,
             on_off, "parse LB_KZLB get wrong key:"),
    word_key("KZLB_STRATEGY", LB_KZLB_STRATEGY, 17, Place::address_list,
             KZ_NUMBER(KZCIAddressList, kzlb_strategy), "kzlb_strategy", 1001, list_words,
             "parse LB_KZLB_STRATEGY get wrong key:"),

    text_key("HOST", LB_HOST, 20, Place::address, KZ_TEXT(KZCIAddress, host), "host", 256),
    text_key("PORT", LB_PORT, 21, Place::address, KZ_TEXT(KZCIAddress, port), "port", 6),
    text_key("PROTOCOL", LB_PROTOCOL, 19, Place::address, KZ_TEXT(KZCIAddress, protocol), "", 6,
             tcp),
    integer_key("WEIGHT", LB_WEIGHT, 22, Place::address, KZ_NUMBER(KZCIAddress, weight), "weight",
                1),

    text_key("SERVICE_NAME", LB_SERVICE_NAME, 24, Place::connect_data,
             KZ_TEXT(KZCIConnectData, service_name), "dbname", 256),
    text_key("SID", LB_SID, 25, Place::connect_data, KZ_TEXT(KZCIConnectData, service_name), "",
             256),
    text_key("KZ_USER_EXTRA_INFO", LB_EXTRA_INFO, 26, Place::connect_data,
             KZ_TEXT(KZCIConnectData, user_extra_info), "extra_info", 256),
    text_key("SESSION_VARIABLE", LB_SESSION_VARIABLE, 32, Place::connect_data,
             KZ_TEXT(KZCIConnectData, session_variable), "session_variable", 256),
    integer_key("KZ_MODE", LB_KZ_MODE, 27, Place::connect_data, KZ_NUMBER(KZCIConnectData, kz_mode),
                "kzmode"),
    integer_key("USE_DEFAULT_SID", LB_USE_DEFAULT_SID, 28, Place::connect_data,
                KZ_NUMBER(KZCIConnectData, use_default_sid), "use_default_sid"),

    block_key("REMOVE_STRATEGY", LB_REMOVE_STRATEGY, 10, Place::blacklist, Place::remove_strategy),
    block_key("APPEND_STRATEGY", LB_APPEND_STRATEGY, 13, Place::blacklist, Place::append_strategy),

    word_key("NAME", LB_NAME, 11, Place::remove_strategy,
             KZ_NUMBER(KZCIBlacklistConf, remove_strategy), "remove_strategy", 2001, remove_words,
             "parse LB_NAME get wrong key:"),
    integer_key("TIMEOUT", LB_TIMEOUT, 12, Place::remove_strategy,
                KZ_NUMBER(KZCIBlacklistConf, remove_timeout), "remove_timeout", 50),

    word_key("NAME", LB_NAME, 11, Place::append_strategy,
             KZ_NUMBER(KZCIBlacklistConf, append_strategy), "append_strategy", 3002, append_words,
             "parse LB_NAME get wrong key:"),
    integer_key("RETRY_TIMES", LB_RETRY_TIMES, 14, Place::append_strategy,
                KZ_NUMBER(KZCIBlacklistConf, retry_times), "retry_times", 1),
    integer_key("RETRYTIMES", LB_RETRY_TIMES, 14, Place::append_strategy,
                KZ_NUMBER(KZCIBlacklistConf, retry_times), "", 1),
    integer_key("DURATION", LB_DRUATION, 15, Place::append_strategy,
                KZ_NUMBER(KZCIBlacklistConf, duration), "duration", 10),

    integer_key("SLOWSQL_THRESHOLD", LB_SLOWSQL_THRESHOLD, 29, Place::system_variables,
                KZ_NUMBER(KZCISystemVariables, slowsql_threshold), "SLOWSQL_THRESHOLD", 100),
    integer_key("SLOWSQL_BUFFER_SIZE", LB_SLOWSQL_BUFFER_SIZE, 30, Place::system_variables,
                KZ_NUMBER(KZCISystemVariables, slowsql_buffer_size), "SLOWSQL_BUFFER_SIZE"),
    integer_key("SLOWSQL_FLUSH_SECOND", LB_SLOWSQL_FLUSH_SECOND, 31, Place::system_variables,
                KZ_NUMBER(KZCISystemVariables, slowsql_flush_second), "SLOWSQL_FLUSH_SECOND", 60,
                low_32_bits),
    text_key("SESSION_VARIABLE", LB_SESSION_VARIABLE, 32, Place::system_variables,
             KZ_TEXT(KZCISystemVariables, session_variable), "SESSION_VARIABLE", 256),
    text_key("LOG_LEVEL", LB_LOG_LEVEL, 34, Place::system_variables,
             KZ_TEXT(KZCISystemVariables, log_level), "LOG_LEVEL", 1025),
    integer_key("LOG_SIZE", LB_LOG_SIZE, 33, Place::system_variables,
                KZ_NUMBER(KZCISystemVariables, log_size), "LOG_SIZE", 0, of_log_size),
    integer_key("LOG_COUNT", LB_LOG_COUNT, 35, Place::system_variables,
                KZ_NUMBER(KZCISystemVariables, log_count), "LOG_COUNT", 0, of_log_count),
    text_key("LOG_PATH", LB_LOG_PATH, 36, Place::system_variables,
             KZ_TEXT(KZCISystemVariables, log_path), "LOG_PATH", 1025),
};

#undef KZ_NUMBER
#undef KZ_TEXT

namespace details {

inline constexpr std::size_t places = static_cast<std::size_t>(Place::system_variables) + 1;

inline constexpr auto rows = [] {
  std::array<std::span<const Key>, places> made;
  for (const Key &key : keys) {
    std::span<const Key> &row = made[static_cast<std::size_t>(key.place)];
    row = row.empty() ? std::span(&key, 1) : std::span(row.data(), row.size() + 1);
  }
  return made;
}();

// The first row of the place with the same field.
constexpr std::size_t first_of(const Key &key) {
  std::size_t i = 0;
  for (const Key &row : rows[static_cast<std::size_t>(key.place)]) {
    if (&row == &key || (row.field.size != 0 && row.field.at == key.field.at)) break;
    ++i;
  }
  return i;
}

inline constexpr auto value_places = [] {
  std::array<std::size_t, std::size(keys)> made{};
  for (std::size_t i = 0; i < made.size(); ++i) made[i] = first_of(keys[i]);
  return made;
}();

}  // namespace details

constexpr std::span<const Key> keys_of(Place place) {
  return details::rows[static_cast<std::size_t>(place)];
}

// Which of the values of its place a key sets; words that mean the same set the same.
constexpr std::size_t value_place(const Key &key) {
  return details::value_places[static_cast<std::size_t>(&key - keys)];
}

// The row of a word in a place; null for a word that has none there.
constexpr const Key *key_in(Place place, std::string_view word) {
  for (const Key &key : keys_of(place))
    if (key.word == word) return &key;
  return nullptr;
}

}  // namespace support
