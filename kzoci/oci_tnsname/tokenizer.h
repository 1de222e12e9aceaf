// What the readers of characters share.
#pragma once

#include "kzoci/oci_tnsname.h"

namespace kzoci::tns {

// Makes sure that a character is at hand. At the end of the input it logs so
// and returns no_data; on any other failure it logs failure_text.
sword need_character(KZCITnsParseParams *params, const char *failure_text);

}  // namespace kzoci::tns
