// Defaults and release of the records that have no children.
#include "children.h"
#include "new_record.h"

using namespace kzoci::tns;

sword KZCIAddressInit(KZCIAddress *address) {
  if (address == nullptr) {
    KZ_LOG_ERROR("address is NULL");
    return failure;
  }
  set_to_zero(address, sizeof *address);
  le_init(&address->le, 0);
  le_init(&address->connect_le, 0);
  address->weight = 1;
  return success;
}

sword KZCIConnectDataInit(KZCIConnectData *con_data) {
  if (con_data == nullptr) {
    KZ_LOG_ERROR("con_data is NULL");
    return failure;
  }
  set_to_zero(con_data, sizeof *con_data);
  return success;
}

sword KZCIBlacklistConfInit(KZCIBlacklistConf *black_list_conf) {
  if (black_list_conf == nullptr) {
    KZ_LOG_ERROR("invalid handle, handle is NULL");
    return invalid_handle;
  }
  set_to_zero(black_list_conf, sizeof *black_list_conf);
  black_list_conf->remove_strategy = LB_OPTION_TIMEOUT;
  black_list_conf->remove_timeout = 50;
  black_list_conf->append_strategy = LB_OPTION_NORMAL;
  black_list_conf->retry_times = 1;
  black_list_conf->duration = 10;
  return success;
}

sword KZCISystemVariablesInit(KZCISystemVariables *sys_vars) {
  if (sys_vars == nullptr) return invalid_handle;
  set_to_zero(sys_vars, sizeof *sys_vars);
  sys_vars->slowsql_threshold = 100;
  sys_vars->slowsql_flush_second = 60;
  return success;
}

sword KZCIAddressClear(KZCIAddress *address) {
  KZ_LOG_DEBUG("call KZCIAddressClear with params [address:%p]", pointer(address));
  return success;
}

sword KZCIConnectDataClear(KZCIConnectData *con_data) {
  KZ_LOG_DEBUG("call KZCIConnectDataClear with params [con_data:%p]", pointer(con_data));
  return success;
}

sword KZCISystemVariablesClear(KZCISystemVariables *) { return success; }
