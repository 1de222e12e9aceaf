// The slow-SQL buffer: made, written to, flushed, released.
#include <algorithm>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "kzoci/oci_tnsname.h"
#include "kzoci/platform/memory.h"
#include "log.h"
#include "status.h"

using namespace kzoci::tns;

namespace {

bool has_buffer(const KZCISLowSQL *slowsql) {
  return slowsql != nullptr && slowsql->buffer != nullptr && slowsql->buffer_length > 0;
}

// A zeroed buffer; null without memory, also for a size that memory cannot have.
char *new_buffer(sb8 size) {
  if constexpr (SIZE_MAX < UINT64_MAX)
    if (static_cast<std::uint64_t>(size) > SIZE_MAX) return nullptr;
  const auto characters = static_cast<std::size_t>(size);
  void *const buffer = kzci_malloc(characters, "KZCISlowSQLBufferInit");
  if (buffer != nullptr) std::memset(buffer, 0, characters);
  return static_cast<char *>(buffer);
}

}  // namespace

sword KZCISlowSQLBufferInit(KZCISLowSQL *slowsql, sb8 size) {
  if (slowsql == nullptr) return invalid_handle;
  slowsql->buffer = nullptr;
  slowsql->buffer_length = 0;
  slowsql->buffer_pos = 0;
  if (size <= 0) {
    KZ_LOG(message::no_buffer_wanted, static_cast<int>(size));
    return success;
  }
  slowsql->buffer = new_buffer(size);
  if (slowsql->buffer == nullptr) return invalid_handle;
  slowsql->buffer_length = size;
  return success;
}

sword KZCISlowSQLBufferFlush(KZCISLowSQL *slowsql) {
  if (!has_buffer(slowsql)) return invalid_handle;
  if (slowsql->buffer_pos <= 0) return success;
  KZ_LOG(message::slow_sql_batch, slowsql->buffer);
  std::memset(slowsql->buffer, 0, static_cast<std::size_t>(slowsql->buffer_length));
  slowsql->buffer_pos = 0;
  return success;
}

namespace {

// Whether the text, with so many characters more, reaches the last character but one.
// A report that would just fit is logged separately: the buffer never keeps more than
// its length minus 2.
bool fills_buffer(const KZCISLowSQL &slowsql, int more) {
  return slowsql.buffer_pos >= slowsql.buffer_length - 1 - more;
}

// Formats a report after the text. The position moves by the formatter's result, also
// when the text was cut or could not be formatted at all; what is written stays within
// the buffer.
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
    KZ_LOG(message::flush_before_write_failed);
    status = failure;
  } else {
    va_start(arguments, fmt);
    append_report(*slowsql, fmt, arguments);
    va_end(arguments);
  }

  if (fills_buffer(*slowsql, 0) && KZCISlowSQLBufferFlush(slowsql) != success) {
    KZ_LOG(message::flush_after_write_failed);
    return failure;
  }
  return status;
}

sword KZCISlowSQLBufferClear(KZCISLowSQL *slowsql) {
  if (slowsql == nullptr) return invalid_handle;
  if (slowsql->buffer == nullptr) return success;
  const sword status = KZCISlowSQLBufferFlush(slowsql);
  if (status != success) KZ_LOG(message::flush_at_clear_failed);
  kzci_free(slowsql->buffer);
  slowsql->buffer = nullptr;
  slowsql->buffer_length = 0;
  slowsql->buffer_pos = 0;
  return status;
}
