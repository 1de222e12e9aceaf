// Making a record of the tree: allocate it, then give it its defaults.
#pragma once

#include <cstddef>

#include "kzoci/platform/memory.h"
#include "log.h"
#include "status.h"

namespace kzoci::tns {

// Sets a record to zero by the library's memset. With the size in sight, compilers
// put a string instruction in its place, which is slower for hundreds of bytes.
void set_to_zero(void *record, std::size_t size);

template <class Record>
struct RecordKind {
  const char *tag;
  const char *malloc_failure;  // printf format of the size
  sword (*init)(Record *);
  const char *init_failure;
  std::size_t reported_size = sizeof(Record);  // what malloc_failure prints
};

template <class Record>
Record *allocate_record(const RecordKind<Record> &kind) {
  auto *const record = static_cast<Record *>(kzci_malloc(sizeof(Record), kind.tag));
  if (record == nullptr) KZ_LOG_ERROR(kind.malloc_failure, size_number(kind.reported_size));
  return record;
}

// A record whose Init fails stays allocated.
template <class Record>
sword make_record(const RecordKind<Record> &kind, Record **record) {
  *record = allocate_record(kind);
  if (*record == nullptr) return failure;
  const sword status = kind.init(*record);
  if (status != success) KZ_LOG_ERROR("%s", kind.init_failure);
  return status;
}

}  // namespace kzoci::tns
