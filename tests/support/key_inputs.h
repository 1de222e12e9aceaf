// The smallest inputs that reach a key, and the record that it fills.
#pragma once

#include <string>
#include <vector>

#include "key_values.h"

namespace support {

inline std::string sample_item(const Key &key);

// A value that the key accepts and that is not its default, where there is one.
inline std::string sample_value(const Key &key) {
  switch (key.takes) {
    case Takes::block:
      return sample_item(keys_of(key.opens).front());
    case Takes::integer:
      return "1234567";
    default:
      if (key.words.empty()) return "x";
      return std::string(key.words.front().value == key.by_default ? key.words.back().text
                                                                   : key.words.front().text);
  }
}

inline std::string sample_item(const Key &key) {
  return '(' + std::string(key.word) + '=' + sample_value(key) + ')';
}

// The input around "KEY=value": of a literal descriptor, or, for a system variable, of
// the reserved entry after its "=".
struct BlockPath {
  std::string before;
  std::string after;
};

// One for each place that the key's block can stand in.
inline std::vector<BlockPath> paths_to(const Key &key) {
  if (key.place == Place::entry || key.place == Place::system_variables) return {{"(", ")"}};
  std::vector<BlockPath> out;
  for (const Key &block : keys) {
    if (block.takes != Takes::block || block.opens != key.place) continue;
    for (const BlockPath &path : paths_to(block))
      out.push_back({path.before + std::string(block.word) + "=(", ')' + path.after});
  }
  return out;
}

// The first record of a service that the keys of a place fill.
inline const void *record_of(const KZCITnsService &service, Place place) {
  const KZCIDescription *const des = service.description;
  switch (place) {
    case Place::address_list:
      return des->address_list;
    case Place::address:
      return des->address_list->address;
    case Place::connect_data:
      return des->connect_data;
    case Place::remove_strategy:
    case Place::append_strategy:
      return &des->black_list_conf;
    case Place::system_variables:
      return &service.sys_vars;
    default:
      return des;
  }
}

}  // namespace support
