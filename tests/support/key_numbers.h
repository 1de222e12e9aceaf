// Every key word with the number of its identifier.
#pragma once

#include <string_view>

namespace support {

struct KeyNumber {
  std::string_view text;
  int number;
};

inline constexpr KeyNumber key_numbers[] = {
    {"SID", 25},
    {"KZLB", 2},
    {"HOST", 20},
    {"PORT", 21},
    {"NAME", 11},
    {"WEIGHT", 22},
    {"ADDRESS", 18},
    {"TIMEOUT", 12},
    {"KZ_MODE", 27},
    {"PROTOCOL", 19},
    {"DURATION", 15},
    {"LOG_SIZE", 33},
    {"LOG_PATH", 36},
    {"LOG_LEVEL", 34},
    {"LOG_COUNT", 35},
    {"RETRYTIMES", 14},
    {"DESCRIPTION", 1},
    {"RETRY_TIMES", 14},
    {"RETRY_DELAY", 37},
    {"ADDRESS_LIST", 16},
    {"CONNECT_DATA", 23},
    {"SERVICE_NAME", 24},
    {"KZLB_STRATEGY", 17},
    {"KZLB_BLACKLIST", 9},
    {"REMOVE_STRATEGY", 10},
    {"APPEND_STRATEGY", 13},
    {"USE_DEFAULT_SID", 28},
    {"SESSION_VARIABLE", 32},
    {"SLOWSQL_THRESHOLD", 29},
    {"KZLB_READ_TIMEOUT", 4},
    {"KZ_USER_EXTRA_INFO", 26},
    {"KZLB_RETRY_TIMEOUT", 8},
    {"KZLB_WRITE_TIMEOUT", 5},
    {"KZLB_GROUP_STRATEGY", 6},
    {"SLOWSQL_BUFFER_SIZE", 30},
    {"KZLB_RETRY_ALL_DOWNS", 7},
    {"KZLB_CONNECT_TIMEOUT", 3},
    {"SLOWSQL_FLUSH_SECOND", 31},
};

}  // namespace support
