#include "model_tree.h"

#include "kzoci/oci_tnsname.h"

namespace model {
namespace {

void append_line(std::string &out, const char *name, const Values &values) {
  out += name;
  values.append_to(out);
  out += '\n';
}

void append(const AddressList &list, std::string &out) {
  out += "    list";
  list.values.append_to(out);
  out += " addresses=" + std::to_string(list.addresses.size()) + '\n';
  for (const Values &address : list.addresses) append_line(out, "      address", address);
}

void append(const Description &d, std::string &out) {
  out += "  description";
  d.values.append_to(out);
  out += " remove";
  d.remove.append_to(out);
  out += " append";
  d.append.append_to(out);
  out += " lists=" + std::to_string(d.lists.size()) + '\n';
  for (const AddressList &list : d.lists) append(list, out);
  if (d.data) append_line(out, "    data", *d.data);
}

}  // namespace

std::string text_of_nothing() { return "services=0\n"; }

std::string text_of(const Service &service) {
  std::string out = "services=1\n";
  out += " service " + service.name +
         " descriptions=" + std::to_string(service.descriptions.size()) + '\n';
  for (const Description &description : service.descriptions) append(description, out);
  append_line(out, "  variables", service.variables);
  return out;
}

std::string block_of(std::size_t size, const std::string &tag) {
  return std::to_string(size) + ' ' + tag;
}

void append_blocks_below(const AddressList &list, Blocks &blocks) {
  blocks.insert(blocks.end(), list.addresses.size(), block_of(sizeof(KZCIAddress), "address"));
}

void append_blocks_below(const Description &description, Blocks &blocks) {
  for (const AddressList &list : description.lists) {
    append_blocks_below(list, blocks);
    blocks.push_back(block_of(sizeof(KZCIAddressList), "address_list"));
  }
  if (description.data) blocks.push_back(block_of(sizeof(KZCIConnectData), "KZCIConnectData"));
}

void append_blocks_below(const Service &service, Blocks &blocks) {
  for (const Description &description : service.descriptions) {
    append_blocks_below(description, blocks);
    blocks.push_back(block_of(sizeof(KZCIDescription), "KZCIDescription"));
  }
}

}  // namespace model
