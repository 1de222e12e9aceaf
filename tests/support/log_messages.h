// Every record of the module's log, level and format, written down by hand: programs and
// people know the texts letter by letter, slips included.
#pragma once

#include "kzoci/oci_tnsname/messages.h"

namespace support {

struct LogMessage {
  log_level level;
  const char *format;
};

inline constexpr LogMessage log_messages[] = {
    // Arguments
    {LOG_LEVEL_ERROR, "invalid handle, handle is NULL"},
    {LOG_LEVEL_ERROR, "tns is NULL"},
    {LOG_LEVEL_ERROR, "tns_service is NULL"},
    {LOG_LEVEL_ERROR, "description is NULL"},
    {LOG_LEVEL_ERROR, "address_list is NULL"},
    {LOG_LEVEL_ERROR, "address is NULL"},
    {LOG_LEVEL_ERROR, "con_data is NULL"},

    // Making records
    {LOG_LEVEL_ERROR, "malloc tns_service error, malloc size:%lu"},
    {LOG_LEVEL_ERROR, "malloc description error, malloc size:%lu"},
    {LOG_LEVEL_ERROR, "malloc address_list error, malloc size:%lu"},
    {LOG_LEVEL_ERROR, "malloc address error, malloc size:%lu"},
    {LOG_LEVEL_ERROR, "malloc connect_data error, malloc size:%lu"},
    {LOG_LEVEL_ERROR, "fail to call KZCITnsServiceInit"},
    {LOG_LEVEL_ERROR, "fail to call KZCIDescriptionInit"},
    {LOG_LEVEL_ERROR, "fail to call KZCIAddressListInit"},
    {LOG_LEVEL_ERROR, "fail to call KZCIAddressInit"},
    {LOG_LEVEL_ERROR, "fail to call KZCIConnectDataInit"},
    {LOG_LEVEL_ERROR, "fail to call KZCIBlacklistConfInit, status:%d"},
    {LOG_LEVEL_ERROR, "fail to call KZCISystemVariablesInit, ret:%d"},

    // Releasing records
    {LOG_LEVEL_DEBUG, "call KZCITnsClear with params [tns:%p]"},
    {LOG_LEVEL_DEBUG, "call KZCITnsServiceClear with params [tns_service:%p]"},
    {LOG_LEVEL_DEBUG, "call KZCIDescriptionClear with params [des:%p]"},
    {LOG_LEVEL_DEBUG, "call KZCIAddressListClear with params [address_list:%p]"},
    {LOG_LEVEL_DEBUG, "call KZCIAddressClear with params [address:%p]"},
    {LOG_LEVEL_DEBUG, "call KZCIConnectDataClear with params [con_data:%p]"},
    {LOG_LEVEL_DEBUG, "tns is NULL, do nothing"},
    {LOG_LEVEL_DEBUG, "tns_service is NULL, do nothing"},
    {LOG_LEVEL_ERROR, "description is NULL, do nothing"},
    {LOG_LEVEL_DEBUG, "address_list is NULL, do nothing"},
    {LOG_LEVEL_DEBUG, "tns service is NULL, do nothing"},
    {LOG_LEVEL_DEBUG, "description is NULL, do nothing"},
    {LOG_LEVEL_DEBUG, "address is NULL, do nothing"},
    {LOG_LEVEL_ERROR, "fail to call KZCITnsServiceClear, status:%d"},
    {LOG_LEVEL_ERROR, "fail to call KZCIDescriptionClear, status:%d"},
    {LOG_LEVEL_ERROR, "fail to call KZCIAddressListClear, status:%d"},
    {LOG_LEVEL_ERROR, "fail to call KZCIAddressClear, status:%d"},
    {LOG_LEVEL_ERROR, "fail to call KZCIConnectDataClear, status:%d"},
    {LOG_LEVEL_ERROR, "fail to call KZCISystemVariablesClear, ret:%d"},
    {LOG_LEVEL_ERROR, "clear tns check error, i:%u, count:%u, header:%p, entry:%p"},

    // Tokens
    {LOG_LEVEL_DEBUG, "read data mode=%d"},
    {LOG_LEVEL_DEBUG, "reach eof"},
    {LOG_LEVEL_ERROR, "fail to call KZCITnsCheckBuffer"},
    {LOG_LEVEL_ERROR, "fail to call kzci_tns_check buffer"},
    {LOG_LEVEL_DEBUG, "get key size:%u, key:%.*s"},
    {LOG_LEVEL_ERROR, "key size:%u bigger than %u"},
    {LOG_LEVEL_ERROR, "fail to call parse key, status:%d"},
    {LOG_LEVEL_WARN, "fail to call parse blank, status:%d"},
    {LOG_LEVEL_WARN, "expect token type is %d, but get %d"},
    {LOG_LEVEL_WARN, "fail to call KZCITnsParse, status:%d"},
    {LOG_LEVEL_ERROR, "invalid handle, parse_params:%p"},

    // Key words
    {LOG_LEVEL_DEBUG, "succ to find key, key is:%d"},
    {LOG_LEVEL_DEBUG, "fail to find key, key size:%u, key str:%.*s"},
    {LOG_LEVEL_ERROR, "parse_params tns_key_len:%d > %d"},
    {LOG_LEVEL_ERROR, "fail to get key type, status:%d"},
    {LOG_LEVEL_ERROR, "get error key type"},

    // Values
    {LOG_LEVEL_ERROR, "fail to covert to int, src value:%.*s"},
    {LOG_LEVEL_ERROR, "fail to parse string value"},
    {LOG_LEVEL_ERROR, "parse LB_KZLB get wrong key:%.*s"},
    {LOG_LEVEL_ERROR, "parse LB_KZLB_GROUP_STRATEGY get wrong key:%.*s"},
    {LOG_LEVEL_ERROR, "parse LB_KZLB_STRATEGY get wrong key:%.*s"},
    {LOG_LEVEL_ERROR, "parse LB_NAME get wrong key:%.*s"},

    // Addresses
    {LOG_LEVEL_DEBUG, "call KZCIAddressBuild with params [address_list:%p], [parse_params:%p]"},
    {LOG_LEVEL_DEBUG, "KZCIAddressBuild get key_type %d"},
    {LOG_LEVEL_ERROR, "KZCIAddressBuild get error key_type"},
    {LOG_LEVEL_ERROR, "something error in build address, status:%d"},

    // Address lists
    {LOG_LEVEL_DEBUG, "call KZCIAddressListBuild with params [des:%p], [parse_params:%p]"},
    {LOG_LEVEL_DEBUG, "KZCIAddressListBuild get key_type %d"},
    {LOG_LEVEL_ERROR, "KZCIAddressListBuild get error key_type"},
    {LOG_LEVEL_ERROR, "fail to call buil_address_list, status:%d"},
    {LOG_LEVEL_ERROR, "something error in KZCIAddressListBuild"},
    {LOG_LEVEL_DEBUG, "success to call KZCIAddressListBuild, address count:%u"},

    // Connect data
    {LOG_LEVEL_DEBUG, "call KZCIConnectDataBuild with params [des:%p], [parse_params:%p]"},
    {LOG_LEVEL_DEBUG, "KZCIConnectDataBuild get key_type %d"},
    {LOG_LEVEL_ERROR, "KZCIConnectDataBuild get error key_type"},
    {LOG_LEVEL_ERROR, "something error in KZCIConnectDataBuild"},
    {LOG_LEVEL_DEBUG, "success to call KZCIConnectDataBuild, service_name:%.*s"},
    {LOG_LEVEL_ERROR, "connect_data is already parse"},

    // Blacklists
    {LOG_LEVEL_DEBUG,
     "call KZCIBlacklistConfBuild with params [black_list_conf:%p], [parse_params:%p]"},
    {LOG_LEVEL_DEBUG, "call KZCIAddressListBuild with params [black:%p], [parse_params:%p]"},
    {LOG_LEVEL_DEBUG, "KZCIRemoveStrategyBuild get key_type %d"},
    {LOG_LEVEL_DEBUG, "get key_type %d"},
    {LOG_LEVEL_ERROR, "build_black_list_conf get error key_type"},
    {LOG_LEVEL_ERROR, "get error key_type"},
    {LOG_LEVEL_ERROR, "fail to call KZCIRemoveStrategyBuild, status:%d"},
    {LOG_LEVEL_ERROR, "fail to call KZCIAppendStrategyBuild, status:%d"},
    {LOG_LEVEL_ERROR, "something error in build_black_list_conf"},
    {LOG_LEVEL_ERROR, "something error in KZCIRemoveStrategyBuild"},
    {LOG_LEVEL_ERROR, "something error in KZCIAppendStrategyBuild"},
    {LOG_LEVEL_DEBUG, "success to call build_black_list_conf"},
    {LOG_LEVEL_DEBUG, "success to call KZCIRemoveStrategyBuild"},
    {LOG_LEVEL_DEBUG, "success to call KZCIAppendStrategyBuild"},

    // Descriptions
    {LOG_LEVEL_DEBUG, "call KZCIDescriptionBuild with params [tns_service:%p], [parse_params:%p]"},
    {LOG_LEVEL_DEBUG, "bulid_description get key_type %d"},
    {LOG_LEVEL_ERROR, "KZCIDescriptionBuild get error key_type"},
    {LOG_LEVEL_DEBUG, "oracle RETRY_DELAY=%d"},
    {LOG_LEVEL_ERROR, "fail to call KZCIAddressListBuild, status:%d"},
    {LOG_LEVEL_ERROR, "fail to call KZCIConnectDataBuild, status:%d"},
    {LOG_LEVEL_ERROR, "fail to call KZCIAddressBuild"},
    {LOG_LEVEL_ERROR, "no address_list, but address_list is not NULL"},
    {LOG_LEVEL_ERROR, "something error in build description"},
    {LOG_LEVEL_DEBUG, "success to build description, address count:%u"},

    // System variables
    {LOG_LEVEL_DEBUG, "parse system variables get slowsql threshold:%" KZ_LD},
    {LOG_LEVEL_DEBUG, "parse system variables get slowsql buffer size:%" KZ_LD},
    {LOG_LEVEL_DEBUG, "parse system variables get slowsql flush second:%" KZ_LD},
    {LOG_LEVEL_DEBUG, "parse system variables get log size:%" KZ_LD},
    {LOG_LEVEL_DEBUG, "parse system variables get log level:%" KZ_LD},
    {LOG_LEVEL_DEBUG, "parse system variables get session variable:%.*s"},
    {LOG_LEVEL_DEBUG, "parse system variables get log level:%.*s"},
    {LOG_LEVEL_DEBUG, "parse system variables get log path:%.*s"},
    {LOG_LEVEL_WARN, "parse system variables get error key type:%d"},

    // Services
    {LOG_LEVEL_DEBUG, "call KZCITnsServiceBuild with params [tns:%p], [parse_params:%p]"},
    {LOG_LEVEL_DEBUG, "call KZCITnsBuildDes with params [tns:%p, %s]"},
    {LOG_LEVEL_DEBUG, "parse system variables"},
    {LOG_LEVEL_DEBUG, "bulid_tns_service get key_type %d"},
    {LOG_LEVEL_ERROR, "expect LB_DESCRIPTION:%d but get %d"},
    {LOG_LEVEL_ERROR, "fail to build description, status:%d"},
    {LOG_LEVEL_ERROR, "fail to call KZCISystemVariablesBuild, status:%d"},
    {LOG_LEVEL_ERROR, "something error in build tns service, status:%d"},
    {LOG_LEVEL_DEBUG, "success to build tns_service, description count:%u"},

    // Lookups
    {LOG_LEVEL_DEBUG, "call KZCITnsBuild with params [tns:%p]"},
    {LOG_LEVEL_DEBUG, "get KZCI_TNS_FILE:%s"},
    {LOG_LEVEL_DEBUG, "get TNS_ADMIN:%s"},
    {LOG_LEVEL_DEBUG, "get ORACLE_HOME:%s"},
    {LOG_LEVEL_DEBUG, "can not get file name in environment"},
    {LOG_LEVEL_DEBUG, "get configure file:%s"},
    {LOG_LEVEL_DEBUG, "fail to open tns file, tns_name:%s"},
    {LOG_LEVEL_DEBUG, "fail to call KZCITnsBuildGetFile, status:%d"},
    {LOG_LEVEL_DEBUG, "find tns service, dbname:%.*s"},
    {LOG_LEVEL_DEBUG, "dbname is not equal to tns_service, dbname:%.*s, key:%.*s"},
    {LOG_LEVEL_ERROR, "fail to call KZCITnsServiceBuild, status:%d"},
    {LOG_LEVEL_ERROR, "fail to call KZCITnsServiceSkip, status:%d"},
    {LOG_LEVEL_DEBUG, "succ to call KZCITnsServiceBuild, service number:%u"},
    {LOG_LEVEL_DEBUG, "fail to find tns service, dbname:%.*s"},

    // Reading a built service
    {LOG_LEVEL_ERROR,
     "invalid handle, tns_service:%p, extra_info:%p, extra_info_len:%p, session_variable:%p, "
     "session_variable_len:%p"},
    {LOG_LEVEL_ERROR, "invalid handle, tns_service:%p, dblink_info:%p, dblink_len:%p"},
    {LOG_LEVEL_ERROR, "description is NULL, count:%u"},
    {LOG_LEVEL_ERROR, "address_list is NULL, count:%u"},
    {LOG_LEVEL_ERROR, "address is NULL, count:%u"},
    {LOG_LEVEL_ERROR, "fail to get dblink, dblink_len:%d"},

    // Printing a tree
    {LOG_LEVEL_DEBUG, "tns display in stdout"},
    {LOG_LEVEL_DEBUG, "tns display in file:%s"},
    {LOG_LEVEL_DEBUG, "fail to open display file, file:%s"},
    {LOG_LEVEL_ERROR, "error tns"},
    {LOG_LEVEL_ERROR, "error tns_service"},
    {LOG_LEVEL_ERROR, "error des"},
    {LOG_LEVEL_DEBUG, "address_list is NULL"},
    {LOG_LEVEL_ERROR, "fail to call KZCITnsServiceDisplay, status:%d"},
    {LOG_LEVEL_ERROR, "fail to call KZCIDescriptionDisplay, status:%d"},
    {LOG_LEVEL_ERROR, "fail to call KZCIAddressListDisplay, status:%d"},
    {LOG_LEVEL_ERROR, "fail to call KZCIConnectDataDisplay, status:%d"},
    {LOG_LEVEL_ERROR, "fail to call KZCISystemVariablesDisplay, status:%d"},
    {LOG_LEVEL_ERROR, "fail to call KZCISystemVariablesDisplay, ret:%d"},

    // Slow-SQL buffer
    {LOG_LEVEL_DEBUG, "KZCISlowSQLBufferInit: buffer_size=%d"},
    {LOG_LEVEL_SLOWSQL, "SLOWSQL:%s"},
    {LOG_LEVEL_ERROR, "KZCISlowSQLBufferFlush write to log fail."},
    {LOG_LEVEL_ERROR, "KZCISlowSQLBufferFlush write to log fail!"},
    {LOG_LEVEL_ERROR, "KZCISlowSQLBufferFlush (clean) write to log fail"},
};

}  // namespace support
