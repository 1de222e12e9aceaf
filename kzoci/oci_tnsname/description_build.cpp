// DESCRIPTION.
//
//   description := { "(" KZLB "=" ON|OFF ")" | "(" KZLB_GROUP_STRATEGY "=" ROTATION ")"
//                  | "(" KZLB_RETRY_ALL_DOWNS|KZLB_RETRY_TIMEOUT|KZLB_CONNECT_TIMEOUT
//                        |KZLB_READ_TIMEOUT|KZLB_WRITE_TIMEOUT|RETRY_DELAY "=" integer ")"
//                  | "(" KZLB_BLACKLIST "=" blacklist ")" | "(" ADDRESS_LIST "=" address list ")"
//                  | "(" ADDRESS "=" address ")" | "(" CONNECT_DATA "=" connect data ")" }
#include "address_list_kind.h"
#include "children.h"
#include "items.h"

using namespace kzoci::tns;

namespace {

constexpr RecordKind<KZCIDescription> description_kind = {
    .tag = "KZCIDescription",
    .malloc_failure = "malloc description error, malloc size:%lu",
    .init = KZCIDescriptionInit,
    .init_failure = "fail to call KZCIDescriptionInit",
    // Log readers know this message with the size of a service.
    .reported_size = sizeof(KZCITnsService),
};

constexpr Word<KZCILBOption> group_strategies[] = {{"ROTATION", LB_OPTION_GROUP_ROTATION}};

sword read_retry_timeout(KZCIDescription &des, KZCITnsParseParams *params) {
  sb8 number = 0;
  const sword status = read_integer(params, &number);
  des.retry_timeout = static_cast<time_t>(number);
  return status;
}

// Accepted for the sake of files that are shared with other readers.
sword read_retry_delay(KZCITnsParseParams *params) {
  sb8 number = 0;
  const sword status = read_integer(params, &number);
  KZ_LOG_DEBUG("oracle RETRY_DELAY=%d", static_cast<int>(number));
  return status;
}

sword read_blacklist(KZCIDescription &des, KZCITnsParseParams *params) {
  const sword status = KZCIBlacklistConfBuild(&des.black_list_conf, params);
  // The message names the address list; log readers know it so.
  if (status != success) KZ_LOG_ERROR("fail to call KZCIAddressListBuild, status:%d", status);
  return status;
}

sword read_address_list(KZCIDescription &des, KZCITnsParseParams *params) {
  const sword status = KZCIAddressListBuild(&des, params);
  if (status != success) KZ_LOG_ERROR("fail to call KZCIAddressListBuild, status:%d", status);
  return status;
}

sword read_connect_data(KZCIDescription &des, KZCITnsParseParams *params) {
  const sword status = KZCIConnectDataBuild(&des, params);
  if (status != success) KZ_LOG_ERROR("fail to call KZCIConnectDataBuild, status:%d", status);
  return status;
}

sword release_implied_list(KZCIAddressList *list, const char *message, sword status) {
  kzci_free(list);
  KZ_LOG_ERROR("%s", message);
  return status;
}

// A bare address stands for a list of its own, with a list's defaults.
sword read_bare_address(KZCIDescription &des, KZCITnsParseParams *params) {
  if (des.address_list != nullptr) {
    KZ_LOG_ERROR("no address_list, but address_list is not NULL");
    return failure;
  }
  KZCIAddressList *const list = allocate_record(address_list_kind);
  if (list == nullptr) return failure;
  sword status = KZCIAddressListInit(list);
  if (status != success) return release_implied_list(list, address_list_kind.init_failure, status);
  status = KZCIAddressBuild(list, params);
  if (status != success) return release_implied_list(list, "fail to call KZCIAddressBuild", status);
  link_child(des.address_list, des.address_list_count, list);
  return success;
}

sword read_description_value(KZCIDescription &des, KZCITnsParseParams *params) {
  switch (params->key_type) {
    case LB_KZLB:
      return read_word(params, switch_words, wrong_switch, &des.kzlb);
    case LB_KZLB_RETRY_ALL_DOWNS:
      return read_integer(params, &des.retry_all_downs);
    case LB_KZLB_RETRY_TIMEOUT:
      return read_retry_timeout(des, params);
    case LB_CONNECT_TIMEOUT:
      return read_integer(params, &des.connect_timout);
    case LB_READ_TIMEOUT:
      return read_integer(params, &des.read_timout);
    case LB_WRITE_TIMEOUT:
      return read_integer(params, &des.write_timout);
    case LB_RETRY_DELAY:
      return read_retry_delay(params);
    case LB_KZLB_GROUP_STRATEGY:
      return read_word(params, group_strategies, "parse LB_KZLB_GROUP_STRATEGY get wrong key:%.*s",
                       &des.kzlb_group_strategy);
    case LB_KZLB_BLACKLIST:
      return read_blacklist(des, params);
    case LB_ADDRESS_LIST:
      return read_address_list(des, params);
    case LB_CONNECT_DATA:
      return read_connect_data(des, params);
    case LB_ADDRESS:
      return read_bare_address(des, params);
    default:
      return refuse_key("KZCIDescriptionBuild get error key_type");
  }
}

}  // namespace

sword KZCIDescriptionBuild(KZCITnsService *tns_service, KZCITnsParseParams *parse_params) {
  KZ_LOG_DEBUG("call KZCIDescriptionBuild with params [tns_service:%p], [parse_params:%p]",
               pointer(tns_service), pointer(parse_params));
  if (tns_service == nullptr || parse_params == nullptr) return refuse_null_handle();
  KZCIDescription *des = nullptr;
  const sword status = make_record(description_kind, &des);
  if (status != success) return status;
  read_items(parse_params, "bulid_description get key_type %d",
             [&] { return read_description_value(*des, parse_params); });
  if (!block_closed(parse_params)) {
    KZ_LOG_ERROR("something error in build description");
    kzci_free(des);
    return failure;
  }
  KZ_LOG_DEBUG("success to build description, address count:%u", des->address_list_count);
  link_child(tns_service->description, tns_service->description_count, des);
  return success;
}
