#include "check/entry_warnings.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <optional>

#include "check/absent_items.h"
#include "check/list_warnings.h"
#include "kzoci/platform/level_names.h"
#include "rules/diagnosis.h"
#include "text/characters.h"
#include "text/spelling.h"
#include "trace/library_number.h"

namespace kztns {
namespace {

constexpr sb8 largest_port = 65535;  // TCP's

// Of templates and paths, what separates values elsewhere, and quotes that quote nothing here: the
// last four are those of word processors.
constexpr std::string_view not_of_hosts[] = {"<",      ">",      "/",      "\\",    "{", "}",
                                             "$",      "@",      "&",      ",",     ";", "'",
                                             "\u2018", "\u2019", "\u201C", "\u201D"};

// What templates put around the name of a value.
constexpr std::pair<std::string_view, std::string_view> marks_of_templates[] = {
    {"<", ">"}, {"{", "}"}, {"${", "}"}, {"%", "%"}, {"@", "@"}, {"[", "]"}, {"$(", ")"}};

bool is_template(std::string_view value) {
  return std::any_of(std::begin(marks_of_templates), std::end(marks_of_templates),
                     [&](const auto &marks) {
                       return value.size() > marks.first.size() + marks.second.size() &&
                              value.starts_with(marks.first) && value.ends_with(marks.second);
                     });
}

// IPv6 addresses are in brackets in URLs.
bool is_in_odd_brackets(std::string_view host) {
  return host.find(':') == host.npos &&
         (is_template(host) || host.find_first_of("[]") != host.npos);
}

// Whether a service is empty, has blanks that nobody sees, or ends in what separates values
// elsewhere or in a bracket that was never opened.
bool is_odd_service(std::string_view service) {
  if (service.empty() || trimmed(service) != service) return true;
  const std::string_view ends = service.find_first_of("[{") == service.npos ? ",;]}" : ",;";
  return ends.find(service.back()) != ends.npos;
}

std::optional<sb8> number(std::string_view text) {
  if (text.starts_with('+')) text.remove_prefix(1);
  sb8 value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
  return value;
}

// Whether a host is made of numbers and no address of four of them.
bool is_bad_address(std::string_view host) {
  if (host.empty() || host.find_first_not_of("0123456789.") != host.npos) return false;
  std::size_t parts = 0;
  for (std::size_t at = 0; at <= host.size(); ++parts) {
    const std::size_t end = std::min(host.find('.', at), host.size());
    const std::optional<sb8> part = number(host.substr(at, end - at));
    if (!part || *part > 255) return true;
    at = end + 1;
  }
  return parts != 4;
}

// The port of "h:1521"; absent in other hosts. A network address has several colons.
std::optional<std::string_view> port_in(std::string_view host) {
  const std::size_t colon = host.find(':');
  const std::string_view port = host.substr(std::min(colon, host.size() - 1) + 1);
  if (port.empty() || port.find_first_not_of("0123456789") != port.npos) return std::nullopt;
  return port;
}

bool may_be_negative(KZCILBKeyType type) {
  return type == LB_KZ_MODE || type == LB_USE_DEFAULT_SID || type == LB_RETRY_DELAY;
}

// What is stored, or handed out, of a number that a field does not hold; absent
// when it holds it.
std::optional<std::string> narrowed(const Key &key, sb8 value) {
  if (key.type == LB_KZ_MODE) {
    const sb4 handed_out = static_cast<sb4>(value);
    if (value == handed_out) return std::nullopt;
    return std::to_string(handed_out) + " is handed out";
  }
  sb8 stored = value;
  if (key.value.field.storage == Storage::count) stored = static_cast<ub4>(value);
  if (key.type == LB_LOG_SIZE) stored = kzoci::tns::stored_log_size(value);
  if (key.type == LB_LOG_COUNT) stored = kzoci::tns::stored_log_count(value);
  if (value == stored) return std::nullopt;
  return std::to_string(stored) + " is stored";
}

const std::vector<std::string_view> &levels() {
  static const std::vector<std::string_view> names(std::begin(kzoci::platform::level_names),
                                                   std::end(kzoci::platform::level_names));
  return names;
}

bool is_level(std::string_view text) {
  return std::any_of(levels().begin(), levels().end(),
                     [&](std::string_view level) { return equal_but_for_case(text, level); });
}

class EntryWarnings {
 public:
  EntryWarnings(const Trace &trace, std::string_view name, Findings &findings)
      : trace_(trace), name_(name), findings_(findings), given_(trace.frames().size()) {}

  void report(bool with_absent) {
    for (const Item &item : trace_.items()) check_item(item);
    if (trace_.is_system_variables()) return;
    report_list_warnings(trace_, name_, findings_);
    if (with_absent) report_absent_items(trace_, name_, findings_);
  }

