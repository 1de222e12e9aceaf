// Reading a built service the way callers do: the dump and the accessors.
#pragma once

#include <string>

#include "kzoci/oci_tnsname.h"

namespace fuzz {

// The dump of a service. Checks its status against the service's shape.
std::string display_of(KZCITnsService &service);

// The session's data and the link string, read into blocks of the smallest size
// that a caller may bring, and checked against the records.
void check_accessors(KZCITnsService &service);

}  // namespace fuzz
