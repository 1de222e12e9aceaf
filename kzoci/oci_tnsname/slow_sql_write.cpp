// Adding a report to the slow-SQL buffer.
#include <algorithm>
#include <cstdarg>
#include <cstdio>

#include "kzoci/oci_tnsname.h"
#include "log.h"
#include "slow_sql_record.h"
#include "status.h"

using namespace kzoci::tns;

namespace {

// Whether the text, with so many characters more, reaches the last character but
// one. A report that would just fit is logged apart: the thresholds are strict,
// and the buffer never keeps more than its length minus 2.
bool fills_buffer(const KZCISLowSQL &slowsql, int more) {
  return slowsql.buffer_pos >= slowsql.buffer_length - 1 - more;
}

// Formats a report behind the text. The position follows the formatter's
// result, also where the text was cut or could not be formatted at all; what is
// written stays in the buffer.
void append_report(KZCISLowSQL &slowsql, const char *fmt, va_list arguments) {
  const sb8 at = std::clamp<sb8>(slowsql.buffer_pos, 0, slowsql.buffer_length);
  slowsql.buffer_pos += std::vsnprintf(
      slowsql.buffer + at, static_cast<std::size_t>(slowsql.buffer_length - at), fmt, arguments);
}

}  // namespace

sword KZCISlowSQLWrite(KZCISLowSQL *slowsql, const char *fmt, ...) {
  if (!has_buffer(slowsql)) return invalid_handle;
  va_list arguments;
  va_start(arguments, fmt);
  const int length = std::vsnprintf(nullptr, 0, fmt, arguments);
  va_end(arguments);

  sword status = success;
  if (fills_buffer(*slowsql, length)) status = KZCISlowSQLBufferFlush(slowsql);
  if (status != success) {
    KZ_LOG_ERROR("KZCISlowSQLBufferFlush write to log fail.");
    status = failure;
  } else {
    va_start(arguments, fmt);
    append_report(*slowsql, fmt, arguments);
    va_end(arguments);
  }

  if (fills_buffer(*slowsql, 0) && KZCISlowSQLBufferFlush(slowsql) != success) {
    KZ_LOG_ERROR("KZCISlowSQLBufferFlush write to log fail!");
    return failure;
  }
  return status;
}
