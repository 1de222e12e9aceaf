// Where each field of each record stands: what programs are compiled against. By hand, for
// pointers of 64 bits and of 32, and for i386, where 64-bit numbers stand at multiples of 4.
#include <gtest/gtest.h>

#include <cstddef>

#include "kzoci/explain.h"
#include "kzoci/oci_tnsname.h"

namespace {

struct Place {
  const char *what;
  std::size_t found;
  std::size_t bits64;
  std::size_t bits32;
  std::size_t i386;

  std::size_t expected() const {
#if defined(__i386__)
    return i386;
#else
    return sizeof(void *) == 8 ? bits64 : bits32;
#endif
  }
};

#define FIELD(record, field, bits64, bits32, i386) \
  { #record "." #field, offsetof(record, field), bits64, bits32, i386 }
#define SIZE(record, bits64, bits32, i386) \
  { "size of " #record, sizeof(record), bits64, bits32, i386 }

const Place places[] = {
    FIELD(list_entry_t, type, 0, 0, 0),
    FIELD(list_entry_t, prev, 8, 4, 4),
    FIELD(list_entry_t, next, 16, 8, 8),
    SIZE(list_entry_t, 24, 12, 12),

    FIELD(KZCIAddress, host, 0, 0, 0),
    FIELD(KZCIAddress, port, 257, 257, 257),
    FIELD(KZCIAddress, protocol, 264, 264, 264),
    FIELD(KZCIAddress, host_len, 272, 272, 272),
    FIELD(KZCIAddress, port_len, 276, 276, 276),
    FIELD(KZCIAddress, protocol_len, 280, 280, 280),
    FIELD(KZCIAddress, le, 288, 284, 284),
    FIELD(KZCIAddress, connect_le, 312, 296, 296),
    FIELD(KZCIAddress, weight, 336, 312, 308),
    SIZE(KZCIAddress, 344, 320, 316),

    FIELD(KZCIAddressList, address, 0, 0, 0),
    FIELD(KZCIAddressList, address_count, 8, 4, 4),
    FIELD(KZCIAddressList, le, 16, 8, 8),
    FIELD(KZCIAddressList, kzlb, 40, 20, 20),
    FIELD(KZCIAddressList, kzlb_strategy, 44, 24, 24),
    SIZE(KZCIAddressList, 48, 28, 28),

    FIELD(KZCIConnectData, service_name, 0, 0, 0),
    FIELD(KZCIConnectData, service_name_len, 260, 260, 260),
    FIELD(KZCIConnectData, user_extra_info, 264, 264, 264),
    FIELD(KZCIConnectData, user_extra_info_len, 520, 520, 520),
    FIELD(KZCIConnectData, session_variable, 524, 524, 524),
    FIELD(KZCIConnectData, session_variable_len, 784, 784, 784),
    FIELD(KZCIConnectData, kz_mode, 792, 792, 788),
    FIELD(KZCIConnectData, use_default_sid, 800, 800, 796),
    SIZE(KZCIConnectData, 808, 808, 804),

    FIELD(KZCIBlacklistConf, remove_strategy, 0, 0, 0),
    FIELD(KZCIBlacklistConf, remove_timeout, 8, 8, 4),
    FIELD(KZCIBlacklistConf, append_strategy, 16, 16, 12),
    FIELD(KZCIBlacklistConf, retry_times, 24, 24, 16),
    FIELD(KZCIBlacklistConf, duration, 32, 32, 24),
    SIZE(KZCIBlacklistConf, 40, 40, 32),

    FIELD(KZCISystemVariables, slowsql_threshold, 0, 0, 0),
    FIELD(KZCISystemVariables, slowsql_buffer_size, 8, 8, 8),
    FIELD(KZCISystemVariables, slowsql_flush_second, 16, 16, 16),
    FIELD(KZCISystemVariables, session_variable, 20, 20, 20),
    FIELD(KZCISystemVariables, session_variable_len, 280, 280, 280),
    FIELD(KZCISystemVariables, log_size, 288, 288, 284),
    FIELD(KZCISystemVariables, log_count, 296, 296, 292),
    FIELD(KZCISystemVariables, log_level, 300, 300, 296),
    FIELD(KZCISystemVariables, log_level_len, 1328, 1328, 1324),
    FIELD(KZCISystemVariables, log_path, 1332, 1332, 1328),
    FIELD(KZCISystemVariables, log_path_len, 2360, 2360, 2356),
    SIZE(KZCISystemVariables, 2368, 2368, 2360),

    FIELD(KZCIDescription, address_list, 0, 0, 0),
    FIELD(KZCIDescription, address_list_count, 8, 4, 4),
    FIELD(KZCIDescription, le, 16, 8, 8),
    FIELD(KZCIDescription, connect_data, 40, 20, 20),
    FIELD(KZCIDescription, kzlb, 48, 24, 24),
    FIELD(KZCIDescription, retry_all_downs, 56, 32, 28),
    FIELD(KZCIDescription, connect_timout, 64, 40, 36),
    FIELD(KZCIDescription, read_timout, 72, 48, 44),
    FIELD(KZCIDescription, write_timout, 80, 56, 52),
    FIELD(KZCIDescription, retry_timeout, 88, 64, 60),
    FIELD(KZCIDescription, kzlb_group_strategy, 96, 72, 68),
    FIELD(KZCIDescription, black_list_conf, 104, 80, 72),
    SIZE(KZCIDescription, 144, 120, 104),

    FIELD(KZCITnsService, description, 0, 0, 0),
    FIELD(KZCITnsService, description_count, 8, 4, 4),
    FIELD(KZCITnsService, le, 16, 8, 8),
    FIELD(KZCITnsService, sys_vars, 40, 24, 20),
    FIELD(KZCITnsService, net_service_name_len, 2408, 2392, 2380),
    FIELD(KZCITnsService, net_service_name, 2412, 2396, 2384),
    SIZE(KZCITnsService, 2416, 2400, 2384),

    FIELD(KZCITns, tns_service, 0, 0, 0),
    FIELD(KZCITns, tns_service_count, 8, 4, 4),
    SIZE(KZCITns, 16, 8, 8),

    FIELD(KZCITnsParseParams, tns_buffer, 0, 0, 0),
    FIELD(KZCITnsParseParams, tns_key, 1024, 1024, 1024),
    FIELD(KZCITnsParseParams, buffer_pos, 1280, 1280, 1280),
    FIELD(KZCITnsParseParams, buffer_len, 1284, 1284, 1284),
    FIELD(KZCITnsParseParams, tns_key_len, 1288, 1288, 1288),
    FIELD(KZCITnsParseParams, is_eof, 1292, 1292, 1292),
    FIELD(KZCITnsParseParams, mode, 1296, 1296, 1296),
    FIELD(KZCITnsParseParams, tns_name, 1304, 1300, 1300),
    FIELD(KZCITnsParseParams, tns_file, 1312, 1304, 1304),
    FIELD(KZCITnsParseParams, description, 1320, 1308, 1308),
    FIELD(KZCITnsParseParams, description_len, 1328, 1312, 1312),
    FIELD(KZCITnsParseParams, description_offset, 1332, 1316, 1316),
    FIELD(KZCITnsParseParams, is_comment, 1336, 1320, 1320),
    FIELD(KZCITnsParseParams, tns_token_type, 1340, 1324, 1324),
    FIELD(KZCITnsParseParams, key_type, 1344, 1328, 1328),
    SIZE(KZCITnsParseParams, 1352, 1332, 1332),

    FIELD(KZCISLowSQL, buffer, 0, 0, 0),
    FIELD(KZCISLowSQL, buffer_length, 8, 8, 4),
    FIELD(KZCISLowSQL, buffer_pos, 16, 16, 12),
    FIELD(KZCISLowSQL, flush_second, 24, 24, 20),
    SIZE(KZCISLowSQL, 32, 32, 24),

    FIELD(kzoci_near_name, name, 0, 0, 0),
    FIELD(kzoci_near_name, line, 8, 4, 4),
    FIELD(kzoci_near_name, column, 12, 8, 8),
    FIELD(kzoci_near_name, text, 16, 12, 12),
    SIZE(kzoci_near_name, 24, 16, 16),

    FIELD(kzoci_explanation, outcome, 0, 0, 0),
    FIELD(kzoci_explanation, is_literal, 4, 4, 4),
    FIELD(kzoci_explanation, message, 8, 8, 8),
    FIELD(kzoci_explanation, identifier, 16, 12, 12),
    FIELD(kzoci_explanation, file, 24, 16, 16),
    FIELD(kzoci_explanation, variable, 32, 20, 20),
    FIELD(kzoci_explanation, line, 40, 24, 24),
    FIELD(kzoci_explanation, column, 44, 28, 28),
    FIELD(kzoci_explanation, entry_line, 48, 32, 32),
    FIELD(kzoci_explanation, entry_column, 52, 36, 36),
    FIELD(kzoci_explanation, rule, 56, 40, 40),
    FIELD(kzoci_explanation, text, 64, 44, 44),
    FIELD(kzoci_explanation, remedy, 72, 48, 48),
    FIELD(kzoci_explanation, note, 80, 52, 52),
    FIELD(kzoci_explanation, near_names, 88, 56, 56),
    FIELD(kzoci_explanation, near_names_count, 96, 60, 60),
    SIZE(kzoci_explanation, 104, 64, 64),
};

TEST(RecordLayout, EveryFieldStandsAtItsPlace) {
  for (const Place &place : places) EXPECT_EQ(place.found, place.expected()) << place.what;
}

}  // namespace
