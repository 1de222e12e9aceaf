// Defaults and release of the records of the tree.
#include <cstddef>
#include <cstring>

#include "children.h"
#include "record_fields.h"
#include "set_to_zero.h"

using namespace kzoci::tns;

sword KZCITnsInit(KZCITns *tns) {
  if (tns == nullptr) {
    KZ_LOG(message::null_tns);
    return failure;
  }
  tns->tns_service = nullptr;
  tns->tns_service_count = 0;
  return success;
}

sword KZCITnsServiceInit(KZCITnsService *tns_service, ub4 name_size, const char *name) {
  if (tns_service == nullptr) {
    KZ_LOG(message::null_service);
    return failure;
  }
  // The variables, most of the record, are set to zero by their own Init.
  constexpr std::size_t variables = offsetof(KZCITnsService, sys_vars);
  constexpr std::size_t after_variables = offsetof(KZCITnsService, net_service_name_len);
  static_assert(after_variables == variables + sizeof tns_service->sys_vars);
  set_to_zero(tns_service, variables);
  set_to_zero(&tns_service->net_service_name_len, sizeof *tns_service - after_variables);
  le_init(&tns_service->le, 0);
  tns_service->net_service_name_len = name_size;
  if (name_size > 0) std::strncpy(tns_service->net_service_name, name, name_size);
  return reported(KZCISystemVariablesInit(&tns_service->sys_vars),
                  message::system_variables_init_failed);
}

sword KZCIDescriptionInit(KZCIDescription *des) {
  if (des == nullptr) {
    KZ_LOG(message::null_description);
    return failure;
  }
  set_to_zero(des, sizeof *des);
  const sword status =
      reported(KZCIBlacklistConfInit(&des->black_list_conf), message::blacklist_init_failed);
  if (status != success) return status;
  le_init(&des->le, 0);
  set_defaults<Block::description>(des);
  return success;
}

sword KZCIAddressListInit(KZCIAddressList *address_list) {
  if (address_list == nullptr) {
    KZ_LOG(message::null_address_list);
    return failure;
  }
  set_to_zero(address_list, sizeof *address_list);
  le_init(&address_list->le, 0);
  set_defaults<Block::address_list>(address_list);
  return success;
}

sword KZCIAddressInit(KZCIAddress *address) {
  if (address == nullptr) {
    KZ_LOG(message::null_address);
    return failure;
  }
  set_to_zero(address, sizeof *address);
  le_init(&address->le, 0);
  le_init(&address->connect_le, 0);
  set_defaults<Block::address>(address);
  return success;
}

sword KZCIConnectDataInit(KZCIConnectData *con_data) {
  if (con_data == nullptr) {
    KZ_LOG(message::null_connect_data);
    return failure;
  }
  set_to_zero(con_data, sizeof *con_data);
  set_defaults<Block::connect_data>(con_data);
  return success;
}

sword KZCIBlacklistConfInit(KZCIBlacklistConf *black_list_conf) {
  if (black_list_conf == nullptr) return refuse_null_handle();
  set_to_zero(black_list_conf, sizeof *black_list_conf);
  set_defaults<Block::remove_strategy, Block::append_strategy>(black_list_conf);
  return success;
}

sword KZCISystemVariablesInit(KZCISystemVariables *sys_vars) {
  if (sys_vars == nullptr) return invalid_handle;
  set_to_zero(sys_vars, sizeof *sys_vars);
  set_defaults<Block::system_variables>(sys_vars);
  return success;
}

sword KZCITnsClear(KZCITns *tns) {
  KZ_LOG(message::clear_tns_called, tns);
  if (tns == nullptr) {
    KZ_LOG(message::no_tns_to_clear);
    return success;
  }
  if (tns->tns_service == nullptr || tns->tns_service_count == 0) {
    KZ_LOG(message::no_services);
    return success;
  }
  return release_children(tns->tns_service, tns->tns_service_count, KZCITnsServiceClear,
                          message::service_clear_failed);
}

sword KZCITnsServiceClear(KZCITnsService *tns_service) {
  KZ_LOG(message::clear_service_called, tns_service);
  if (tns_service == nullptr) {
    KZ_LOG(message::no_service_to_clear);
    return success;
  }
  if (tns_service->description == nullptr || tns_service->description_count == 0) {
    KZ_LOG(message::no_descriptions);
    return success;
  }
  const sword status = reported(KZCISystemVariablesClear(&tns_service->sys_vars),
                                message::system_variables_clear_failed);
  if (status != success) return status;
  return release_children(tns_service->description, tns_service->description_count,
                          KZCIDescriptionClear, message::description_clear_failed);
}

namespace {

sword release_address_lists(KZCIDescription &des) {
  if (des.address_list == nullptr || des.address_list_count == 0) {
    KZ_LOG(message::no_addresses);
    return success;
  }
  return release_children(des.address_list, des.address_list_count, KZCIAddressListClear,
                          message::address_list_clear_failed);
}

sword release_connect_data(KZCIDescription &des) {
  if (des.connect_data == nullptr) return success;
  const sword status =
      reported(KZCIConnectDataClear(des.connect_data), message::connect_data_clear_failed);
  if (status != success) return status;
  kzci_free(des.connect_data);
  des.connect_data = nullptr;
  return success;
}

}  // namespace

sword KZCIDescriptionClear(KZCIDescription *des) {
  KZ_LOG(message::clear_description_called, des);
  if (des == nullptr) {
    KZ_LOG(message::no_description_to_clear);
    return success;
  }
  const sword status = release_address_lists(*des);
  return status == success ? release_connect_data(*des) : status;
}

sword KZCIAddressListClear(KZCIAddressList *address_list) {
  KZ_LOG(message::clear_address_list_called, address_list);
  if (address_list == nullptr) {
    KZ_LOG(message::no_address_list_to_clear);
    return success;
  }
  if (address_list->address == nullptr || address_list->address_count == 0) {
    KZ_LOG(message::no_addresses);
    return success;
  }
  return release_children(address_list->address, address_list->address_count, KZCIAddressClear,
                          message::address_clear_failed);
}

sword KZCIAddressClear(KZCIAddress *address) {
  KZ_LOG(message::clear_address_called, address);
  return success;
}

sword KZCIConnectDataClear(KZCIConnectData *con_data) {
  KZ_LOG(message::clear_connect_data_called, con_data);
  return success;
}

sword KZCISystemVariablesClear(KZCISystemVariables *) { return success; }
