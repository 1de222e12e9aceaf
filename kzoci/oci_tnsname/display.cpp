// Printing the records that have children, and choosing where to.
#include "display.h"

#include <cstdlib>

#include "children.h"
#include "reserved_entry.h"
#include "status.h"

using namespace kzoci::tns;

namespace {

// Prints every child; a failure is logged with its status and returned.
template <class Child>
sword display_children(Child *first, ub4 count, FILE *file, sword (*display)(Child *, FILE *),
                       const char *display_failure) {
  return visit_children(first, count, [&](Child *child) {
    const sword status = display(child, file);
    if (status != success) KZ_LOG_ERROR(display_failure, status);
    return status;
  });
}

void print_policy(FILE *file, const KZCIDescription &des) {
  const KZCIBlacklistConf &black = des.black_list_conf;
  std::fprintf(file, "----Discription:\n");
  print_number(file, "------kzlb", des.kzlb);
  print_strategy(file, "------kzlb_group_strategy", des.kzlb_group_strategy);
  print_number(file, "------retry_all_downs", des.retry_all_downs);
  print_number(file, "------retry_timeout", des.retry_timeout);
  print_number(file, "------connect_timeout", des.connect_timout);
  print_number(file, "------read_timeout", des.read_timout);
  print_number(file, "------write_timeout", des.write_timout);
  print_strategy(file, "------append_strategy", black.append_strategy);
  print_strategy(file, "------remove_strategy", black.remove_strategy);
  print_number(file, "------remove_timeout", black.remove_timeout);
  print_number(file, "------duration", black.duration);
  print_number(file, "------retry_times", black.retry_times);
  print_number(file, "------address_list_count", des.address_list_count);
}

sword display_services(const KZCITns &tns, FILE *file) {
  std::fprintf(file, "Tns:\n");
  print_number(file, "--tns_serivce_count", tns.tns_service_count);
  return display_children(tns.tns_service, tns.tns_service_count, file, KZCITnsServiceDisplay,
                          "fail to call KZCITnsServiceDisplay, status:%d");
}

}  // namespace

sword KZCITnsDisplay(KZCITns *tns) {
  if (tns == nullptr) {
    KZ_LOG_ERROR("tns is NULL");
    return failure;
  }
  if (tns->tns_service_count == 0 || tns->tns_service == nullptr) {
    KZ_LOG_ERROR("error tns");
    return failure;
  }
  const char *const name = std::getenv("KZCI_TNS_DISPLAY");
  if (name == nullptr) {
    KZ_LOG_DEBUG("tns display in stdout");
    return display_services(*tns, stdout);
  }
  KZ_LOG_DEBUG("tns display in file:%s", name);
  // Read-only on purpose: the variable tests that the file exists and keeps the
  // dump off standard output; the file itself is left as it is.
  FILE *const file = std::fopen(name, "r");
  if (file == nullptr) {
    KZ_LOG_DEBUG("fail to open display file, file:%s", name);
    return failure;
  }
  const sword status = display_services(*tns, file);
  std::fclose(file);
  return status;
}

sword KZCITnsServiceDisplay(KZCITnsService *tns_service, FILE *display_file) {
  if (tns_service == nullptr || display_file == nullptr) return refuse_null_handle();
  if (is_reserved_name(tns_service->net_service_name, tns_service->net_service_name_len)) {
    const sword status = KZCISystemVariablesDisplay(&tns_service->sys_vars, display_file);
    if (status != success) KZ_LOG_ERROR("fail to call KZCISystemVariablesDisplay, ret:%d", status);
    return status;
  }
  if (tns_service->description_count == 0 || tns_service->description == nullptr) {
    KZ_LOG_ERROR("error tns_service");
    return failure;
  }
  std::fprintf(display_file, "--TnsService:%.*s\n", precision(tns_service->net_service_name_len),
               tns_service->net_service_name);
  print_number(display_file, "----description_count", tns_service->description_count);
  sword status =
      display_children(tns_service->description, tns_service->description_count, display_file,
                       KZCIDescriptionDisplay, "fail to call KZCIDescriptionDisplay, status:%d");
  if (status != success) return status;
  status = KZCISystemVariablesDisplay(&tns_service->sys_vars, display_file);
  if (status != success) KZ_LOG_ERROR("fail to call KZCISystemVariablesDisplay, status:%d", status);
  return status;
}

sword KZCIDescriptionDisplay(KZCIDescription *des, FILE *display_file) {
  if (des == nullptr || display_file == nullptr) return refuse_null_handle();
  if (des->address_list_count == 0 || des->address_list == nullptr) {
    KZ_LOG_ERROR("error des");
    return failure;
  }
  print_policy(display_file, *des);
  sword status =
      display_children(des->address_list, des->address_list_count, display_file,
                       KZCIAddressListDisplay, "fail to call KZCIAddressListDisplay, status:%d");
  if (status != success || des->connect_data == nullptr) return status;
  status = KZCIConnectDataDisplay(des->connect_data, display_file);
  if (status != success) KZ_LOG_ERROR("fail to call KZCIConnectDataDisplay, status:%d", status);
  return status;
}

sword KZCIAddressListDisplay(KZCIAddressList *address_list, FILE *display_file) {
  if (address_list == nullptr || display_file == nullptr) {
    KZ_LOG_DEBUG("address_list is NULL");
    return invalid_handle;
  }
  if (address_list->address == nullptr || address_list->address_count == 0) {
    KZ_LOG_DEBUG("address is NULL, do nothing");
    return success;
  }
  std::fprintf(display_file, "------AddressList:\n");
  print_number(display_file, "--------address_count", address_list->address_count);
  print_strategy(display_file, "--------kzlb_strategy", address_list->kzlb_strategy);
  // The message names the Clear; log readers know it so.
  return display_children(address_list->address, address_list->address_count, display_file,
                          KZCIAddressDisplay, "fail to call KZCIAddressClear, status:%d");
}
