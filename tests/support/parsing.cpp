#include "parsing.h"

#include <sstream>

namespace support {
namespace {

std::string read_all(std::FILE *file) {
  std::rewind(file);
  std::string text;
  char chunk[4096];
  for (std::size_t n; (n = std::fread(chunk, 1, sizeof chunk, file)) > 0;) text.append(chunk, n);
  return text;
}

void print_address(std::ostream &out, const KZCIAddress &address) {
  out << "      address host=" << text_of(address.host, address.host_len)
      << " port=" << text_of(address.port, address.port_len)
      << " protocol=" << text_of(address.protocol, address.protocol_len)
      << " weight=" << address.weight << "\n";
}

void print_list(std::ostream &out, const KZCIAddressList &list) {
  out << "    list kzlb=" << list.kzlb << " strategy=" << list.kzlb_strategy
      << " addresses=" << list.address_count << "\n";
  KZCIAddress *address = list.address;
  for (ub4 i = 0; i < list.address_count; ++i, address = KZCIAddressNext(address))
    print_address(out, *address);
}

void print_connect_data(std::ostream &out, const KZCIConnectData &data) {
  out << "    data service=" << text_of(data.service_name, data.service_name_len)
      << " extra=" << text_of(data.user_extra_info, data.user_extra_info_len)
      << " session=" << text_of(data.session_variable, data.session_variable_len)
      << " mode=" << data.kz_mode << " default_sid=" << data.use_default_sid << "\n";
}

void print_description(std::ostream &out, const KZCIDescription &des) {
  const KZCIBlacklistConf &black = des.black_list_conf;
  out << "  description kzlb=" << des.kzlb << " group=" << des.kzlb_group_strategy
      << " all_downs=" << des.retry_all_downs << " retry=" << des.retry_timeout
      << " connect=" << des.connect_timout << " read=" << des.read_timout
      << " write=" << des.write_timout << " black=" << black.remove_strategy << ","
      << black.remove_timeout << "," << black.append_strategy << "," << black.retry_times << ","
      << black.duration << " lists=" << des.address_list_count << "\n";
  KZCIAddressList *list = des.address_list;
  for (ub4 i = 0; i < des.address_list_count; ++i, list = KZCIAddressListNext(list))
    print_list(out, *list);
  if (des.connect_data) print_connect_data(out, *des.connect_data);
}

void print_variables(std::ostream &out, const KZCISystemVariables &vars) {
  out << "  variables threshold=" << vars.slowsql_threshold
      << " buffer=" << vars.slowsql_buffer_size << " flush=" << vars.slowsql_flush_second
      << " session=" << text_of(vars.session_variable, vars.session_variable_len)
      << " log_size=" << vars.log_size << " log_count=" << vars.log_count
      << " log_level=" << text_of(vars.log_level, vars.log_level_len)
      << " log_path=" << text_of(vars.log_path, vars.log_path_len) << "\n";
}

}  // namespace

std::string display_text(KZCITns &tns, sword *status) {
  std::fflush(stdout);
  const int kept = dup(STDOUT_FILENO);
  std::FILE *file = std::tmpfile();
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
  std::ostringstream out;
  out << "services=" << tns.tns_service_count << "\n";
  KZCITnsService *service = tns.tns_service;
  for (ub4 i = 0; i < tns.tns_service_count; ++i, service = KZCITnsServiceNext(service)) {
    out << " service " << text_of(service->net_service_name, service->net_service_name_len)
        << " descriptions=" << service->description_count << "\n";
    KZCIDescription *des = service->description;
    for (ub4 d = 0; d < service->description_count; ++d, des = KZCIDescriptionNext(des))
      print_description(out, *des);
    print_variables(out, service->sys_vars);
  }
  return out.str();
}

}  // namespace support
