// The tree of a service as plain values, and its text.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "key_values.h"

namespace model {

using support::Place;
using support::Values;

struct AddressList {
  Values values{Place::address_list};
  std::vector<Values> addresses;
};

struct Description {
  Values values{Place::description};
  Values remove{Place::remove_strategy};
  Values append{Place::append_strategy};
  std::vector<AddressList> lists;
  std::optional<Values> data;
};

struct Service {
  std::string name;
  std::vector<Description> descriptions;
  Values variables{Place::system_variables};
};

// The text that support::full_tree gives for a container of this one service.
std::string text_of(const Service &service);
std::string text_of_nothing();

// Blocks of memory, each as its size and its tag.
using Blocks = std::vector<std::string>;
std::string block_of(std::size_t size, const std::string &tag);

// The blocks of the records below a record.
void append_blocks_below(const AddressList &list, Blocks &blocks);
void append_blocks_below(const Description &description, Blocks &blocks);
void append_blocks_below(const Service &service, Blocks &blocks);

}  // namespace model
