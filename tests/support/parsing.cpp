#include "parsing.h"

#include "key_values.h"

namespace support {
namespace {

std::string read_all(std::FILE *file) {
  std::rewind(file);
  std::string text;
  char chunk[4096];
  for (std::size_t n; (n = std::fread(chunk, 1, sizeof chunk, file)) > 0;) text.append(chunk, n);
  return text;
}

void append_address(std::string &out, const KZCIAddress &address) {
  out += "      address";
  append_values(out, Place::address, &address);
  out += '\n';
}

void append_list(std::string &out, const KZCIAddressList &list) {
  out += "    list";
  append_values(out, Place::address_list, &list);
  out += " addresses=" + std::to_string(list.address_count) + '\n';
  KZCIAddress *address = list.address;
  for (ub4 i = 0; i < list.address_count; ++i, address = KZCIAddressNext(address))
    append_address(out, *address);
}

void append_description(std::string &out, const KZCIDescription &des) {
  out += "  description";
  append_values(out, Place::description, &des);
  out += " remove";
  append_values(out, Place::remove_strategy, &des.black_list_conf);
  out += " append";
  append_values(out, Place::append_strategy, &des.black_list_conf);
  out += " lists=" + std::to_string(des.address_list_count) + '\n';
  KZCIAddressList *list = des.address_list;
  for (ub4 i = 0; i < des.address_list_count; ++i, list = KZCIAddressListNext(list))
    append_list(out, *list);
  if (des.connect_data == nullptr) return;
  out += "    data";
  append_values(out, Place::connect_data, des.connect_data);
  out += '\n';
}

}  // namespace

std::string display_text(KZCITns &tns, sword *status) {
  std::fflush(stdout);
  const int kept = dup(STDOUT_FILENO);
  std::FILE *file = temporary_file();
  dup2(fileno(file), STDOUT_FILENO);
  const sword result = KZCITnsDisplay(&tns);
  std::fflush(stdout);
  dup2(kept, STDOUT_FILENO);
  close(kept);
  std::string text = read_all(file);
  std::fclose(file);
  if (status) *status = result;
  return text;
}

std::string full_tree(const KZCITns &tns) {
  std::string out = "services=" + std::to_string(tns.tns_service_count) + '\n';
  KZCITnsService *service = tns.tns_service;
  for (ub4 i = 0; i < tns.tns_service_count; ++i, service = KZCITnsServiceNext(service)) {
    out += " service " + text_of(service->net_service_name, service->net_service_name_len) +
           " descriptions=" + std::to_string(service->description_count) + '\n';
    KZCIDescription *des = service->description;
    for (ub4 d = 0; d < service->description_count; ++d, des = KZCIDescriptionNext(des))
      append_description(out, *des);
    out += "  variables";
    append_values(out, Place::system_variables, &service->sys_vars);
    out += '\n';
  }
  return out;
}

}  // namespace support
