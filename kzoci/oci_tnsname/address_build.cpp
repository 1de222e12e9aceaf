// ADDRESS_LIST and ADDRESS.
//
//   address list := one or more of
//                     "(" ADDRESS "=" address ")"
//                     "(" KZLB "=" ON|OFF ")"
//                     "(" KZLB_STRATEGY "=" RANDOM|SERVERAFFINITY|ROTATION ")"
//   address      := one or more of
//                     "(" PROTOCOL "=" TCP ")"
//                     "(" HOST|PORT "=" text ")"
//                     "(" WEIGHT "=" integer ")"
#include "address_list_kind.h"
#include "children.h"
#include "kzoci/platform/letter_case.h"

using namespace kzoci::tns;

namespace {

constexpr RecordKind<KZCIAddress, Message<sword>> address_kind = {
    .tag = "address",
    .not_allocated = message::address_not_allocated,
    .init = KZCIAddressInit,
    .init_failed = message::address_init_failed,
    .key_met = message::address_key,
    .not_built = message::address_not_built,
};

sword read_by_address_grammar(KZCIAddress &address, KZCITnsParseParams *params) {
  return read_by_grammar(Block::address, message::address_key_refused, params, &address);
}

// Only TCP is served. The field decides, not the value just read: one that is
// too long leaves an earlier TCP in force.
sword read_protocol(KZCIAddress &address, KZCITnsParseParams *params) {
  const sword status = read_by_address_grammar(address, params);
  const bool is_tcp = address.protocol_len == 3 && kzoci::is_same_text(address.protocol, "TCP", 3);
  return is_tcp ? status : failure;
}

sword read_address_value(KZCIAddress &address, KZCITnsParseParams *params) {
  if (params->key_type == LB_PROTOCOL) return read_protocol(address, params);
  return read_by_address_grammar(address, params);
}

sword read_list_value(KZCIAddressList &list, KZCITnsParseParams *params) {
  if (params->key_type == LB_ADDRESS)
    return reported(KZCIAddressBuild(&list, params), message::address_of_list_failed);
  return read_by_grammar(Block::address_list, message::address_list_key_refused, params, &list);
}

}  // namespace

sword KZCIAddressBuild(KZCIAddressList *address_list, KZCITnsParseParams *parse_params) {
  KZ_LOG(message::address_called, address_list, parse_params);
  if (address_list == nullptr || parse_params == nullptr) return refuse_null_handle();
  KZCIAddress *address = nullptr;
  const sword status = build_record(address_kind, parse_params, &address, [&](KZCIAddress &made) {
    return read_address_value(made, parse_params);
  });
  if (status != success) return status;
  link_child(address_list->address, address_list->address_count, address);
  return success;
}

sword KZCIAddressListBuild(KZCIDescription *des, KZCITnsParseParams *parse_params) {
  KZ_LOG(message::address_list_called, des, parse_params);
  if (des == nullptr || parse_params == nullptr) return refuse_null_handle();
  KZCIAddressList *list = nullptr;
  const sword status =
      build_record(address_list_kind, parse_params, &list,
                   [&](KZCIAddressList &made) { return read_list_value(made, parse_params); });
  if (status != success) return status;
  KZ_LOG(message::address_list_built, list->address_count);
  link_child(des->address_list, des->address_list_count, list);
  return success;
}