 private:
  void add(Rule rule, Offset at, int frame, const std::string &text,
           const std::string &remedy = {}) {
    findings_.add(rule, [&] { return NewFinding{at, name_, trace_.path(frame), text, remedy}; });
  }

  // About an item's value.
  void add(Rule rule, const Item &item, const std::string &text, const std::string &remedy = {}) {
    add(rule, item.value.begin, item.frame, excerpt(trace_.key_word_of(item)) + text, remedy);
  }

  // About the item itself.
  void add_item(Rule rule, const Item &item, const std::string &text) {
    add(rule, item.key.begin, item.frame, excerpt(trace_.key_word_of(item)) + text);
  }

  std::string value_of(const Item &item) const {
    return " is " + quoted(excerpt(trace_.value_of(item)));
  }

  void check_item(const Item &item) {
    const Key *const key = trace_.row_of(item);
    if (item.type == LB_ERROR_KEY || (trace_.is_system_variables() && key == nullptr))
      return add_unknown_setting(item);
    if (key == nullptr) return;
    check_repeated(item, *key);
    if (!item.has_value) return;
    if (item.dropped) return add_dropped(item, *key);
    check_odd_text(item, *key);
#define RULE(...)
#define BLOCK_RULE(...)
#define VALUE_RULE(rule, ...) check_##rule(item, *key);
#include "rules/rules.def"
  }

  // Of two values the last one counts; of two blocks that are no records of their own,
  // both, item by item.
  void check_repeated(const Item &item, const Key &key) {
    const bool is_block = key.value.kind == ValueKind::block;
    const bool shares_record =
        is_block && (key.block == Block::blacklist || key.value.opens == Block::blacklist);
    if (item.dropped || (is_block && !shares_record)) return;
    KeySet &given = given_[static_cast<std::size_t>(item.frame)];
    if (given.has(field_of(item)))
      add_item(Rule::repeated_key, item,
               std::string(is_block ? " again: its items replace those of " : " again: replaces ") +
                   earlier(item));
    given.add(field_of(item));
  }

  // SERVICE_NAME and SID are two keys of one field.
  static KZCILBKeyType field_of(const Item &item) {
    return item.type == LB_SID ? LB_SERVICE_NAME : item.type;
  }

  // "SID at 1:20", which sets what an item sets, too.
  std::string earlier(const Item &item) const {
    const Item *before = &item - 1;
    while (before->frame != item.frame || field_of(*before) != field_of(item) || before->dropped)
      --before;
    return excerpt(trace_.key_word_of(*before)) + " at " + findings_.place(before->key.begin);
  }

  void check_placeholder(const Item &item, const Key &) {
    if (item.type == LB_HOST) return check_host(item);
    if (item.type == LB_SERVICE_NAME || item.type == LB_SID) check_service(item);
  }

  void check_service(const Item &item) {
    const std::string_view service = trace_.value_of(item);
    if (is_template(service) || is_odd_service(service))
      add(Rule::placeholder, item,
          value_of(item) + (is_template(service) ? ", a placeholder" : ", no name of a service"),
          "write the service's name");
  }

  void check_host(const Item &item) {
    const std::string_view host = trace_.value_of(item);
    const bool is_odd =
        host.empty() || host.find_first_of(blanks) != host.npos || !foreign_dash(host).empty() ||
        std::any_of(std::begin(not_of_hosts), std::end(not_of_hosts),
                    [&](std::string_view sign) { return host.find(sign) != host.npos; });
    if (is_odd || is_in_odd_brackets(host) || is_bad_address(host) || port_in(host))
      add(Rule::placeholder, item, value_of(item) + ", no name of a host",
          port_in(host) ? "write the port as (PORT = " + std::string(*port_in(host)) + ")" : "");
  }

  // Where no other quotes are needed they are part of the value. Those of a host are told as that.
  void check_foreign_quotes(const Item &item, const Key &key) {
    if (key.value.kind == ValueKind::text && item.type != LB_HOST &&
        !trace_.slice(item.value).starts_with('"') &&
        !in_foreign_quotes(trace_.value_of(item)).empty())
      add(Rule::foreign_quotes, item, value_of(item) + ": these quotes are part of the value");
  }

  // Elsewhere such a character is an error. A quoted one is meant, and so may be one within a
  // text; a host has none.
  void check_odd_text(const Item &item, const Key &key) {
    const std::string_view value = trace_.value_of(item);
    const std::string_view odd = odd_character(value);
    const bool at_end = value.starts_with(odd) || value.ends_with(odd);
    if (key.value.kind != ValueKind::text || odd.empty() || (item.type != LB_HOST && !at_end) ||
        trace_.slice(item.value).starts_with('"'))
      return;
    findings_.add(Rule::odd_bytes, Severity::warning, [&] {
      return NewFinding{item.value.begin, name_, trace_.path(item.frame),
                        "the invisible character " + visible(odd) + " is part of the value of " +
                            excerpt(trace_.key_word_of(item))};
    });
  }

