#include "trace/log_records.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>

namespace kztns {
namespace {

using kzoci::tns::MessageRow;
using kzoci::tns::messages;

struct RecordEvent {
  MessageId id;
  LogEvent event;
};

// What each record tells; the compiler checks below that none is missing.
constexpr RecordEvent record_events[] = {
    {MessageId::key_read, LogEvent::key_read},
    {MessageId::other_token, LogEvent::unexpected_token},
    {MessageId::blank_failed, LogEvent::input_ended},
    {MessageId::key_failed, LogEvent::key_unfinished},
    {MessageId::key_word_found, LogEvent::key_word},
    {MessageId::no_key_word, LogEvent::no_key_word},
    {MessageId::too_long_for_key_word, LogEvent::no_key_word},
    {MessageId::unknown_key, LogEvent::unknown_key},
    {MessageId::not_description, LogEvent::not_description},
    {MessageId::description_key_refused, LogEvent::misplaced_key},
    {MessageId::address_list_key_refused, LogEvent::misplaced_key},
    {MessageId::address_key_refused, LogEvent::misplaced_key},
    {MessageId::connect_data_key_refused, LogEvent::misplaced_key},
    {MessageId::blacklist_key_refused, LogEvent::misplaced_key},
    {MessageId::strategy_key_refused, LogEvent::misplaced_key},
    {MessageId::description_called, LogEvent::description_begins},
    {MessageId::address_list_called, LogEvent::address_list_begins},
    {MessageId::address_called, LogEvent::address_begins},
    {MessageId::connect_data_called, LogEvent::connect_data_begins},
    {MessageId::blacklist_called, LogEvent::blacklist_begins},
    {MessageId::strategy_called, LogEvent::strategy_begins},
    {MessageId::description_built, LogEvent::block_built},
    {MessageId::address_list_built, LogEvent::block_built},
    {MessageId::connect_data_built, LogEvent::block_built},
    {MessageId::blacklist_built, LogEvent::block_built},
    {MessageId::remove_strategy_built, LogEvent::block_built},
    {MessageId::append_strategy_built, LogEvent::block_built},
    {MessageId::description_not_built, LogEvent::block_failed},
    {MessageId::address_list_not_built, LogEvent::block_failed},
    {MessageId::address_not_built, LogEvent::block_failed},
    {MessageId::connect_data_not_built, LogEvent::block_failed},
    {MessageId::blacklist_not_built, LogEvent::block_failed},
    {MessageId::remove_strategy_not_built, LogEvent::block_failed},
    {MessageId::append_strategy_not_built, LogEvent::block_failed},
    {MessageId::service_not_allocated, LogEvent::no_memory},
    {MessageId::description_not_allocated, LogEvent::no_memory},
    {MessageId::address_list_not_allocated, LogEvent::no_memory},
    {MessageId::address_not_allocated, LogEvent::no_memory},
    {MessageId::connect_data_not_allocated, LogEvent::no_memory},
    {MessageId::service_not_built, LogEvent::service_failed},
    {MessageId::bad_switch, LogEvent::bad_word},
    {MessageId::bad_group_strategy, LogEvent::bad_word},
    {MessageId::bad_list_strategy, LogEvent::bad_word},
    {MessageId::bad_blacklist_strategy, LogEvent::bad_word},
    {MessageId::bad_integer, LogEvent::bad_number},
    {MessageId::text_refused, LogEvent::text_refused},
    {MessageId::second_bare_address, LogEvent::second_address},
    {MessageId::second_connect_data, LogEvent::second_connect_data},
    {MessageId::reserved_entry, LogEvent::system_variables_begin},
    {MessageId::null_handle, LogEvent::other},
    {MessageId::null_tns, LogEvent::other},
    {MessageId::null_service, LogEvent::other},
    {MessageId::null_description, LogEvent::other},
    {MessageId::null_address_list, LogEvent::other},
    {MessageId::null_address, LogEvent::other},
    {MessageId::null_connect_data, LogEvent::other},
    {MessageId::service_init_failed, LogEvent::other},
    {MessageId::description_init_failed, LogEvent::other},
    {MessageId::address_list_init_failed, LogEvent::other},
    {MessageId::address_init_failed, LogEvent::other},
    {MessageId::connect_data_init_failed, LogEvent::other},
    {MessageId::blacklist_init_failed, LogEvent::other},
    {MessageId::system_variables_init_failed, LogEvent::other},
    {MessageId::clear_tns_called, LogEvent::other},
    {MessageId::clear_service_called, LogEvent::other},
    {MessageId::clear_description_called, LogEvent::other},
    {MessageId::clear_address_list_called, LogEvent::other},
    {MessageId::clear_address_called, LogEvent::other},
    {MessageId::clear_connect_data_called, LogEvent::other},
    {MessageId::no_tns_to_clear, LogEvent::other},
    {MessageId::no_service_to_clear, LogEvent::other},
    {MessageId::no_description_to_clear, LogEvent::other},
    {MessageId::no_address_list_to_clear, LogEvent::other},
    {MessageId::no_services, LogEvent::other},
    {MessageId::no_descriptions, LogEvent::other},
    {MessageId::no_addresses, LogEvent::other},
    {MessageId::service_clear_failed, LogEvent::other},
    {MessageId::description_clear_failed, LogEvent::other},
    {MessageId::address_list_clear_failed, LogEvent::other},
    {MessageId::address_clear_failed, LogEvent::other},
    {MessageId::connect_data_clear_failed, LogEvent::other},
    {MessageId::system_variables_clear_failed, LogEvent::other},
    {MessageId::ring_disagrees, LogEvent::other},
    {MessageId::reading, LogEvent::other},
    {MessageId::input_ended, LogEvent::other},
    {MessageId::blank_refill_failed, LogEvent::other},
    {MessageId::refill_failed, LogEvent::other},
    {MessageId::key_too_long, LogEvent::other},
    {MessageId::token_failed, LogEvent::other},
    {MessageId::null_parse_state, LogEvent::other},
    {MessageId::key_type_failed, LogEvent::other},
    {MessageId::address_key, LogEvent::other},
    {MessageId::address_list_key, LogEvent::other},
    {MessageId::address_of_list_failed, LogEvent::other},
    {MessageId::connect_data_key, LogEvent::other},
    {MessageId::remove_strategy_key, LogEvent::other},
    {MessageId::append_strategy_key, LogEvent::other},
    {MessageId::remove_strategy_failed, LogEvent::other},
    {MessageId::append_strategy_failed, LogEvent::other},
    {MessageId::description_key, LogEvent::other},
    {MessageId::retry_delay_read, LogEvent::other},
    {MessageId::address_list_failed, LogEvent::other},
    {MessageId::connect_data_failed, LogEvent::other},
    {MessageId::bare_address_failed, LogEvent::other},
    {MessageId::threshold_read, LogEvent::other},
    {MessageId::buffer_size_read, LogEvent::other},
    {MessageId::flush_second_read, LogEvent::other},
    {MessageId::log_size_read, LogEvent::other},
    {MessageId::log_count_read, LogEvent::other},
    {MessageId::session_variable_read, LogEvent::other},
    {MessageId::log_level_read, LogEvent::other},
    {MessageId::log_path_read, LogEvent::other},
    {MessageId::unknown_variable, LogEvent::other},
    {MessageId::service_called, LogEvent::other},
    {MessageId::descriptor_called, LogEvent::other},
    {MessageId::service_key, LogEvent::other},
    {MessageId::description_failed, LogEvent::other},
    {MessageId::system_variables_failed, LogEvent::other},
    {MessageId::service_built, LogEvent::other},
    {MessageId::build_called, LogEvent::other},
    {MessageId::tns_file_variable, LogEvent::other},
    {MessageId::tns_admin_variable, LogEvent::other},
    {MessageId::oracle_home_variable, LogEvent::other},
    {MessageId::no_variable, LogEvent::other},
    {MessageId::names_file, LogEvent::other},
    {MessageId::names_file_not_opened, LogEvent::other},
    {MessageId::no_names_file, LogEvent::other},
    {MessageId::entry_found, LogEvent::other},
    {MessageId::other_entry, LogEvent::other},
    {MessageId::entry_failed, LogEvent::other},
    {MessageId::skip_failed, LogEvent::other},
    {MessageId::entry_built, LogEvent::other},
    {MessageId::not_found, LogEvent::other},
    {MessageId::null_extra_info_argument, LogEvent::other},
    {MessageId::null_dblink_argument, LogEvent::other},
    {MessageId::description_missing, LogEvent::other},
    {MessageId::address_list_missing, LogEvent::other},
    {MessageId::address_missing, LogEvent::other},
    {MessageId::dblink_failed, LogEvent::other},
    {MessageId::display_on_stdout, LogEvent::other},
    {MessageId::display_in_file, LogEvent::other},
    {MessageId::display_file_not_opened, LogEvent::other},
    {MessageId::empty_tns, LogEvent::other},
    {MessageId::empty_service, LogEvent::other},
    {MessageId::empty_description, LogEvent::other},
    {MessageId::null_address_list_to_display, LogEvent::other},
    {MessageId::service_display_failed, LogEvent::other},
    {MessageId::description_display_failed, LogEvent::other},
    {MessageId::address_list_display_failed, LogEvent::other},
    {MessageId::connect_data_display_failed, LogEvent::other},
    {MessageId::system_variables_display_failed, LogEvent::other},
    {MessageId::reserved_entry_display_failed, LogEvent::other},
    {MessageId::no_buffer_wanted, LogEvent::other},
    {MessageId::slow_sql_batch, LogEvent::other},
    {MessageId::flush_before_write_failed, LogEvent::other},
    {MessageId::flush_after_write_failed, LogEvent::other},
    {MessageId::flush_at_clear_failed, LogEvent::other},
};

constexpr const RecordEvent *find_event(MessageId id) {
  for (const RecordEvent &row : record_events)
    if (row.id == id) return &row;
  return nullptr;
}

constexpr bool is_every_record_known() {
  for (const MessageRow &row : messages)
    if (find_event(row.id) == nullptr) return false;
  return true;
}
static_assert(
    is_every_record_known(),
    "messages.def has a record without a row in record_events: LogEvent::other for one that "
    "means nothing here");

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
      slots_[place_of(row.format)] = {row.format, row.id, find_event(row.id)->event};
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
