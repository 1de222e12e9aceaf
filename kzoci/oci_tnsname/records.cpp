// Defaults and release of the records that have children.
#include <cstddef>
#include <cstring>

#include "children.h"
#include "new_record.h"

using namespace kzoci::tns;

void kzoci::tns::set_to_zero(void *record, std::size_t size) { std::memset(record, 0, size); }

sword KZCITnsInit(KZCITns *tns) {
  if (tns == nullptr) {
    KZ_LOG_ERROR("tns is NULL");
    return failure;
  }
  tns->tns_service = nullptr;
  tns->tns_service_count = 0;
  return success;
}

sword KZCITnsServiceInit(KZCITnsService *tns_service, ub4 name_size, const char *name) {
  if (tns_service == nullptr) {
    KZ_LOG_ERROR("tns_service is NULL");
    return failure;
  }
  set_to_zero(tns_service, sizeof *tns_service);
  le_init(&tns_service->le, 0);
  tns_service->net_service_name_len = name_size;
  if (name_size > 0) std::strncpy(tns_service->net_service_name, name, name_size);
  const sword status = KZCISystemVariablesInit(&tns_service->sys_vars);
  if (status != success) KZ_LOG_ERROR("fail to call KZCISystemVariablesInit, ret:%d", status);
  return status;
}

sword KZCIDescriptionInit(KZCIDescription *des) {
  if (des == nullptr) {
    KZ_LOG_ERROR("description is NULL");
    return failure;
  }
  set_to_zero(des, sizeof *des);
  const sword status = KZCIBlacklistConfInit(&des->black_list_conf);
  if (status != success) {
    KZ_LOG_ERROR("fail to call KZCIBlacklistConfInit, status:%d", status);
    return status;
  }
  le_init(&des->le, 0);
  des->retry_all_downs = 120;
  des->retry_timeout = 10000;
  des->kzlb_group_strategy = LB_OPTION_GROUP_ROTATION;
  return success;
}

sword KZCIAddressListInit(KZCIAddressList *address_list) {
  if (address_list == nullptr) {
    KZ_LOG_ERROR("address_list is NULL");
    return failure;
  }
  set_to_zero(address_list, sizeof *address_list);
  le_init(&address_list->le, 0);
  address_list->kzlb = 1;
  address_list->kzlb_strategy = LB_OPTION_RANDOM;
  return success;
}

sword KZCITnsClear(KZCITns *tns) {
  KZ_LOG_DEBUG("call KZCITnsClear with params [tns:%p]", pointer(tns));
  if (tns == nullptr) {
    KZ_LOG_DEBUG("tns is NULL, do nothing");
    return success;
  }
  if (tns->tns_service == nullptr || tns->tns_service_count == 0) {
    KZ_LOG_DEBUG("tns service is NULL, do nothing");
    return success;
  }
  return release_children(tns->tns_service, tns->tns_service_count, KZCITnsServiceClear,
                          "fail to call KZCITnsServiceClear, status:%d");
}

sword KZCITnsServiceClear(KZCITnsService *tns_service) {
  KZ_LOG_DEBUG("call KZCITnsServiceClear with params [tns_service:%p]", pointer(tns_service));
  if (tns_service == nullptr) {
    KZ_LOG_DEBUG("tns_service is NULL, do nothing");
    return success;
  }
  if (tns_service->description == nullptr || tns_service->description_count == 0) {
    KZ_LOG_DEBUG("description is NULL, do nothing");
    return success;
  }
  const sword status = KZCISystemVariablesClear(&tns_service->sys_vars);
  if (status != success) {
    KZ_LOG_ERROR("fail to call KZCISystemVariablesClear, ret:%d", status);
    return status;
  }
  return release_children(tns_service->description, tns_service->description_count,
                          KZCIDescriptionClear, "fail to call KZCIDescriptionClear, status:%d");
}

namespace {

sword release_address_lists(KZCIDescription &des) {
  if (des.address_list == nullptr || des.address_list_count == 0) {
    KZ_LOG_DEBUG("address is NULL, do nothing");
    return success;
  }
  return release_children(des.address_list, des.address_list_count, KZCIAddressListClear,
                          "fail to call KZCIAddressListClear, status:%d");
}

sword release_connect_data(KZCIDescription &des) {
  if (des.connect_data == nullptr) return success;
  const sword status = KZCIConnectDataClear(des.connect_data);
  if (status != success) {
    KZ_LOG_ERROR("fail to call KZCIConnectDataClear, status:%d", status);
    return status;
  }
  kzci_free(des.connect_data);
  des.connect_data = nullptr;
  return success;
}

}  // namespace

sword KZCIDescriptionClear(KZCIDescription *des) {
  KZ_LOG_DEBUG("call KZCIDescriptionClear with params [des:%p]", pointer(des));
  if (des == nullptr) {
    KZ_LOG_ERROR("description is NULL, do nothing");
    return success;
  }
  const sword status = release_address_lists(*des);
  return status == success ? release_connect_data(*des) : status;
}

sword KZCIAddressListClear(KZCIAddressList *address_list) {
  KZ_LOG_DEBUG("call KZCIAddressListClear with params [address_list:%p]", pointer(address_list));
  if (address_list == nullptr) {
    KZ_LOG_DEBUG("address_list is NULL, do nothing");
    return success;
  }
  if (address_list->address == nullptr || address_list->address_count == 0) {
    KZ_LOG_DEBUG("address is NULL, do nothing");
    return success;
  }
  return release_children(address_list->address, address_list->address_count, KZCIAddressClear,
                          "fail to call KZCIAddressClear, status:%d");
}
