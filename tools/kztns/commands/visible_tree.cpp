#include "commands/visible_tree.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>

#include "io/memory_file.h"
#include "report/tree_walk.h"
#include "text/escape.h"
#include "trace/log_watch.h"

namespace kztns {
namespace {

// What the display prints: it knows no other place than standard output.
std::string printed(Tree &tree) {
  const MemoryFile paper;
  std::fflush(stdout);
  const int output = dup(STDOUT_FILENO);
  dup2(paper.descriptor(), STDOUT_FILENO);
  KZCITnsDisplay(tree.get());
  std::fflush(stdout);
  dup2(output, STDOUT_FILENO);
  close(output);
  return paper.text();
}

void blank_line_feeds(char *text, ub4 length) { std::replace(text, text + length, '\n', ' '); }

void blank_line_feeds(KZCIAddress &address, ub4) {
  blank_line_feeds(address.protocol, address.protocol_len);
  blank_line_feeds(address.host, address.host_len);
  blank_line_feeds(address.port, address.port_len);
}

void blank_line_feeds(KZCIAddressList &list, ub4) {
  for_each_record(list.address, list.address_count, KZCIAddressNext,
                  [](KZCIAddress &address, ub4 number) { blank_line_feeds(address, number); });
}

void blank_line_feeds(KZCIDescription &des, ub4) {
  for_each_record(des.address_list, des.address_list_count, KZCIAddressListNext,
                  [](KZCIAddressList &list, ub4 number) { blank_line_feeds(list, number); });
  if (des.connect_data == nullptr) return;
  KZCIConnectData &data = *des.connect_data;
  blank_line_feeds(data.service_name, data.service_name_len);
  blank_line_feeds(data.user_extra_info, data.user_extra_info_len);
  blank_line_feeds(data.session_variable, data.session_variable_len);
}

void blank_line_feeds(KZCITnsService &service, ub4) {
  blank_line_feeds(service.net_service_name, service.net_service_name_len);
  for_each_record(service.description, service.description_count, KZCIDescriptionNext,
                  [](KZCIDescription &des, ub4 number) { blank_line_feeds(des, number); });
  KZCISystemVariables &vars = service.sys_vars;
  blank_line_feeds(vars.session_variable, vars.session_variable_len);
  blank_line_feeds(vars.log_level, vars.log_level_len);
  blank_line_feeds(vars.log_path, vars.log_path_len);
}

}  // namespace

// Printed once more without the line feeds of its texts, the tree shows which line
// feeds are its own.
std::string visible_tree(Tree &tree) {
  const std::string text = printed(tree);
  [[maybe_unused]] const LogWatch silent(std::nullopt);
  for_each_record(tree.service(), tree.get()->tns_service_count, KZCITnsServiceNext,
                  [](KZCITnsService &service, ub4 number) { blank_line_feeds(service, number); });
  const std::string lines = printed(tree);
  std::string shown;
  std::size_t begin = 0;
  for (std::size_t end; (end = lines.find('\n', begin)) != std::string::npos; begin = end + 1)
    shown += visible(std::string_view(text).substr(begin, end - begin)) + "\n";
  return shown;
}

}  // namespace kztns
