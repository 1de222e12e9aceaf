#include "model_reader.h"

#include <algorithm>
#include <utility>

#include "model_input.h"
#include "model_numbers.h"
#include "model_words.h"

namespace model {
namespace {

using support::Key;
using support::Takes;

constexpr std::string_view reserved_name = "KZCISYSTEMVARIABLES";
constexpr std::string_view literal_beginning = "(DESCRIPTION=";

// Reads the blocks of one service.
class Reader {
 public:
  Reader(std::string_view text, std::size_t failing_allocation, Prediction &out)
      : input_(text), failing_allocation_(failing_allocation), out_(out) {}

  void look_up(std::string_view name);
  void read_literal();

 private:
  template <class Handle>
  bool items(Handle handle);

  bool allocate() { return ++out_.allocations != failing_allocation_; }
  bool read_value() { return input_.expect(Kind::word) == Step::good; }
  bool value(const Key &key, Values &values);
  bool word(const Key &key, Values &values);
  bool number(const Key &key, Values &values);
  bool text(const Key &key, Values &values);
  void complain(const std::string &about) { out_.complaints.push_back(about); }
  const Key *key_at(Place place) const { return support::key_in(place, key_); }

  bool address(AddressList &list);
  bool address_list(Description &description);
  bool bare_address(Description &description);
  bool connect_data(Description &description);
  bool values_of(Place place, Values &values);
  bool blacklist(Description &description);
  bool description(Service &service);
  bool description_item(Description &description);
  bool variable(Values &variables);
  bool begin_block(bool reserved);
  bool block(Service &service, bool reserved);

  Step skip_entry(bool &stop);
  sword build_entry();
  void give(const Service &service, const std::string &block);

