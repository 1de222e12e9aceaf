#include "model_blocks.h"

#include <algorithm>
#include <utility>

#include "model_numbers.h"

namespace model {
namespace {

using support::Key;
using support::Takes;

constexpr std::size_t longest_key_word = 20;

// What a block logs of itself.
struct Records {
  Place place;
  std::string_view called;  // up to the pointer to the parent
  std::string_view key_met;
  std::string_view key_refused;
  std::string_view not_built;
};

constexpr Records records[] = {
    {Place::description,
     "call KZCIDescriptionBuild with params [tns_service:", "bulid_description get key_type ",
     "KZCIDescriptionBuild get error key_type", "something error in build description"},
    {Place::address_list,
     "call KZCIAddressListBuild with params [des:", "KZCIAddressListBuild get key_type ",
     "KZCIAddressListBuild get error key_type", "something error in KZCIAddressListBuild"},
    {Place::address,
     "call KZCIAddressBuild with params [address_list:", "KZCIAddressBuild get key_type ",
     "KZCIAddressBuild get error key_type", "something error in build address, status:"},
    {Place::connect_data,
     "call KZCIConnectDataBuild with params [des:", "KZCIConnectDataBuild get key_type ",
     "KZCIConnectDataBuild get error key_type", "something error in KZCIConnectDataBuild"},
    {Place::blacklist, "call KZCIBlacklistConfBuild with params [black_list_conf:",
     "KZCIAddressListBuild get key_type ", "build_black_list_conf get error key_type",
     "something error in build_black_list_conf"},
    {Place::remove_strategy,
     "call KZCIAddressListBuild with params [black:", "KZCIRemoveStrategyBuild get key_type ",
     "get error key_type", "something error in KZCIRemoveStrategyBuild"},
    {Place::append_strategy, "call KZCIAddressListBuild with params [black:", "get key_type ",
     "get error key_type", "something error in KZCIAppendStrategyBuild"},
};

const Records &records_of(Place place) {
  return *std::find_if(std::begin(records), std::end(records),
                       [place](const Records &row) { return row.place == place; });
}

// How the log calls a system variable.
constexpr std::pair<std::string_view, std::string_view> variable_names[] = {
    {"SLOWSQL_THRESHOLD", "slowsql threshold"},
    {"SLOWSQL_BUFFER_SIZE", "slowsql buffer size"},
    {"SLOWSQL_FLUSH_SECOND", "slowsql flush second"},
    {"SESSION_VARIABLE", "session variable"},
    {"LOG_LEVEL", "log level"},
    {"LOG_SIZE", "log size"},
    {"LOG_COUNT", "log level"},
    {"LOG_PATH", "log path"},
};

std::string_view variable_name(std::string_view key) {
  for (const auto &[word, name] : variable_names)
    if (word == key) return name;
  return "";
}

}  // namespace

int BlockReader::type() const {
  for (const Key &key : support::keys)
    if (key.word == key_) return key.number;
  return 0;
}

Step BlockReader::key_word() {
  const Step step = input_.expect(Kind::word);
  if (step != Step::good) return step;
  const std::string_view word = input_.word();
  key_ = key_of(word);
  if (word.size() > longest_key_word)
    log_.error("parse_params tns_key_len:", word.size(), " > ", longest_key_word);
  else if (key_ == no_key)
    log_.debug("fail to find key, key size:", word.size(), ", key str:", printed(word));
  else
    log_.debug("succ to find key, key is:", type());
  if (key_ != no_key) return Step::good;
  log_.error("get error key type");
  return Step::wrong;
}

Step BlockReader::reported(Step step, std::string_view failed) {
  if (step != Step::good) log_.error(failed, ", status:", status_of(step));
  return step;
}

Step BlockReader::refused(Place place) {
  log_.error(records_of(place).key_refused);
  return Step::wrong;
}

Step BlockReader::without_memory(std::string_view record, std::size_t size) {
  log_.error("malloc ", record, " error, malloc size:", size);
  return Step::wrong;
}

// The first word that the value is a leading part of.
Step BlockReader::word(const Key &key, Values &values) {
  const Step read = input_.expect(Kind::word);
  const std::string_view value = input_.word();
  for (const support::Word &word : key.words) {
    if (!stands_for(value, word.text)) continue;
    values.number(key) = word.value;
    return read;
  }
  log_.error(key.complaint, printed(value));
  return Step::wrong;
}

Step BlockReader::number(const Key &key, Values &values) {
  const Step read = input_.expect(Kind::word);
  const Number number = number_of(input_.word());
  values.number(key) = key.kept(number.value);
  if (number.accepted) return read;
  log_.error("fail to covert to int, src value:", printed(input_.word()));
  return Step::wrong;
}

// A text beyond the limit is dropped; only a text that is not there is a fault, and a
// field that holds none of the words, if there are only some.
Step BlockReader::text(const Key &key, Values &values) {
  std::string &field = values.text(key);
  const Step read = input_.expect(Kind::word);
  if (read == Step::good && input_.word().size() <= key.limit)
    field = input_.word();
  else
    log_.error("fail to parse string value");
  if (key.place == Place::system_variables) field = copied_as_string(field);
  const auto is_field = [&field](const support::Word &word) {
    return field.size() == word.text.size() && stands_for(field, word.text);
  };
  if (key.words.empty() || std::any_of(key.words.begin(), key.words.end(), is_field)) return read;
  return Step::wrong;
}

Step BlockReader::value(const Key &key, Values &values) {
  switch (key.takes) {
    case Takes::word:
      return word(key, values);
    case Takes::integer:
      return number(key, values);
    default:
      return text(key, values);
  }
}

// "(" KEY "="
Step BlockReader::begin_item(Place place) {
  Step step = input_.expect(Kind::open);
  if (step == Step::good) step = key_word();
  if (step == Step::good) step = input_.expect(Kind::equal);
  if (step == Step::good) log_.debug(records_of(place).key_met, type());
  return step;
}

// block := item { item }, item := "(" KEY "=" value ")". A block is good when
// ")" was the last token, whatever stopped it. The handler gets the value.
template <class Handle>
Step BlockReader::items(Place place, Handle handle) {
  Step step = Step::good;
  while (step == Step::good) {
    step = begin_item(place);
    if (step == Step::good) step = handle();
    if (step == Step::good) step = input_.expect(Kind::close);
  }
  if (input_.last() == Kind::close) return Step::good;
  const std::string_view not_built = records_of(place).not_built;
  if (place == Place::address)
    log_.error(not_built, status_of(step));
  else
    log_.error(not_built);
  return Step::wrong;
}

// A block of nothing but values.
Step BlockReader::values_of(Place place, Values &values) {
  return items(place, [&] {
    const Key *const key = key_at(place);
    return key != nullptr ? value(*key, values) : refused(place);
  });
}

Step BlockReader::address(AddressList &list) {
  log_.debug(records_of(Place::address).called, "PTR], [parse_params:PTR]");
  if (!memory_.allocate()) return without_memory("address", sizeof(KZCIAddress));
  Values address(Place::address);
  const Step step = values_of(Place::address, address);
  if (step == Step::good) list.addresses.push_back(std::move(address));
  return step;
}

Step BlockReader::list_item(AddressList &list) {
  const Key *const key = key_at(Place::address_list);
  if (key == nullptr) return refused(Place::address_list);
  if (key->takes != Takes::block) return value(*key, list.values);
  return reported(address(list), "fail to call buil_address_list");
}

Step BlockReader::address_list(Description &description) {
  log_.debug(records_of(Place::address_list).called, "PTR], [parse_params:PTR]");
  if (!memory_.allocate()) return without_memory("address_list", sizeof(KZCIAddressList));
  AddressList list;
  const Step step = items(Place::address_list, [&] { return list_item(list); });
  if (step == Step::good) {
    log_.debug("success to call KZCIAddressListBuild, address count:", list.addresses.size());
    description.lists.push_back(std::move(list));
  } else {
    append_blocks_below(list, memory_.lost);
  }
  return step;
}

// An address outside any list gets a list of its own, if it is the first.
Step BlockReader::bare_address(Description &description) {
  if (!description.lists.empty()) {
    log_.error("no address_list, but address_list is not NULL");
    return Step::wrong;
  }
  if (!memory_.allocate()) return without_memory("address_list", sizeof(KZCIAddressList));
  AddressList list;
  const Step step = address(list);
  if (step == Step::good)
    description.lists.push_back(std::move(list));
  else
    log_.error("fail to call KZCIAddressBuild");
  return step;
}

Step BlockReader::connect_data(Description &description) {
  log_.debug(records_of(Place::connect_data).called, "PTR], [parse_params:PTR]");
  if (!memory_.allocate()) return without_memory("connect_data", sizeof(KZCIConnectData));
  Values data(Place::connect_data);
  const Step step = values_of(Place::connect_data, data);
  if (step != Step::good) return step;
  const Key &name = *support::key_in(Place::connect_data, "SERVICE_NAME");
  log_.debug("success to call KZCIConnectDataBuild, service_name:", printed(data.text(name)));
  if (description.data) {
    log_.error("connect_data is already parse");
    return Step::wrong;
  }
  description.data = std::move(data);
  return Step::good;
}

Step BlockReader::strategy(Place place, Values &values) {
  const std::string_view name =
      place == Place::remove_strategy ? "KZCIRemoveStrategyBuild" : "KZCIAppendStrategyBuild";
  log_.debug(records_of(place).called, "PTR], [parse_params:PTR]");
  const Step step = values_of(place, values);
  if (step == Step::good) log_.debug("success to call ", name);
  if (step != Step::good) log_.error("fail to call ", name, ", status:", status_of(step));
  return step;
}

Step BlockReader::blacklist(Description &description) {
  log_.debug(records_of(Place::blacklist).called, "PTR], [parse_params:PTR]");
  const Step step = items(Place::blacklist, [&] {
    const Key *const key = key_at(Place::blacklist);
    if (key == nullptr) return refused(Place::blacklist);
    return strategy(key->opens,
                    key->opens == Place::remove_strategy ? description.remove : description.append);
  });
  if (step == Step::good) log_.debug("success to call build_black_list_conf");
  return step;
}

// One value is read and logged, but not kept.
Step BlockReader::description_value(const Key &key, Values &values) {
  const Step step = value(key, values);
  if (key.word == "RETRY_DELAY")
    log_.debug("oracle RETRY_DELAY=", static_cast<int>(values.number(key)));
  return step;
}

Step BlockReader::description_item(Description &description) {
  const Key *const key = key_at(Place::description);
  if (key == nullptr) return refused(Place::description);
  if (key->takes != Takes::block) return description_value(*key, description.values);
  switch (key->opens) {
    case Place::address_list:
      return reported(address_list(description), "fail to call KZCIAddressListBuild");
    case Place::address:
      return bare_address(description);
    case Place::connect_data:
      return reported(connect_data(description), "fail to call KZCIConnectDataBuild");
    default:
      return reported(blacklist(description), "fail to call KZCIAddressListBuild");
  }
}

// The size in the log is that of a service.
Step BlockReader::description(Service &service) {
  log_.debug(records_of(Place::description).called, "PTR], [parse_params:PTR]");
  if (!memory_.allocate()) return without_memory("description", sizeof(KZCITnsService));
  Description description;
  const Step step = items(Place::description, [&] { return description_item(description); });
  if (step == Step::good) {
    log_.debug("success to build description, address count:", description.lists.size());
    service.descriptions.push_back(std::move(description));
  } else {
    append_blocks_below(description, memory_.lost);
  }
  return step;
}

Step BlockReader::variable(Values &variables) {
  const Key *const key = key_at(Place::system_variables);
  if (key == nullptr) {
    log_.warn("parse system variables get error key type:", type());
    input_.expect(Kind::word);
    return Step::good;
  }
  const Step step = value(*key, variables);
  const std::string_view name = variable_name(key->word);
  if (key->takes == Takes::text)
    log_.debug("parse system variables get ", name, ":", printed(variables.text(*key)));
  else
    log_.debug("parse system variables get ", name, ":", variables.number(*key));
  return step;
}

}  // namespace model
