// The tree of a service as plain values, and its text.
#pragma once

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

// Tags of the blocks below a record, and of the record too.
using Tags = std::vector<std::string>;
void append_tags_below(const AddressList &list, Tags &tags);
void append_tags_below(const Description &description, Tags &tags);
void append_tags_below(const Service &service, Tags &tags);

}  // namespace model
