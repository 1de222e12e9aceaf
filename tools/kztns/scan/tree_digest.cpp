#include "scan/tree_digest.h"

#include <initializer_list>

#include "kzoci/oci_tnsname/record_fields.h"

namespace kztns {
namespace {

using kzoci::tns::Block;
using kzoci::tns::Key;
using kzoci::tns::ValueKind;

// The fields of the blocks that share a record.
void add_fields(std::initializer_list<Block> blocks, const void *record, Digest &digest) {
  for (const Key &key : kzoci::tns::grammar) {
    bool in_record = false;
    for (const Block block : blocks) in_record = in_record || key.block == block;
    if (!in_record || key.name == nullptr) continue;
    if (key.value.kind == ValueKind::text) {
      const auto text = kzoci::tns::text_of(record, key.value.field);
      digest.add(std::string_view(text.data(), text.size()));
    } else {
      digest.add(static_cast<std::uint64_t>(kzoci::tns::number_of(record, key.value.field)));
    }
  }
}

void add_list(KZCIAddressList &list, Digest &digest) {
  add_fields({Block::address_list}, &list, digest);
  digest.add(std::uint64_t{list.address_count});
  KZCIAddress *address = list.address;
  for (ub4 i = 0; i < list.address_count; ++i, address = KZCIAddressNext(address))
    add_fields({Block::address}, address, digest);
}

void add_description(KZCIDescription &description, Digest &digest) {
  add_fields({Block::description}, &description, digest);
  add_fields({Block::blacklist, Block::remove_strategy, Block::append_strategy},
             &description.black_list_conf, digest);
  digest.add(std::uint64_t{description.address_list_count});
  KZCIAddressList *list = description.address_list;
  for (ub4 i = 0; i < description.address_list_count; ++i, list = KZCIAddressListNext(list))
    add_list(*list, digest);
  digest.add(std::uint64_t{description.connect_data != nullptr});
  if (description.connect_data != nullptr)
    add_fields({Block::connect_data}, description.connect_data, digest);
}

}  // namespace

std::uint64_t tree_digest(KZCITnsService &service) {
  Digest digest;
  digest.add(std::string_view(service.net_service_name, service.net_service_name_len));
  add_fields({Block::system_variables}, &service.sys_vars, digest);
  digest.add(std::uint64_t{service.description_count});
  KZCIDescription *description = service.description;
  for (ub4 i = 0; i < service.description_count;
       ++i, description = KZCIDescriptionNext(description))
    add_description(*description, digest);
  return digest.value();
}

}  // namespace kztns
