#include "model_reader.h"

#include <algorithm>
#include <initializer_list>
#include <utility>

#include "model_input.h"
#include "model_numbers.h"
#include "model_words.h"

namespace model {
namespace {

constexpr std::string_view reserved_name = "KZCISYSTEMVARIABLES";
constexpr std::string_view literal_beginning = "(DESCRIPTION=";

struct Choice {
  std::string_view word;
  int value;
};

// Reads the blocks of one service.
class Reader {
 public:
  Reader(std::string_view text, Prediction &out) : input_(text), out_(out) {}

  void look_up(std::string_view name);
  void read_literal();

 private:
  template <class Handle>
  bool items(Handle handle);

  bool read_value() { return input_.expect(Kind::word) == Step::good; }
  bool choose(std::initializer_list<Choice> choices, int &field, const char *complaint);
  bool number(sb8 &field);
  bool text(std::string &field, std::size_t limit);
  bool text_of_variable(std::string &field, std::size_t limit);
  void complain(const std::string &about) { out_.complaints.push_back(about); }

  bool on_off(int &field) {
    return choose({{"ON", 1}, {"OFF", 0}}, field, "parse LB_KZLB get wrong key:");
  }

  bool address(AddressList &list);
  bool protocol(Address &address);
  bool address_list(Description &description);
  bool bare_address(Description &description);
  bool connect_data(Description &description);
  bool blacklist(Blacklist &black);
  bool remove_strategy(Blacklist &black);
  bool append_strategy(Blacklist &black);
  bool description(Service &service);
  bool description_item(Description &description);
  bool variable(Variables &variables);
  bool begin_block(bool reserved);
  bool block(Service &service, bool reserved);

  Step skip_entry(bool &stop);
  sword build_entry();
  void give(const Service &service);

