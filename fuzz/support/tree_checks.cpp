#include "tree_checks.h"

#include <strings.h>

#include <algorithm>
#include <cstring>
#include <initializer_list>

#include "fuzz_platform.h"

namespace fuzz {
namespace {

std::string without_quotes(std::string_view text) {
  std::string out(text);
  out.erase(std::remove(out.begin(), out.end(), '"'), out.end());
  return out;
}

template <class Value>
bool is_one_of(Value value, std::initializer_list<Value> values) {
  return std::find(values.begin(), values.end(), value) != values.end();
}

void check_switch(boolean value, const char *name) {
  check(value == 0 || value == 1, "%s is %d", name, value);
}

bool are_linked(const list_entry_t &entry) {
  return entry.next != nullptr && entry.next->prev == &entry && entry.prev != nullptr &&
         entry.prev->next == &entry && entry.type == 0;
}

// Everything in a service that is not reserved keeps its default.
bool are_default(const KZCISystemVariables &v) {
  return v.slowsql_threshold == 100 && v.slowsql_buffer_size == 0 && v.slowsql_flush_second == 60 &&
         v.session_variable_len == 0 && v.log_size == 0 && v.log_count == 0 &&
         v.log_level_len == 0 && v.log_path_len == 0;
}

}  // namespace

bool is_reserved(std::string_view name) {
  constexpr char reserved[] = "KZCISYSTEMVARIABLES";
  return strncasecmp(reserved, std::string(name).c_str(), name.size()) == 0;
}

std::string copied_as_string(std::string_view text) {
  std::string out(text.substr(0, text.find('\0')));
  out.resize(text.size());
  return out;
}

TreeChecker::TreeChecker(std::string_view input) : input_without_quotes_(without_quotes(input)) {}

// Follows the ring from the first child on: it closes after exactly `count`
// children, agrees with itself in both directions and holds live blocks only.
template <class Child, class Visit>
void TreeChecker::ring(const Child *first, ub4 count, const char *kind, Visit visit) {
  check((first == nullptr) == (count == 0), "%u %s, the first at %p", count, kind,
        static_cast<const void *>(first));
  const Child *child = first;
  for (ub4 i = 0; i < count; ++i) {
    check(is_live(child, sizeof(Child)), "%s %u is not allocated", kind, i);
    check(are_linked(child->le), "%s %u of %u is badly linked", kind, i, count);
    ++blocks_;
    visit(*child);
    child = KZCI_RECORD_OF_ENTRY(const Child, child->le.next);
    check((child == first) == (i + 1 == count), "the ring of %u %s closes after %u", count, kind,
          i + 1);
  }
}

// A text stands in the input as it is, but for quotes, which may stand anywhere.
void TreeChecker::text(const char *field, ub4 length, std::size_t limit, const char *name) {
  check(length <= limit, "%s is %u characters long", name, length);
  check(input_without_quotes_.find(std::string_view(field, length)) != std::string::npos,
        "%s \"%.*s\" is not in the input", name, static_cast<int>(length), field);
}

// The same for a string copy: zeros stand from the first zero byte on.
void TreeChecker::text_as_string(const char *field, ub4 length, std::size_t limit,
                                 const char *name) {
  check(length <= limit, "%s is %u characters long", name, length);
  const std::string_view whole(field, length);
  check(whole == copied_as_string(whole), "%s goes on behind a zero byte", name);
  text(field, static_cast<ub4>(std::min(whole.find('\0'), whole.size())), limit, name);
}

void TreeChecker::walk(const KZCITns &tns) {
  ring(tns.tns_service, tns.tns_service_count, "services",
       [this](const KZCITnsService &child) { walk(child); });
}

void TreeChecker::walk(const KZCITnsService &service) {
  check(service.net_service_name_len == 0 ||
            is_live(&service, sizeof service + service.net_service_name_len),
        "a service's name is longer than its block");
  text_as_string(service.net_service_name, service.net_service_name_len, 256, "a service's name");
  ring(service.description, service.description_count, "descriptions",
       [this](const KZCIDescription &child) { walk(child); });
  walk(service.sys_vars);
  if (is_reserved(name_of(service)))
    check(service.description_count == 0, "the reserved entry has descriptions");
  else
    check(are_default(service.sys_vars), "an ordinary service has system variables");
}

void TreeChecker::walk(const KZCIDescription &d) {
  ring(d.address_list, d.address_list_count, "address lists",
       [this](const KZCIAddressList &child) { walk(child); });
  check_switch(d.kzlb, "a description's kzlb");
  check(d.kzlb_group_strategy == LB_OPTION_GROUP_ROTATION, "group strategy %d",
        d.kzlb_group_strategy);
  walk(d.black_list_conf);
  if (d.connect_data == nullptr) return;
  check(is_live(d.connect_data, sizeof *d.connect_data), "connect data is not allocated");
  ++blocks_;
  walk(*d.connect_data);
}

void TreeChecker::walk(const KZCIAddressList &list) {
  ring(list.address, list.address_count, "addresses",
       [this](const KZCIAddress &child) { walk(child); });
  check_switch(list.kzlb, "an address list's kzlb");
  check(is_one_of(list.kzlb_strategy,
                  {LB_OPTION_RANDOM, LB_OPTION_SERVERAFFINITY, LB_OPTION_ROTATION}),
        "list strategy %d", list.kzlb_strategy);
}

void TreeChecker::walk(const KZCIAddress &a) {
  text(a.host, a.host_len, 256, "a host");
  text(a.port, a.port_len, 6, "a port");
  text(a.protocol, a.protocol_len, 6, "a protocol");
  check(a.protocol_len == 0 || (a.protocol_len == 3 && strncasecmp(a.protocol, "TCP", 3) == 0),
        "protocol \"%.*s\"", static_cast<int>(a.protocol_len), a.protocol);
  check(a.connect_le.next == &a.connect_le && are_linked(a.connect_le),
        "the connection layer's entry is linked");
}

void TreeChecker::walk(const KZCIConnectData &data) {
  text(data.service_name, data.service_name_len, 256, "a service name");
  text(data.user_extra_info, data.user_extra_info_len, 256, "extra information");
  text(data.session_variable, data.session_variable_len, 256, "a session variable");
}

void TreeChecker::walk(const KZCIBlacklistConf &blacklist) {
  check(blacklist.remove_strategy == LB_OPTION_TIMEOUT, "remove strategy %d",
        blacklist.remove_strategy);
  check(is_one_of(blacklist.append_strategy, {LB_OPTION_RETRY_DERUATION, LB_OPTION_NORMAL}),
        "append strategy %d", blacklist.append_strategy);
}

void TreeChecker::walk(const KZCISystemVariables &v) {
  text_as_string(v.session_variable, v.session_variable_len, 256, "the session variable");
  text_as_string(v.log_level, v.log_level_len, 256, "the log level");
  text_as_string(v.log_path, v.log_path_len, 256, "the log path");
  check(v.log_size == 0 || v.log_size >= 0x100000, "log size %lld",
        static_cast<long long>(v.log_size));
}

std::size_t blocks_below(const KZCITns &tns, std::string_view input) {
  TreeChecker checker(input);
  checker.walk(tns);
  return checker.blocks();
}

}  // namespace fuzz
