#include "commands/visible_tree.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>

#include "io/memory_file.h"
#include "kzoci/oci_tnsname/record_fields.h"
#include "report/tree_walk.h"
#include "text/escape.h"
#include "trace/log_watch.h"

namespace kztns {
namespace {

using kzoci::tns::Block;

// What the display prints: it knows no other place than standard output. Absent when
// there is no descriptor or no memory for it.
std::optional<std::string> printed(Tree &tree) {
  const MemoryFile paper;
  std::fflush(stdout);
  const int output = dup(STDOUT_FILENO);
  if (paper.error() != 0 || output == -1) return std::nullopt;
  dup2(paper.descriptor(), STDOUT_FILENO);
  KZCITnsDisplay(tree.get());
  std::fflush(stdout);
  dup2(output, STDOUT_FILENO);
  close(output);
  return paper.text();
}

// The length is that of a text, not of its array.
void blank_line_feeds(char *text, std::size_t length) {
  std::replace(text, text + length, '\n', ' ');
}

// In the texts of a block's record.
void blank_line_feeds(Block block, void *record) {
  for_each_field(block, [&](const kzoci::tns::Key &key) {
    if (key.value.kind != kzoci::tns::ValueKind::text) return;
    auto *const text = static_cast<char *>(kzoci::tns::field_of(record, key.value.field));
    blank_line_feeds(text, text_value(key, record).size());
  });
}

void blank_line_feeds(KZCIAddressList &list, ub4) {
  blank_line_feeds(Block::address_list, &list);
  for_each_record(list.address, list.address_count, KZCIAddressNext,
                  [](KZCIAddress &address, ub4) { blank_line_feeds(Block::address, &address); });
}

void blank_line_feeds(KZCIDescription &des, ub4) {
  blank_line_feeds(Block::description, &des);
  for_each_record(des.address_list, des.address_list_count, KZCIAddressListNext,
                  [](KZCIAddressList &list, ub4 number) { blank_line_feeds(list, number); });
  if (des.connect_data != nullptr) blank_line_feeds(Block::connect_data, des.connect_data);
}

void blank_line_feeds(KZCITnsService &service, ub4) {
  blank_line_feeds(service.net_service_name, service.net_service_name_len);
  for_each_record(service.description, service.description_count, KZCIDescriptionNext,
                  [](KZCIDescription &des, ub4 number) { blank_line_feeds(des, number); });
  blank_line_feeds(Block::system_variables, &service.sys_vars);
}

}  // namespace

// Printed once more without the line feeds of its texts, the tree shows which line
// feeds are its own.
std::optional<std::string> visible_tree(Tree &tree) {
  const std::optional<std::string> text = printed(tree);
  [[maybe_unused]] const LogWatch silent(std::nullopt);
  for_each_record(tree.service(), tree.get()->tns_service_count, KZCITnsServiceNext,
                  [](KZCITnsService &service, ub4 number) { blank_line_feeds(service, number); });
  const std::optional<std::string> lines = printed(tree);
  if (!text || !lines) return std::nullopt;
  std::string shown;
  std::size_t begin = 0;
  for (std::size_t end; (end = lines->find('\n', begin)) != std::string::npos; begin = end + 1)
    shown += visible(std::string_view(*text).substr(begin, end - begin)) + "\n";
  return shown;
}

}  // namespace kztns
