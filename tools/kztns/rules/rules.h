// The rules that findings refer to: one table.
#pragma once

#include <cstddef>
#include <string_view>

namespace kztns {

enum class Severity { error, warning, note };

enum class Rule {
  // Faults of an entry.
  unknown_key,
  misplaced_key,
  missing_equal,
  missing_close,
  missing_key,
  missing_value,
  block_for_value,
  value_for_block,
  empty_block,
  no_block,
  unquoted_value,
  comment_in_value,
  bad_protocol,
  bad_word,
  bad_number,
  second_address,
  second_connect_data,
  key_cut,
  key_refused,
  unclosed_quote,
  unclosed_block,
  quoted_entry,
  unexplained,
  // What keeps lookups from entries.
  byte_order_mark,
  utf_16,
  odd_bytes,
  ifile,
  comma_list,
  stray_text,
  extra_close,
  second_block,
  paren_in_comment,
  paren_in_quotes,
  reserved_part,
  after_reserved,
  unreachable,
  lost_name,
  gave_up,
  // Accepted, but hardly meant.
  duplicate,
  case_differs,
  overlong_value,
  no_host,
  no_port,
  bad_port,
  no_address,
  no_service,
  abbreviated_word,
  negative_number,
  narrowed_number,
  log_level,
  unknown_setting,
  retry_delay,
  count  // bound; no rule
};

struct RuleText {
  std::string_view id;  // as in "[unknown-key]"
  Severity severity;
  std::string_view text;    // what it is about, in general
  std::string_view remedy;  // what to do
};

constexpr std::size_t rule_count = static_cast<std::size_t>(Rule::count);

const RuleText &text_of(Rule rule);

std::string_view name_of(Severity severity);  // "error"

}  // namespace kztns
