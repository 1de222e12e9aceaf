// Names that the library takes for that of the reserved entry. It compares twice, and not alike.
#pragma once

#include <string_view>

#include "kzoci/oci_tnsname/reserved_entry.h"

namespace kztns {

// Whether an entry of that name is built as system variables: any leading part of the reserved
// name in any letter case, the empty name too.
inline bool is_reserved(std::string_view name) {
  return kzoci::tns::is_reserved_name(name.data(), static_cast<ub4>(name.size()));
}

// Whether an entry of that name ends every lookup: any leading part in capitals.
inline bool ends_lookups(std::string_view name) {
  return std::string_view(kzoci::tns::reserved_name).starts_with(name);
}

}  // namespace kztns
