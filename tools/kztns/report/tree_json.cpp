// Every setting is an object {"value": ..., "default": true|false}, with a
// "length" for a text and a "name" for a strategy. "default" tells whether the
// setting is as the record's Init leaves it. Counts and arrays stand bare: a
// count is the length of the array after it.
#include "report/tree_json.h"

#include <initializer_list>
#include <string_view>

#include <nlohmann/json.hpp>

#include "kzoci/oci_tnsname/record_fields.h"
#include "report/tree_walk.h"
#include "text/escape.h"

namespace kztns {
namespace {

using Json = nlohmann::ordered_json;
using kzoci::tns::Block;
using kzoci::tns::Key;
using kzoci::tns::ValueKind;

// The length is that of the bytes in the record, before any is escaped.
Json text_json(std::string_view value, bool by_default) {
  return {{"value", valid_utf8(value)}, {"length", value.size()}, {"default", by_default}};
}

Json field_json(const Key &key, const void *record) {
  const bool by_default = is_default(key, record);
  if (key.value.kind == ValueKind::text) return text_json(text_value(key, record), by_default);
  const sb8 value = kzoci::tns::number_of(record, key.value.field);
  if (key.value.kind == ValueKind::integer) return {{"value", value}, {"default", by_default}};
  if (is_switch(key)) return {{"value", value != 0}, {"default", by_default}};
  return {{"name", value_text(key, record)}, {"value", value}, {"default", by_default}};
}

// The fields of the blocks that share a record.
Json fields_json(std::initializer_list<Block> blocks, const void *record) {
  Json fields = Json::object();
  for (const Block block : blocks)
    for_each_field(block, [&](const Key &key) { fields[key.name] = field_json(key, record); });
  return fields;
}

template <typename Record>
Json array_of(Record *first, ub4 count, Record *(*next)(Record *), Json (*render)(const Record &)) {
  Json array = Json::array();
  for_each_record(first, count, next,
                  [&](const Record &record, ub4) { array.push_back(render(record)); });
  return array;
}

Json address_json(const KZCIAddress &address) { return fields_json({Block::address}, &address); }

Json address_list_json(const KZCIAddressList &list) {
  Json fields = fields_json({Block::address_list}, &list);
  fields["address_count"] = list.address_count;
  fields["addresses"] = array_of(list.address, list.address_count, KZCIAddressNext, address_json);
  return fields;
}

Json connect_data_json(const KZCIConnectData *data) {
  if (data == nullptr) return nullptr;
  return fields_json({Block::connect_data}, data);
}

Json description_json(const KZCIDescription &des) {
  Json fields = fields_json({Block::description}, &des);
  fields["blacklist"] = fields_json(
      {Block::blacklist, Block::remove_strategy, Block::append_strategy}, &des.black_list_conf);
  fields["address_list_count"] = des.address_list_count;
  fields["address_lists"] =
      array_of(des.address_list, des.address_list_count, KZCIAddressListNext, address_list_json);
  fields["connect_data"] = connect_data_json(des.connect_data);
  return fields;
}

// A service's Init is given its name: the default is a service without one.
Json service_json(const KZCITnsService &service) {
  const std::string_view name(service.net_service_name, service.net_service_name_len);
  return {{"net_service_name", text_json(name, name.empty())},
          {"description_count", service.description_count},
          {"descriptions", array_of(service.description, service.description_count,
                                    KZCIDescriptionNext, description_json)},
          {"system_variables", fields_json({Block::system_variables}, &service.sys_vars)}};
}

}  // namespace

std::string tree_json(const KZCITns &tns) {
  const Json tree = {{"service_count", tns.tns_service_count},
                     {"services", array_of(tns.tns_service, tns.tns_service_count,
                                           KZCITnsServiceNext, service_json)}};
  return visible_json(tree.dump(2)) + "\n";
}

}  // namespace kztns