  Input input_;
  std::size_t failing_allocation_;
  Prediction &out_;
  std::string_view key_ = no_key;
};

// The first word that the value is a leading part of.
bool Reader::word(const Key &key, Values &values) {
  const bool read = read_value();
  const std::string_view value = input_.word();
  for (const support::Word &word : key.words) {
    if (!stands_for(value, word.text)) continue;
    values.number(key) = word.value;
    return read;
  }
  complain(std::string(key.complaint) + printed(value));
  return false;
}

bool Reader::number(const Key &key, Values &values) {
  const bool read = read_value();
  const Number number = number_of(input_.word());
  values.number(key) = key.kept(number.value);
  if (!number.accepted) complain("fail to covert to int, src value:" + printed(input_.word()));
  return read && number.accepted;
}

// A text beyond the limit is dropped; only a text that is not there is a fault, and a
// field that holds none of the words, if there are only some.
bool Reader::text(const Key &key, Values &values) {
  std::string &field = values.text(key);
  const bool read = read_value();
  if (read && input_.word().size() <= key.limit)
    field = input_.word();
  else
    complain("fail to parse string value");
  if (key.place == Place::system_variables) field = copied_as_string(field);
  const auto is_field = [&field](const support::Word &word) {
    return field.size() == word.text.size() && stands_for(field, word.text);
  };
  return read && (key.words.empty() || std::any_of(key.words.begin(), key.words.end(), is_field));
}

bool Reader::value(const Key &key, Values &values) {
  switch (key.takes) {
    case Takes::word:
      return word(key, values);
    case Takes::integer:
      return number(key, values);
    case Takes::text:
      return text(key, values);
    default:
      return false;
  }
}

// block := item { item }, item := "(" KEY "=" value ")". A block is good when
// ")" was the last token, whatever stopped it. The handler gets the value.
template <class Handle>
bool Reader::items(Handle handle) {
  while (input_.expect(Kind::open) == Step::good && input_.expect(Kind::word) == Step::good) {
    key_ = key_of(input_.word());
    if (key_ == no_key || input_.expect(Kind::equal) != Step::good) break;
    if (!handle() || input_.expect(Kind::close) != Step::good) break;
  }
  return input_.last() == Kind::close;
}

// A block of nothing but values.
bool Reader::values_of(Place place, Values &values) {
  return items([&] {
    const Key *const key = key_at(place);
    return key != nullptr && value(*key, values);
  });
}

bool Reader::address(AddressList &list) {
  if (!allocate()) return false;
  Values address(Place::address);
  const bool good = values_of(Place::address, address);
  if (good) list.addresses.push_back(std::move(address));
  return good;
}

bool Reader::address_list(Description &description) {
  if (!allocate()) return false;
  AddressList list;
  const bool good = items([&] {
    const Key *const key = key_at(Place::address_list);
    if (key == nullptr) return false;
    return key->takes == Takes::block ? address(list) : value(*key, list.values);
  });
  if (good)
    description.lists.push_back(std::move(list));
  else
    append_blocks_below(list, out_.lost);
  return good;
}

// An address outside any list gets a list of its own, if it is the first.
bool Reader::bare_address(Description &description) {
  AddressList list;
  if (!description.lists.empty() || !allocate() || !address(list)) return false;
  description.lists.push_back(std::move(list));
  return true;
}

bool Reader::connect_data(Description &description) {
  if (!allocate()) return false;
  Values data(Place::connect_data);
  if (!values_of(Place::connect_data, data) || description.data) return false;
  description.data = std::move(data);
  return true;
}

bool Reader::blacklist(Description &description) {
  return items([&] {
    const Key *const key = key_at(Place::blacklist);
    if (key == nullptr) return false;
    return values_of(
        key->opens, key->opens == Place::remove_strategy ? description.remove : description.append);
  });
}

bool Reader::description_item(Description &description) {
  const Key *const key = key_at(Place::description);
  if (key == nullptr) return false;
  if (key->takes != Takes::block) return value(*key, description.values);
  switch (key->opens) {
    case Place::address_list:
      return address_list(description);
    case Place::address:
      return bare_address(description);
    case Place::connect_data:
      return connect_data(description);
    default:
      return blacklist(description);
  }
}

bool Reader::description(Service &service) {
  if (!allocate()) return false;
  Description description;
  const bool good = items([&] { return description_item(description); });
  if (good)
    service.descriptions.push_back(std::move(description));
  else
    append_blocks_below(description, out_.lost);
  return good;
}

// Reads the value of one system variable, or passes over that of another key.
bool Reader::variable(Values &variables) {
  const Key *const key = key_at(Place::system_variables);
  if (key != nullptr) return value(*key, variables);
  read_value();
  return true;
}

// "(" KEY "=". In the reserved entry an unknown or missing key is no fault: an
// unknown one counts as no key, after a missing one the last key holds on.
bool Reader::begin_block(bool reserved) {
  if (input_.expect(Kind::open) != Step::good) return false;
  const bool read = input_.expect(Kind::word) == Step::good;
  if (read) key_ = key_of(input_.word());
  if (!reserved && (!read || key_ == no_key)) return false;
  return input_.expect(Kind::equal) == Step::good;
}

bool Reader::block(Service &service, bool reserved) {
  if (!begin_block(reserved)) return false;
  const bool good =
      reserved ? variable(service.variables) : key_ == "DESCRIPTION" && description(service);
  return good && input_.expect(Kind::close) == Step::good;
}

void Reader::give(const Service &service, const std::string &block) {
  out_.status = 0;
  out_.find = 1;
  out_.tree = text_of(service);
  out_.live.push_back(block);
  append_blocks_below(service, out_.live);
}

// The blocks of an entry, its name being the word at hand.
sword Reader::build_entry() {
  if (!allocate()) return -1;
  Service service;
  const std::string allocated =
      block_of(sizeof(KZCITnsService) + input_.word().size(), "KZCITnsServiceBuild");
  service.name = copied_as_string(input_.word());
  const bool reserved = stands_for(input_.word(), reserved_name);
  bool complete = false;
  while (block(service, reserved)) complete = true;
  if (complete && input_.last() == Kind::close) {
    give(service, allocated);
    return 0;
  }
  append_blocks_below(service, out_.lost);
  return -1;
}

// Passes over an entry; the reserved one, or one named by a leading part of its
// name, stops the lookup.
Step Reader::skip_entry(bool &stop) {
  const std::string compared = std::string(reserved_name) + '\0';
  const std::string_view name = input_.word().substr(0, compared.size());
  stop = compared.compare(0, name.size(), name) == 0;
  if (stop) return Step::good;
  const Step opened = input_.expect(Kind::open);
  if (opened != Step::good) return opened;
  return input_.skip_block() ? Step::good : Step::end;
}

// The same length and the same characters, up to a zero byte.
bool same_name(std::string_view sought, std::string_view name) {
  return sought.size() == name.size() && printed(sought) == printed(name);
}

void Reader::look_up(std::string_view name) {
  Step step = Step::good;
  bool stop = false;
  while (step == Step::good && !stop) {
    step = input_.expect(Kind::word);
    if (step == Step::good) step = input_.expect(Kind::equal);
    if (step != Step::good) break;
    if (same_name(name, input_.word())) {
      out_.status = build_entry();
      return;
    }
    step = skip_entry(stop);
  }
  out_.status = step == Step::wrong ? -1 : 0;
}

// "(" DESCRIPTION "=" body ")" and only blanks and comments after it.
void Reader::read_literal() {
  Step step = input_.expect(Kind::open);
  if (step == Step::good) step = input_.expect(Kind::word);
  if (step == Step::good) key_ = key_of(input_.word());
  if (step == Step::good && key_ == no_key) step = Step::wrong;
  if (step == Step::good) step = input_.expect(Kind::equal);
  out_.status = step == Step::end ? 0 : -1;
  if (step != Step::good || key_ != "DESCRIPTION" || !allocate()) return;

  Service service;
  service.name = input_.word();
  const std::string allocated =
      block_of(sizeof(KZCITnsService) + service.name.size(), "KZCITnsBuildDes");
  if (description(service) && input_.expect(Kind::close) == Step::good &&
      input_.skip_space() == Step::end)
    give(service, allocated);
  else
    append_blocks_below(service, out_.lost);
}

// The first characters other than blanks decide.
bool is_literal(std::string_view identifier) {
  std::string first;
  for (const char c : identifier)
    if (c != ' ' && c != '\t' && c != '\n' && c != '\r' && first.size() < literal_beginning.size())
      first += c;
  return first.size() == literal_beginning.size() && stands_for(first, literal_beginning);
}

// What is lost is allocated still.
Prediction with_blocks_sorted(Prediction prediction) {
  Blocks &live = prediction.live, &lost = prediction.lost;
  live.insert(live.end(), lost.begin(), lost.end());
  std::sort(live.begin(), live.end());
  std::sort(lost.begin(), lost.end());
  return prediction;
}

}  // namespace

Prediction predict_literal(std::string_view text, const Fault &fault) {
  Prediction prediction;
  Reader(text.substr(0, fault.input_end), fault.allocation, prediction).read_literal();
  return with_blocks_sorted(std::move(prediction));
}

Prediction predict(std::string_view identifier, std::string_view names_file, const Fault &fault) {
  if (is_literal(identifier)) return predict_literal(identifier, {.allocation = fault.allocation});
  Prediction prediction;
  Reader(names_file.substr(0, fault.input_end), fault.allocation, prediction).look_up(identifier);
  return with_blocks_sorted(std::move(prediction));
}

}  // namespace model