  void add_unknown_setting(const Item &item) {
    findings_.add(Rule::unknown_setting, [&] { return unknown_setting(item); });
  }

  NewFinding unknown_setting(const Item &item) const {
    const std::string_view word = trace_.key_word_of(item);
    const std::string_view near = near_key(word, Block::system_variables);
    NewFinding found = {item.key.begin, name_, trace_.path(item.frame),
                        excerpt(word) + " is not a system variable"};
    if (key_named(Block::system_variables, near) != nullptr) {
      found.remedy = "did you mean " + std::string(near) + "?";
      found.fix = unsafe_fix({{item.key.begin, item.key.end, std::string(near)}});
    }
    return found;
  }

  void add_dropped(const Item &item, const Key &key) {
    std::string text = " of " + std::to_string(item.text_length) +
                       " characters is dropped: the limit is " + std::to_string(key.value.limit);
    const std::string_view odd = odd_character(trace_.slice(item.value));
    if (!odd.empty()) text += ", and the invisible character " + visible(odd) + " counts";
    add(Rule::overlong_value, item, std::move(text), odd.empty() ? "" : "remove that");
  }

  void check_bad_port(const Item &item, const Key &) {
    if (item.type != LB_PORT) return;
    const std::optional<sb8> port = number(trace_.value_of(item));
    if (!port || *port < 1 || *port > largest_port)
      add(Rule::bad_port, item,
          value_of(item) + ", not a number from 1 to " + std::to_string(largest_port));
  }

  void check_log_level(const Item &item, const Key &) {
    const std::string_view level = trace_.value_of(item);
    if (item.type != LB_LOG_LEVEL || is_level(level)) return;
    findings_.add(Rule::log_level, [&] {
      NewFinding found = {item.value.begin, name_, trace_.path(item.frame),
                          excerpt(trace_.key_word_of(item)) + value_of(item) + ", not a log level",
                          "write " + one_of(levels())};
      std::string_view near = near_word(level, levels());
      if (near.empty()) near = longer_or_shorter_word(level, levels());
      if (!near.empty())
        found.fix = unsafe_fix({{item.value.begin, item.value.end, std::string(near)}});
      return found;
    });
  }

  void add_abbreviated(const Item &item, std::string_view word) {
    findings_.add(Rule::abbreviated_word, [&] {
      return NewFinding{.at = item.value.begin,
                        .entry = name_,
                        .path = trace_.path(item.frame),
                        .text = excerpt(trace_.key_word_of(item)) + value_of(item) + ", read as " +
                                std::string(word),
                        .fix = safe_fix({{item.value.begin, item.value.end, std::string(word)}})};
    });
  }

  void check_abbreviated_word(const Item &item, const Key &key) {
    const std::string_view word = word_read_as(key, trace_.value_of(item));
    if (trace_.value_of(item).size() < word.size()) add_abbreviated(item, word);
  }

  void check_retry_delay(const Item &item, const Key &) {
    if (item.type == LB_RETRY_DELAY) add_item(Rule::retry_delay, item, " is read but ignored");
  }

  // The library takes numbers up to twice what 64 bits hold, the upper half as
  // negative ones.
  void check_narrowed_number(const Item &item, const Key &key) {
    if (key.value.kind != ValueKind::integer || item.type == LB_RETRY_DELAY) return;
    const std::string_view text = trace_.value_of(item);
    const LibraryNumber number = library_number(text);
    if (!number.fits) return;
    if (number.wrapped)
      add(Rule::narrowed_number, item,
          " is " + excerpt(text) + ": " + std::to_string(number.value) + " is stored");
    else if (const auto stored = narrowed(key, number.value))
      add(Rule::narrowed_number, item, " is " + std::to_string(number.value) + ": " + *stored);
  }

  void check_negative_number(const Item &item, const Key &key) {
    if (key.value.kind != ValueKind::integer || may_be_negative(item.type)) return;
    const LibraryNumber number = library_number(trace_.value_of(item));
    if (number.fits && !number.wrapped && number.value < 0 && !narrowed(key, number.value))
      add(Rule::negative_number, item, " is " + std::to_string(number.value));
  }

  const Trace &trace_;
  std::string_view name_;
  Findings &findings_;
  std::vector<KeySet> given_;  // the keys of each frame so far
};

}  // namespace

void report_entry_warnings(const Trace &trace, std::string_view name, Findings &findings,
                           bool with_absent) {
  EntryWarnings(trace, name, findings).report(with_absent);
}

}  // namespace kztns
