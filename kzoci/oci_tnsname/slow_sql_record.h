// What the operations of the slow-SQL buffer share.
#pragma once

#include "kzoci/oci_tnsname.h"

namespace kzoci::tns {

inline bool has_buffer(const KZCISLowSQL *slowsql) {
  return slowsql != nullptr && slowsql->buffer != nullptr && slowsql->buffer_length > 0;
}

}  // namespace kzoci::tns
