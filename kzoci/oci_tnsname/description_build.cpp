// DESCRIPTION.
//
//   description := one or more of
//                    "(" KZLB "=" ON|OFF ")"
//                    "(" KZLB_GROUP_STRATEGY "=" ROTATION ")"
//                    "(" KZLB_RETRY_ALL_DOWNS|KZLB_RETRY_TIMEOUT|KZLB_CONNECT_TIMEOUT
//                        |KZLB_READ_TIMEOUT|KZLB_WRITE_TIMEOUT|RETRY_DELAY "=" integer ")"
//                    "(" KZLB_BLACKLIST "=" blacklist ")"
//                    "(" ADDRESS_LIST "=" address list ")"
//                    "(" ADDRESS "=" address ")"
//                    "(" CONNECT_DATA "=" connect data ")"
#include "address_list_kind.h"
#include "children.h"

using namespace kzoci::tns;

namespace {

constexpr RecordKind<KZCIDescription> description_kind = {
    .tag = "KZCIDescription",
    .not_allocated = message::description_not_allocated,
    .init = KZCIDescriptionInit,
    .init_failed = message::description_init_failed,
    .key_met = message::description_key,
    .not_built = message::description_not_built,
    // Log readers expect this message with the size of a service.
    .reported_size = sizeof(KZCITnsService),
};

// Accepted for the sake of files that are shared with other readers.
sword read_retry_delay(KZCITnsParseParams *params) {
  sb8 number = 0;
  const sword status = read_integer(params, [&](sb8 read) { number = read; });
  KZ_LOG(message::retry_delay_read, static_cast<int>(number));
  return status;
}

sword release_implied_list(KZCIAddressList *list, const Message<> &step_failed, sword status) {
  kzci_free(list);
  KZ_LOG(step_failed);
  return status;
}

// A bare address implies a list of its own, with a list's defaults.
sword read_bare_address(KZCIDescription &des, KZCITnsParseParams *params) {
  if (des.address_list != nullptr) {
    KZ_LOG(message::second_bare_address);
    return failure;
  }
  KZCIAddressList *const list = allocate_record(address_list_kind);
  if (list == nullptr) return failure;
  sword status = KZCIAddressListInit(list);
  if (status != success)
    return release_implied_list(list, message::address_list_init_failed, status);
  status = KZCIAddressBuild(list, params);
  if (status != success) return release_implied_list(list, message::bare_address_failed, status);
  link_child(des.address_list, des.address_list_count, list);
  return success;
}

sword read_description_value(KZCIDescription &des, KZCITnsParseParams *params) {
  switch (params->key_type) {
    case LB_ADDRESS:
      return read_bare_address(des, params);
    case LB_ADDRESS_LIST:
      return reported(KZCIAddressListBuild(&des, params), message::address_list_failed);
    case LB_CONNECT_DATA:
      return reported(KZCIConnectDataBuild(&des, params), message::connect_data_failed);
    case LB_KZLB_BLACKLIST:
      // The message names the address list; log readers rely on it.
      return reported(KZCIBlacklistConfBuild(&des.black_list_conf, params),
                      message::address_list_failed);
    case LB_RETRY_DELAY:
      return read_retry_delay(params);
    default:
      return read_by_grammar(Block::description, message::description_key_refused, params, &des);
  }
}

}  // namespace

sword KZCIDescriptionBuild(KZCITnsService *tns_service, KZCITnsParseParams *parse_params) {
  KZ_LOG(message::description_called, tns_service, parse_params);
  if (tns_service == nullptr || parse_params == nullptr) return refuse_null_handle();
  KZCIDescription *des = nullptr;
  const sword status = build_record(
      description_kind, parse_params, &des,
      [&](KZCIDescription &made) { return read_description_value(made, parse_params); });
  if (status != success) return status;
  KZ_LOG(message::description_built, des->address_list_count);
  link_child(tns_service->description, tns_service->description_count, des);
  return success;
}
