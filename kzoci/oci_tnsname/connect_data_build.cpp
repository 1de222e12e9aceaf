// CONNECT_DATA.
//
//   connect data := one or more of
//                     "(" SERVICE_NAME|SID|KZ_USER_EXTRA_INFO|SESSION_VARIABLE "=" text ")"
//                     "(" KZ_MODE|USE_DEFAULT_SID "=" integer ")"
#include "new_record.h"

using namespace kzoci::tns;

namespace {

constexpr RecordKind<KZCIConnectData> connect_data_kind = {
    .tag = "KZCIConnectData",
    .not_allocated = message::connect_data_not_allocated,
    .init = KZCIConnectDataInit,
    .init_failed = message::connect_data_init_failed,
    .key_met = message::connect_data_key,
    .not_built = message::connect_data_not_built,
};

}  // namespace

sword KZCIConnectDataBuild(KZCIDescription *des, KZCITnsParseParams *parse_params) {
  KZ_LOG(message::connect_data_called, des, parse_params);
  if (des == nullptr || parse_params == nullptr) return refuse_null_handle();
  KZCIConnectData *data = nullptr;
  const sword status =
      build_record(connect_data_kind, parse_params, &data, [&](KZCIConnectData &made) {
        return read_by_grammar(Block::connect_data, message::connect_data_key_refused, parse_params,
                               &made);
      });
  if (status != success) return status;
  KZ_LOG(message::connect_data_built, precision(data->service_name_len, sizeof data->service_name),
         data->service_name);
  if (des->connect_data != nullptr) {
    kzci_free(data);
    KZ_LOG(message::second_connect_data);
    return failure;
  }
  des->connect_data = data;
  return success;
}
