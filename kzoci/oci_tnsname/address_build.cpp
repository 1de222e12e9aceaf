// ADDRESS_LIST and ADDRESS.
//
//   address list := { "(" ADDRESS "=" address ")"
//                   | "(" KZLB "=" ON|OFF ")"
//                   | "(" KZLB_STRATEGY "=" RANDOM|SERVERAFFINITY|ROTATION ")" }
//   address      := { "(" PROTOCOL "=" TCP ")" | "(" HOST "=" text ")"
//                   | "(" PORT "=" text ")" | "(" WEIGHT "=" integer ")" }
#include "address_list_kind.h"
#include "children.h"
#include "items.h"

using namespace kzoci::tns;

namespace {

constexpr RecordKind<KZCIAddress> address_kind = {
    .tag = "address",
    .malloc_failure = "malloc address error, malloc size:%lu",
    .init = KZCIAddressInit,
    .init_failure = "fail to call KZCIAddressInit",
};

constexpr ub4 max_port = 6;
constexpr ub4 max_protocol = 6;

constexpr Word<KZCILBOption> list_strategies[] = {{"RANDOM", LB_OPTION_RANDOM},
                                                  {"SERVERAFFINITY", LB_OPTION_SERVERAFFINITY},
                                                  {"ROTATION", LB_OPTION_ROTATION}};

// Only TCP is served. The field decides, not the value just read: one that is
// too long leaves an earlier TCP in force.
sword read_protocol(KZCIAddress &address, KZCITnsParseParams *params) {
  const sword status =
      read_text(params, address.protocol, &address.protocol_len, max_protocol, TextCopy::bytes);
  const bool is_tcp = address.protocol_len == 3 && is_same_text(address.protocol, "TCP", 3);
  return is_tcp ? status : failure;
}

sword read_address_value(KZCIAddress &address, KZCITnsParseParams *params) {
  switch (params->key_type) {
    case LB_PROTOCOL:
      return read_protocol(address, params);
    case LB_HOST:
      return read_text(params, address.host, &address.host_len, max_text, TextCopy::bytes);
    case LB_PORT:
      return read_text(params, address.port, &address.port_len, max_port, TextCopy::bytes);
    case LB_WEIGHT:
      return read_integer(params, &address.weight);
    default:
      return refuse_key("KZCIAddressBuild get error key_type");
  }
}

sword read_address(KZCIAddressList &list, KZCITnsParseParams *params) {
  const sword status = KZCIAddressBuild(&list, params);
  if (status != success) KZ_LOG_ERROR("fail to call buil_address_list, status:%d", status);
  return status;
}

sword read_list_value(KZCIAddressList &list, KZCITnsParseParams *params) {
  switch (params->key_type) {
    case LB_ADDRESS:
      return read_address(list, params);
    case LB_KZLB:
      return read_word(params, switch_words, wrong_switch, &list.kzlb);
    case LB_KZLB_STRATEGY:
      return read_word(params, list_strategies, "parse LB_KZLB_STRATEGY get wrong key:%.*s",
                       &list.kzlb_strategy);
    default:
      return refuse_key("KZCIAddressListBuild get error key_type");
  }
}

}  // namespace

sword KZCIAddressBuild(KZCIAddressList *address_list, KZCITnsParseParams *parse_params) {
  KZ_LOG_DEBUG("call KZCIAddressBuild with params [address_list:%p], [parse_params:%p]",
               pointer(address_list), pointer(parse_params));
  if (address_list == nullptr || parse_params == nullptr) return refuse_null_handle();
  KZCIAddress *address = nullptr;
  sword status = make_record(address_kind, &address);
  if (status != success) return status;
  status = read_items(parse_params, "KZCIAddressBuild get key_type %d",
                      [&] { return read_address_value(*address, parse_params); });
  if (!block_closed(parse_params)) {
    KZ_LOG_ERROR("something error in build address, status:%d", status);
    kzci_free(address);
    return failure;
  }
  link_child(address_list->address, address_list->address_count, address);
  return success;
}

sword KZCIAddressListBuild(KZCIDescription *des, KZCITnsParseParams *parse_params) {
  KZ_LOG_DEBUG("call KZCIAddressListBuild with params [des:%p], [parse_params:%p]", pointer(des),
               pointer(parse_params));
  if (des == nullptr || parse_params == nullptr) return refuse_null_handle();
  KZCIAddressList *list = nullptr;
  const sword status = make_record(address_list_kind, &list);
  if (status != success) return status;
  read_items(parse_params, "KZCIAddressListBuild get key_type %d",
             [&] { return read_list_value(*list, parse_params); });
  if (!block_closed(parse_params)) {
    KZ_LOG_ERROR("something error in KZCIAddressListBuild");
    kzci_free(list);
    return failure;
  }
  KZ_LOG_DEBUG("success to call KZCIAddressListBuild, address count:%u", list->address_count);
  link_child(des->address_list, des->address_list_count, list);
  return success;
}
