// The slow-SQL buffer's life: made, flushed, released.
#include <cstdint>
#include <cstring>

#include "kzoci/oci_tnsname.h"
#include "kzoci/platform/memory.h"
#include "log.h"
#include "slow_sql_record.h"
#include "status.h"

using namespace kzoci::tns;

namespace {

// A zeroed buffer; null without memory, also for a size that memory cannot have.
char *new_buffer(sb8 size) {
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
    KZ_LOG_DEBUG("KZCISlowSQLBufferInit: buffer_size=%d", static_cast<int>(size));
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
  KZ_LOG_SLOWSQL("SLOWSQL:%s", slowsql->buffer);
  std::memset(slowsql->buffer, 0, static_cast<std::size_t>(slowsql->buffer_length));
  slowsql->buffer_pos = 0;
  return success;
}

sword KZCISlowSQLBufferClear(KZCISLowSQL *slowsql) {
  if (slowsql == nullptr) return invalid_handle;
  if (slowsql->buffer == nullptr) return success;
  const sword status = KZCISlowSQLBufferFlush(slowsql);
  if (status != success) KZ_LOG_ERROR("KZCISlowSQLBufferFlush (clean) write to log fail");
  kzci_free(slowsql->buffer);
  slowsql->buffer = nullptr;
  slowsql->buffer_length = 0;
  slowsql->buffer_pos = 0;
  return status;
}