  Input input_;
  Prediction &out_;
  std::string_view key_ = no_key;
};

bool Reader::choose(std::initializer_list<Choice> choices, int &field, const char *complaint) {
  const bool read = read_value();
  const std::string_view value = input_.word();
  for (const Choice &choice : choices) {
    if (!stands_for(value, choice.word)) continue;
    field = choice.value;
    return read;
  }
  complain(complaint + printed(value));
  return false;
}

bool Reader::number(sb8 &field) {
  const bool read = read_value();
  const Number number = number_of(input_.word());
  field = number.value;
  if (!number.accepted) complain("fail to covert to int, src value:" + printed(input_.word()));
  return read && number.accepted;
}

// A text beyond the limit is dropped; only a text that is not there is a fault.
bool Reader::text(std::string &field, std::size_t limit) {
  const bool read = read_value();
  if (read && input_.word().size() <= limit)
    field = input_.word();
  else
    complain("fail to parse string value");
  return read;
}

bool Reader::text_of_variable(std::string &field, std::size_t limit) {
  const bool read = text(field, limit);
  field = copied_as_string(field);
  return read;
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

bool Reader::protocol(Address &address) {
  const bool read = text(address.protocol, 6);
  return read && address.protocol.size() == 3 && stands_for(address.protocol, "TCP");
}

bool Reader::address(AddressList &list) {
  Address address;
  const bool good = items([&] {
    if (key_ == "PROTOCOL") return protocol(address);
    if (key_ == "HOST") return text(address.host, 256);
    if (key_ == "PORT") return text(address.port, 6);
    return key_ == "WEIGHT" && number(address.weight);
  });
  if (good) list.addresses.push_back(std::move(address));
  return good;
}

bool Reader::address_list(Description &description) {
  AddressList list;
  const bool good = items([&] {
    if (key_ == "ADDRESS") return address(list);
    if (key_ == "KZLB") return on_off(list.balanced);
    return key_ == "KZLB_STRATEGY" &&
           choose({{"RANDOM", 1001}, {"SERVERAFFINITY", 1002}, {"ROTATION", 1003}}, list.strategy,
                  "parse LB_KZLB_STRATEGY get wrong key:");
  });
  if (good)
    description.lists.push_back(std::move(list));
  else
    append_tags_below(list, out_.lost);
  return good;
}

// An address outside any list gets a list of its own, if it is the first.
bool Reader::bare_address(Description &description) {
  AddressList list;
  if (!description.lists.empty() || !address(list)) return false;
  description.lists.push_back(std::move(list));
  return true;
}

bool Reader::connect_data(Description &description) {
  ConnectData data;
  const bool good = items([&] {
    if (key_ == "SERVICE_NAME" || key_ == "SID") return text(data.service, 256);
    if (key_ == "KZ_USER_EXTRA_INFO") return text(data.extra, 256);
    if (key_ == "SESSION_VARIABLE") return text(data.session, 256);
    if (key_ == "KZ_MODE") return number(data.mode);
    return key_ == "USE_DEFAULT_SID" && number(data.default_sid);
  });
  if (!good || description.data) return false;
  description.data = std::move(data);
  return true;
}

bool Reader::blacklist(Blacklist &black) {
  return items([&] {
    if (key_ == "REMOVE_STRATEGY") return remove_strategy(black);
    return key_ == "APPEND_STRATEGY" && append_strategy(black);
  });
}

bool Reader::remove_strategy(Blacklist &black) {
  return items([&] {
    if (key_ == "NAME")
      return choose({{"TIMEOUT", 2001}}, black.remove, "parse LB_NAME get wrong key:");
    return key_ == "TIMEOUT" && number(black.remove_timeout);
  });
}

bool Reader::append_strategy(Blacklist &black) {
  return items([&] {
    if (key_ == "NAME")
      return choose({{"RETRYDURATION", 3001}}, black.append, "parse LB_NAME get wrong key:");
    if (key_ == "RETRY_TIMES" || key_ == "RETRYTIMES") return number(black.retry_times);
    return key_ == "DURATION" && number(black.duration);
  });
}

bool Reader::description_item(Description &d) {
  sb8 stored_nowhere = 0;
  if (key_ == "KZLB") return on_off(d.balanced);
  if (key_ == "KZLB_RETRY_ALL_DOWNS") return number(d.all_downs);
  if (key_ == "KZLB_RETRY_TIMEOUT") return number(d.retry);
  if (key_ == "KZLB_CONNECT_TIMEOUT") return number(d.connect);
  if (key_ == "KZLB_READ_TIMEOUT") return number(d.read);
  if (key_ == "KZLB_WRITE_TIMEOUT") return number(d.write);
  if (key_ == "RETRY_DELAY") return number(stored_nowhere);
  if (key_ == "KZLB_GROUP_STRATEGY")
    return choose({{"ROTATION", 0}}, d.group, "parse LB_KZLB_GROUP_STRATEGY get wrong key:");
  if (key_ == "KZLB_BLACKLIST") return blacklist(d.black);
  if (key_ == "ADDRESS_LIST") return address_list(d);
  if (key_ == "CONNECT_DATA") return connect_data(d);
  return key_ == "ADDRESS" && bare_address(d);
}

bool Reader::description(Service &service) {
  Description description;
  const bool good = items([&] { return description_item(description); });
  if (good)
    service.descriptions.push_back(std::move(description));
  else
    append_tags_below(description, out_.lost);
  return good;
}

// Reads the value of one system variable, or passes over that of another key.
bool Reader::variable(Variables &v) {
  sb8 value = 0;
  bool good = true;
  if (key_ == "SLOWSQL_THRESHOLD") return number(v.threshold);
  if (key_ == "SLOWSQL_BUFFER_SIZE") return number(v.buffer);
  if (key_ == "SLOWSQL_FLUSH_SECOND") {
    good = number(value);
    v.flush = static_cast<ub4>(value);
  } else if (key_ == "LOG_SIZE") {
    good = number(value);
    v.log_size = std::max<sb8>(value, 1048576);
  } else if (key_ == "LOG_COUNT") {
    good = number(value);
    v.log_count = value > 4294967295 ? 0 : static_cast<ub4>(value);
  } else if (key_ == "SESSION_VARIABLE") {
    good = text_of_variable(v.session, 256);
  } else if (key_ == "LOG_LEVEL") {
    good = text_of_variable(v.log_level, 1025);
  } else if (key_ == "LOG_PATH") {
    good = text_of_variable(v.log_path, 1025);
  } else {
    read_value();
  }
  return good;
}

// "(" KEY "=". In the reserved entry an unknown or missing key is no fault: an
// unknown one counts as no key, behind a missing one the last key holds on.
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

void Reader::give(const Service &service) {
  out_.status = 0;
  out_.find = 1;
  out_.tree = text_of(service);
}

// The blocks of an entry, its name being the word at hand.
sword Reader::build_entry() {
  Service service;
  service.name = copied_as_string(input_.word());
  const bool reserved = stands_for(input_.word(), reserved_name);
  bool complete = false;
  while (block(service, reserved)) complete = true;
  if (complete && input_.last() == Kind::close) {
    give(service);
    return 0;
  }
  append_tags_below(service, out_.lost);
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

// "(" DESCRIPTION "=" body ")" and only blanks and comments behind it.
void Reader::read_literal() {
  Step step = input_.expect(Kind::open);
  if (step == Step::good) step = input_.expect(Kind::word);
  if (step == Step::good) key_ = key_of(input_.word());
  if (step == Step::good && key_ == no_key) step = Step::wrong;
  if (step == Step::good) step = input_.expect(Kind::equal);
  out_.status = step == Step::end ? 0 : -1;
  if (step != Step::good || key_ != "DESCRIPTION") return;

  Service service;
  service.name = input_.word();
  if (description(service) && input_.expect(Kind::close) == Step::good && !input_.skip_space())
    give(service);
  else
    append_tags_below(service, out_.lost);
}

// The first characters other than blanks decide.
bool is_literal(std::string_view identifier) {
  std::string first;
  for (const char c : identifier)
    if (c != ' ' && c != '\t' && c != '\n' && c != '\r' && first.size() < literal_beginning.size())
      first += c;
  return first.size() == literal_beginning.size() && stands_for(first, literal_beginning);
}

}  // namespace

Prediction predict_literal(std::string_view text) {
  Prediction prediction;
  Reader(text, prediction).read_literal();
  std::sort(prediction.lost.begin(), prediction.lost.end());
  return prediction;
}

Prediction predict(std::string_view identifier, std::string_view names_file) {
  if (is_literal(identifier)) return predict_literal(identifier);
  Prediction prediction;
  Reader(names_file, prediction).look_up(identifier);
  std::sort(prediction.lost.begin(), prediction.lost.end());
  return prediction;
}

}  // namespace model
