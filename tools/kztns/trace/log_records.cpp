#include "trace/log_records.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>

namespace kztns {
namespace {

using kzoci::tns::MessageRow;
using kzoci::tns::messages;

// Names every record, so that the compiler tells of a new one.
LogEvent event_of(MessageId id) {
  switch (id) {
    case MessageId::key_read:
      return LogEvent::key_read;
    case MessageId::other_token:
      return LogEvent::unexpected_token;
    case MessageId::blank_failed:
      return LogEvent::input_ended;
    case MessageId::key_failed:
      return LogEvent::key_unfinished;
    case MessageId::key_word_found:
      return LogEvent::key_word;
    case MessageId::no_key_word:
    case MessageId::too_long_for_key_word:
      return LogEvent::no_key_word;
    case MessageId::unknown_key:
      return LogEvent::unknown_key;
    case MessageId::not_description:
      return LogEvent::not_description;
    case MessageId::description_key_refused:
    case MessageId::address_list_key_refused:
    case MessageId::address_key_refused:
    case MessageId::connect_data_key_refused:
    case MessageId::blacklist_key_refused:
    case MessageId::strategy_key_refused:
      return LogEvent::misplaced_key;
    case MessageId::description_called:
      return LogEvent::description_begins;
    case MessageId::address_list_called:
      return LogEvent::address_list_begins;
    case MessageId::address_called:
      return LogEvent::address_begins;
    case MessageId::connect_data_called:
      return LogEvent::connect_data_begins;
    case MessageId::blacklist_called:
      return LogEvent::blacklist_begins;
    case MessageId::strategy_called:
      return LogEvent::strategy_begins;
    case MessageId::description_built:
    case MessageId::address_list_built:
    case MessageId::connect_data_built:
    case MessageId::blacklist_built:
    case MessageId::remove_strategy_built:
    case MessageId::append_strategy_built:
      return LogEvent::block_built;
    case MessageId::description_not_built:
    case MessageId::address_list_not_built:
    case MessageId::address_not_built:
    case MessageId::connect_data_not_built:
    case MessageId::blacklist_not_built:
    case MessageId::remove_strategy_not_built:
    case MessageId::append_strategy_not_built:
      return LogEvent::block_failed;
    case MessageId::service_not_allocated:
    case MessageId::description_not_allocated:
    case MessageId::address_list_not_allocated:
    case MessageId::address_not_allocated:
    case MessageId::connect_data_not_allocated:
      return LogEvent::no_memory;
    case MessageId::service_not_built:
      return LogEvent::service_failed;
    case MessageId::bad_switch:
    case MessageId::bad_group_strategy:
    case MessageId::bad_list_strategy:
    case MessageId::bad_blacklist_strategy:
      return LogEvent::bad_word;
    case MessageId::bad_integer:
      return LogEvent::bad_number;
    case MessageId::text_refused:
      return LogEvent::text_refused;
    case MessageId::second_bare_address:
      return LogEvent::second_address;
    case MessageId::second_connect_data:
      return LogEvent::second_connect_data;
    case MessageId::reserved_entry:
      return LogEvent::system_variables_begin;
    // Nothing that the build of an entry is traced by.
    case MessageId::null_handle:
    case MessageId::null_tns:
    case MessageId::null_service:
    case MessageId::null_description:
    case MessageId::null_address_list:
    case MessageId::null_address:
    case MessageId::null_connect_data:
    case MessageId::service_init_failed:
    case MessageId::description_init_failed:
    case MessageId::address_list_init_failed:
    case MessageId::address_init_failed:
    case MessageId::connect_data_init_failed:
    case MessageId::blacklist_init_failed:
    case MessageId::system_variables_init_failed:
    case MessageId::clear_tns_called:
    case MessageId::clear_service_called:
    case MessageId::clear_description_called:
    case MessageId::clear_address_list_called:
    case MessageId::clear_address_called:
    case MessageId::clear_connect_data_called:
    case MessageId::no_tns_to_clear:
    case MessageId::no_service_to_clear:
    case MessageId::no_description_to_clear:
    case MessageId::no_address_list_to_clear:
    case MessageId::no_services:
    case MessageId::no_descriptions:
    case MessageId::no_addresses:
    case MessageId::service_clear_failed:
    case MessageId::description_clear_failed:
    case MessageId::address_list_clear_failed:
    case MessageId::address_clear_failed:
    case MessageId::connect_data_clear_failed:
    case MessageId::system_variables_clear_failed:
    case MessageId::ring_disagrees:
    case MessageId::reading:
    case MessageId::input_ended:
    case MessageId::blank_refill_failed:
    case MessageId::refill_failed:
    case MessageId::key_too_long:
    case MessageId::token_failed:
    case MessageId::null_parse_state:
    case MessageId::key_type_failed:
    case MessageId::address_key:
    case MessageId::address_list_key:
    case MessageId::address_of_list_failed:
    case MessageId::connect_data_key:
    case MessageId::remove_strategy_key:
    case MessageId::append_strategy_key:
    case MessageId::remove_strategy_failed:
    case MessageId::append_strategy_failed:
    case MessageId::description_key:
    case MessageId::retry_delay_read:
    case MessageId::address_list_failed:
    case MessageId::connect_data_failed:
    case MessageId::bare_address_failed:
    case MessageId::threshold_read:
    case MessageId::buffer_size_read:
    case MessageId::flush_second_read:
    case MessageId::log_size_read:
    case MessageId::log_count_read:
    case MessageId::session_variable_read:
    case MessageId::log_level_read:
    case MessageId::log_path_read:
    case MessageId::unknown_variable:
    case MessageId::service_called:
    case MessageId::descriptor_called:
    case MessageId::service_key:
    case MessageId::description_failed:
    case MessageId::system_variables_failed:
    case MessageId::service_built:
    case MessageId::build_called:
    case MessageId::tns_file_variable:
    case MessageId::tns_admin_variable:
    case MessageId::oracle_home_variable:
    case MessageId::no_variable:
    case MessageId::names_file:
    case MessageId::names_file_not_opened:
    case MessageId::no_names_file:
    case MessageId::entry_found:
    case MessageId::other_entry:
    case MessageId::entry_failed:
    case MessageId::skip_failed:
    case MessageId::entry_built:
    case MessageId::not_found:
    case MessageId::null_extra_info_argument:
    case MessageId::null_dblink_argument:
    case MessageId::description_missing:
    case MessageId::address_list_missing:
    case MessageId::address_missing:
    case MessageId::dblink_failed:
    case MessageId::display_on_stdout:
    case MessageId::display_in_file:
    case MessageId::display_file_not_opened:
    case MessageId::empty_tns:
    case MessageId::empty_service:
    case MessageId::empty_description:
    case MessageId::null_address_list_to_display:
    case MessageId::service_display_failed:
    case MessageId::description_display_failed:
    case MessageId::address_list_display_failed:
    case MessageId::connect_data_display_failed:
    case MessageId::system_variables_display_failed:
    case MessageId::reserved_entry_display_failed:
    case MessageId::no_buffer_wanted:
    case MessageId::slow_sql_batch:
    case MessageId::flush_before_write_failed:
    case MessageId::flush_after_write_failed:
    case MessageId::flush_at_clear_failed:
      return LogEvent::other;
  }
  return LogEvent::other;
}

// Finds a format by its address, and fast: a large file makes millions of records.
class Formats {
 public:
  struct Slot {
    const char *format = nullptr;  // null: free
    MessageId id = {};
    LogEvent event = LogEvent::other;
  };

  Formats() {
    for (const MessageRow &row : messages)
      slots_[place_of(row.format)] = {row.format, row.id, event_of(row.id)};
  }

  // The slot of a format, a free one when it is not the module's.
  const Slot &slot_of(const char *format) const { return slots_[place_of(format)]; }

 private:
  std::size_t place_of(const char *format) const {
    std::size_t at = (reinterpret_cast<std::uintptr_t>(format) >> 3) % count;
    while (slots_[at].format != format && slots_[at].format != nullptr) at = (at + 1) % count;
    return at;
  }

  static constexpr std::size_t count = 1024;  // mostly free, so that searches are short
  static_assert(std::size(messages) * 4 < count);
  std::array<Slot, count> slots_ = {};
};

const Formats formats;

}  // namespace

std::optional<MessageId> message_of(const char *format) {
  const Formats::Slot &slot = formats.slot_of(format);
  if (slot.format == nullptr) return std::nullopt;
  return slot.id;
}

LogEvent event_of(const char *format) { return formats.slot_of(format).event; }

}  // namespace kztns
