// The records of the module's log, recognised by their formats: one address, one record.
#pragma once

#include <optional>

#include "kzoci/oci_tnsname/messages.h"

namespace kztns {

using kzoci::tns::MessageId;

// The record of a format; absent for a format that is not the module's.
std::optional<MessageId> message_of(const char *format);

// What a record tells about the build of an entry. Trace::record tells three groups apart
// by this order: tokens up to no_key_word, blocks from description_begins to
// service_failed, and all others.
enum class LogEvent {
  other,
  key_read,            // after a key; its text is in the parse state
  unexpected_token,    // arguments: the type expected, the type found
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
  system_variables_begin  // the entry is read as system variables
};

// The event of a format; other for a format that is not the module's.
LogEvent event_of(const char *format);

}  // namespace kztns
