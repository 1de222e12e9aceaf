// What the connection layer reads of a built service when it opens a session.
#include <cstdio>
#include <cstring>

#include "kzoci/oci_tnsname.h"
#include "log.h"
#include "status.h"

using namespace kzoci::tns;

namespace {

KZCIDescription *first_description(const KZCITnsService &service) {
  if (service.description_count != 0 && service.description != nullptr) return service.description;
  KZ_LOG(message::description_missing, service.description_count);
  return nullptr;
}

KZCIAddressList *first_address_list(const KZCIDescription &des) {
  if (des.address_list_count != 0 && des.address_list != nullptr) return des.address_list;
  KZ_LOG(message::address_list_missing, des.address_list_count);
  return nullptr;
}

KZCIAddress *first_address(const KZCIAddressList &list) {
  if (list.address_count != 0 && list.address != nullptr) return list.address;
  KZ_LOG(message::address_missing, list.address_count);
  return nullptr;
}

KZCIConnectData *connect_data_of(const KZCIDescription &des) {
  if (des.connect_data == nullptr) KZ_LOG(message::null_connect_data);
  return des.connect_data;
}

// Copies a text of the tree, and never more than its array holds.
template <std::size_t capacity>
void hand_out_text(char *out, sb4 *out_length, const char (&text)[capacity], ub4 length) {
  *out_length = static_cast<sb4>(length);
  std::strncpy(out, text, std::min<std::size_t>(length, capacity));
}

// Writes the link string; returns its length before the cut.
int format_dblink(char *dblink, const KZCIAddress &address, const KZCIConnectData &data) {
  const int host = precision(address.host_len, sizeof address.host);
  const int port = precision(address.port_len, sizeof address.port);
  if (data.use_default_sid != 0)
    return std::snprintf(dblink, KZCI_DBLINK_SIZE, "%.*s:%.*s", host, address.host, port,
                         address.port);
  return std::snprintf(dblink, KZCI_DBLINK_SIZE, "%.*s:%.*s/%.*s", host, address.host, port,
                       address.port, precision(data.service_name_len, sizeof data.service_name),
                       data.service_name);
}

}  // namespace

sword KZCITnsServiceExtraInfoGet(KZCITnsService *tns_service, char *extra_info, sb4 *extra_info_len,
                                 sb4 *kz_mode, char *session_variable, sb4 *session_variable_len) {
  if (tns_service == nullptr || extra_info == nullptr || extra_info_len == nullptr ||
      kz_mode == nullptr || session_variable == nullptr || session_variable_len == nullptr) {
    KZ_LOG(message::null_extra_info_argument, tns_service, extra_info, extra_info_len,
           session_variable, session_variable_len);
    return invalid_handle;
  }
  const KZCIDescription *const des = first_description(*tns_service);
  const KZCIConnectData *const data = des == nullptr ? nullptr : connect_data_of(*des);
  if (data == nullptr) return failure;
  // The mode is handed out only together with extra information.
  if (data->user_extra_info_len != 0) {
    hand_out_text(extra_info, extra_info_len, data->user_extra_info, data->user_extra_info_len);
    *kz_mode = static_cast<sb4>(data->kz_mode);
  }
  if (data->session_variable_len != 0)
    hand_out_text(session_variable, session_variable_len, data->session_variable,
                  data->session_variable_len);
  return success;
}

sword KZCITnsServiceDblinkGet(KZCITnsService *tns_service, char *dblink, sb4 *dblink_len) {
  if (tns_service == nullptr || dblink == nullptr || dblink_len == nullptr) {
    KZ_LOG(message::null_dblink_argument, tns_service, dblink, dblink_len);
    return invalid_handle;
  }
  const KZCIDescription *const des = first_description(*tns_service);
  const KZCIAddressList *const list = des == nullptr ? nullptr : first_address_list(*des);
  const KZCIAddress *const address = list == nullptr ? nullptr : first_address(*list);
  const KZCIConnectData *const data = address == nullptr ? nullptr : connect_data_of(*des);
  if (data == nullptr) return failure;
  const int length = format_dblink(dblink, *address, *data);
  if (length <= 0) {
    KZ_LOG(message::dblink_failed, length);
    return failure;
  }
  *dblink_len = length;
  return success;
}
