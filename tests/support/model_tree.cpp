#include "model_tree.h"

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

void append_tags_below(const AddressList &list, Tags &tags) {
  tags.insert(tags.end(), list.addresses.size(), "address");
}

void append_tags_below(const Description &description, Tags &tags) {
  for (const AddressList &list : description.lists) {
    append_tags_below(list, tags);
    tags.emplace_back("address_list");
  }
  if (description.data) tags.emplace_back("KZCIConnectData");
}

void append_tags_below(const Service &service, Tags &tags) {
  for (const Description &description : service.descriptions) {
    append_tags_below(description, tags);
    tags.emplace_back("KZCIDescription");
  }
}

}  // namespace model
