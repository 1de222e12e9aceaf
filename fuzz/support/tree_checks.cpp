#include "tree_checks.h"

#include <strings.h>

#include <algorithm>
#include <cstring>
#include <span>

#include "fuzz_platform.h"
#include "tests/support/key_values.h"

namespace fuzz {
namespace {

using support::Key;
using support::Place;

constexpr std::size_t longest_key = 256;

std::string without_quotes(std::string_view text) {
  std::string out(text);
  out.erase(std::remove(out.begin(), out.end(), '"'), out.end());
  return out;
}

bool are_linked(const list_entry_t &entry) {
  return entry.next != nullptr && entry.next->prev == &entry && entry.prev != nullptr &&
         entry.prev->next == &entry && entry.type == 0;
}

// Everything in a service that is not reserved keeps its default.
bool are_default(const KZCISystemVariables &variables) {
  std::string others;
  support::append_values(others, Place::system_variables, &variables);
  return others.empty();
}

bool is_default_or_a_word(const Key &key, sb8 value) {
  return value == key.by_default ||
         std::any_of(key.words.begin(), key.words.end(),
                     [value](const support::Word &word) { return word.value == value; });
}

bool is_one_of(std::string_view text, std::span<const support::Word> words) {
  return std::any_of(words.begin(), words.end(), [text](const support::Word &word) {
    return text.size() == word.text.size() &&
           strncasecmp(text.data(), word.text.data(), text.size()) == 0;
  });
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
void TreeChecker::text(std::string_view text, std::size_t limit, std::string_view name) {
  const int name_length = static_cast<int>(name.size());
  check(text.size() <= limit, "%.*s is %zu characters long", name_length, name.data(), text.size());
  check(input_without_quotes_.find(text) != std::string::npos, "%.*s \"%.*s\" is not in the input",
        name_length, name.data(), static_cast<int>(text.size()), text.data());
}

// The same for a string copy: zeros stand from the first zero byte on.
void TreeChecker::text_as_string(std::string_view whole, std::size_t limit, std::string_view name) {
  check(whole == copied_as_string(whole), "%.*s goes on after a zero byte",
        static_cast<int>(name.size()), name.data());
  check(whole.size() <= limit, "%.*s is %zu characters long", static_cast<int>(name.size()),
        name.data(), whole.size());
  text(whole.substr(0, whole.find('\0')), limit, name);
}

// The values that the keys of a place give a record.
void TreeChecker::values(Place place, const void *record) {
  for (const Key &key : support::keys_of(place)) {
    if (key.field.size == 0) continue;
    const std::size_t limit = std::min(key.limit, longest_key);
    if (key.takes == support::Takes::word) {
      const sb8 value = support::number_in(record, key.field);
      check(is_default_or_a_word(key, value), "%s is %lld", key.word.data(),
            static_cast<long long>(value));
    }
    if (key.takes != support::Takes::text) continue;
    const std::string_view held = support::text_in(record, key.field);
    if (place == Place::system_variables)
      text_as_string(held, limit, key.word);
    else
      text(held, limit, key.word);
    check(key.words.empty() || held.empty() || is_one_of(held, key.words), "%s is \"%.*s\"",
          key.word.data(), static_cast<int>(held.size()), held.data());
  }
}

void TreeChecker::walk(const KZCITns &tns) {
  ring(tns.tns_service, tns.tns_service_count, "services",
       [this](const KZCITnsService &child) { walk(child); });
}

void TreeChecker::walk(const KZCITnsService &service) {
  check(service.net_service_name_len == 0 ||
            is_live(&service, sizeof service + service.net_service_name_len),
        "a service's name is longer than its block");
  text_as_string(name_of(service), longest_key, "a service's name");
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
  values(Place::description, &d);
  walk(d.black_list_conf);
  if (d.connect_data == nullptr) return;
  check(is_live(d.connect_data, sizeof *d.connect_data), "connect data is not allocated");
  ++blocks_;
  walk(*d.connect_data);
}

void TreeChecker::walk(const KZCIAddressList &list) {
  ring(list.address, list.address_count, "addresses",
       [this](const KZCIAddress &child) { walk(child); });
  values(Place::address_list, &list);
}

void TreeChecker::walk(const KZCIAddress &a) {
  values(Place::address, &a);
  check(a.connect_le.next == &a.connect_le && are_linked(a.connect_le),
        "the connection layer's entry is linked");
}

void TreeChecker::walk(const KZCIConnectData &data) { values(Place::connect_data, &data); }

void TreeChecker::walk(const KZCIBlacklistConf &blacklist) {
  values(Place::remove_strategy, &blacklist);
  values(Place::append_strategy, &blacklist);
}

void TreeChecker::walk(const KZCISystemVariables &variables) {
  values(Place::system_variables, &variables);
  check(variables.log_size == 0 || variables.log_size >= 0x100000, "log size %lld",
        static_cast<long long>(variables.log_size));
}

std::size_t blocks_below(const KZCITns &tns, std::string_view input) {
  TreeChecker checker(input);
  checker.walk(tns);
  return checker.blocks();
}

}  // namespace fuzz
