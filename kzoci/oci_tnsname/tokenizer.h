// What the readers of characters share.
#pragma once

#include "kzoci/oci_tnsname.h"
#include "status.h"

namespace kzoci::tns {

// Makes a parse state with nothing read. The buffer is filled before it is looked
// at and need not be zero; the key must, since messages print what older keys left.
void begin_parse(KZCITnsParseParams *params, int mode);

// Reads more input. At its end it logs so and returns no_data; on any other
// failure it logs failure_text.
sword refill(KZCITnsParseParams *params, const char *failure_text);

// Makes sure that a character is at hand.
inline sword need_character(KZCITnsParseParams *params, const char *failure_text) {
  return params->buffer_pos < params->buffer_len ? success : refill(params, failure_text);
}

}  // namespace kzoci::tns
