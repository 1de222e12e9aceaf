// What a record of the module's log says, reported by its format.
#pragma once

#include <cstdarg>

namespace kztns {

enum class LogEvent {
  other,
  key_read,            // behind a key; its text is in the parse state
  unexpected_token,    // arguments: the type expected, the type met
  input_ended,         // where a token was expected
  key_unfinished,      // the input ended, or the room, inside a key; argument: status
  key_word,            // the key just read is a key word; argument: its type
  no_key_word,         // it is none
  unknown_key,         // and one was needed
  not_description,     // a key word, but not DESCRIPTION
  misplaced_key,       // a key word that has no place in the block
  description_begins,  // the blocks
  address_list_begins,
  address_begins,
  connect_data_begins,
  blacklist_begins,
  strategy_begins,
  block_built,
  block_failed,
  no_memory,
  service_failed,
  bad_word,
  bad_number,
  text_refused,  // cannot be read, or is too long
  second_address,
  second_connect_data,
  settings_begin,  // the entry is read as system variables
  unknown_setting
};

// The arguments are those of the format, of which "%s" takes one.
LogEvent log_event(const char *format, std::va_list arguments);

}  // namespace kztns
