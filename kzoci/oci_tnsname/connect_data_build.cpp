// CONNECT_DATA.
//
//   connect data := { "(" SERVICE_NAME|SID "=" text ")"
//                   | "(" KZ_USER_EXTRA_INFO|SESSION_VARIABLE "=" text ")"
//                   | "(" KZ_MODE|USE_DEFAULT_SID "=" integer ")" }
#include "items.h"
#include "new_record.h"

using namespace kzoci::tns;

namespace {

constexpr RecordKind<KZCIConnectData> connect_data_kind = {
    .tag = "KZCIConnectData",
    .malloc_failure = "malloc connect_data error, malloc size:%lu",
    .init = KZCIConnectDataInit,
    .init_failure = "fail to call KZCIConnectDataInit",
};

sword read_connect_value(KZCIConnectData &data, KZCITnsParseParams *params) {
  switch (params->key_type) {
    case LB_SERVICE_NAME:
    case LB_SID:
      return read_text(params, data.service_name, &data.service_name_len, max_text,
                       TextCopy::bytes);
    case LB_EXTRA_INFO:
      return read_text(params, data.user_extra_info, &data.user_extra_info_len, max_text,
                       TextCopy::bytes);
    case LB_SESSION_VARIABLE:
      return read_text(params, data.session_variable, &data.session_variable_len, max_text,
                       TextCopy::bytes);
    case LB_KZ_MODE:
      return read_integer(params, &data.kz_mode);
    case LB_USE_DEFAULT_SID:
      return read_integer(params, &data.use_default_sid);
    default:
      return refuse_key("KZCIConnectDataBuild get error key_type");
  }
}

}  // namespace

sword KZCIConnectDataBuild(KZCIDescription *des, KZCITnsParseParams *parse_params) {
  KZ_LOG_DEBUG("call KZCIConnectDataBuild with params [des:%p], [parse_params:%p]", pointer(des),
               pointer(parse_params));
  if (des == nullptr || parse_params == nullptr) return refuse_null_handle();
  KZCIConnectData *data = nullptr;
  const sword status = make_record(connect_data_kind, &data);
  if (status != success) return status;
  read_items(parse_params, "KZCIConnectDataBuild get key_type %d",
             [&] { return read_connect_value(*data, parse_params); });
  if (!block_closed(parse_params)) {
    KZ_LOG_ERROR("something error in KZCIConnectDataBuild");
    kzci_free(data);
    return failure;
  }
  KZ_LOG_DEBUG("success to call KZCIConnectDataBuild, service_name:%.*s",
               precision(data->service_name_len, sizeof data->service_name), data->service_name);
  if (des->connect_data != nullptr) {
    kzci_free(data);
    KZ_LOG_ERROR("connect_data is already parse");
    return failure;
  }
  des->connect_data = data;
  return success;
}
