#include "trace/log_events.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kztns {
namespace {

struct Phrase {
  std::string_view text;  // the format, or its beginning
  LogEvent event;
};

// The first that fits decides.
constexpr Phrase phrases[] = {
    {"get key size:", LogEvent::key_read},
    {"expect token type is ", LogEvent::unexpected_token},
    {"fail to call parse blank, status:", LogEvent::input_ended},
    {"fail to call parse key, status:", LogEvent::key_unfinished},
    {"succ to find key, ", LogEvent::key_word},
    {"fail to find key, ", LogEvent::no_key_word},
    {"parse_params tns_key_len:", LogEvent::no_key_word},
    {"get error key type", LogEvent::unknown_key},
    {"expect LB_DESCRIPTION:", LogEvent::not_description},
    {"KZCIDescriptionBuild get error key_type", LogEvent::misplaced_key},
    {"KZCIAddressListBuild get error key_type", LogEvent::misplaced_key},
    {"KZCIAddressBuild get error key_type", LogEvent::misplaced_key},
    {"KZCIConnectDataBuild get error key_type", LogEvent::misplaced_key},
    {"build_black_list_conf get error key_type", LogEvent::misplaced_key},
    {"get error key_type", LogEvent::misplaced_key},
    {"call KZCIDescriptionBuild with ", LogEvent::description_begins},
    {"call KZCIAddressListBuild with params [des:", LogEvent::address_list_begins},
    {"call KZCIAddressListBuild with params [black:", LogEvent::strategy_begins},
    {"call KZCIAddressBuild with ", LogEvent::address_begins},
    {"call KZCIConnectDataBuild with ", LogEvent::connect_data_begins},
    {"call KZCIBlacklistConfBuild with ", LogEvent::blacklist_begins},
    {"success to build description, ", LogEvent::block_built},
    {"success to call ", LogEvent::block_built},
    {"malloc ", LogEvent::no_memory},
    {"something error in build tns service", LogEvent::service_failed},
    {"something error in ", LogEvent::block_failed},
    {"parse LB_", LogEvent::bad_word},
    {"fail to covert to int", LogEvent::bad_number},
    {"fail to parse string value", LogEvent::text_refused},
    {"no address_list, but address_list is not NULL", LogEvent::second_address},
    {"connect_data is already parse", LogEvent::second_connect_data},
    {"parse system variables get error key type", LogEvent::unknown_setting},
    {"parse system variables get ", LogEvent::other},
    {"parse system variables", LogEvent::settings_begin},
};

LogEvent event_of_text(std::string_view text) {
  for (const Phrase &phrase : phrases)
    if (text.starts_with(phrase.text)) return phrase.event;
  return LogEvent::other;
}

// Formats are constants: one address, one text. Remembering them by address makes
// a record cost next to nothing.
class Memory {
 public:
  LogEvent event(const char *text) {
    Slot &slot = slots_[(reinterpret_cast<std::uintptr_t>(text) >> 2) % size];
    if (slot.text != text) slot = {text, event_of_text(text)};
    return slot.event;
  }

 private:
  struct Slot {
    const char *text = nullptr;
    LogEvent event = LogEvent::other;
  };
  static constexpr std::size_t size = 1021;
  Slot slots_[size];
};

}  // namespace

LogEvent log_event(const char *format, std::va_list arguments) {
  static Memory memory;
  if (std::string_view(format) != "%s") return memory.event(format);
  std::va_list again;
  va_copy(again, arguments);
  const char *const text = va_arg(again, const char *);
  va_end(again);
  return memory.event(text);
}

}  // namespace kztns
