// Making a record of the tree: allocate it, set its defaults, read its block into it.
#pragma once

#include <cstddef>

#include "items.h"
#include "kzoci/platform/memory.h"
#include "log.h"
#include "status.h"

namespace kzoci::tns {

// What differs from one kind of record to another.
template <class Record, class NotBuilt = Message<>>
struct RecordKind {
  const char *tag;
  Message<unsigned long> not_allocated;
  sword (*init)(Record *);
  Message<> init_failed;
  Message<int> key_met;
  NotBuilt not_built;
  std::size_t reported_size = sizeof(Record);  // what not_allocated prints
};

// Those below log with the place of their caller.

template <class Record, class NotBuilt>
Record *allocate_record(const RecordKind<Record, NotBuilt> &kind,
                        const char *file = __builtin_FILE(), int line = __builtin_LINE()) {
  auto *const record = static_cast<Record *>(kzci_malloc(sizeof(Record), kind.tag));
  if (record == nullptr)
    log_record({file, line}, kind.not_allocated, size_number(kind.reported_size));
  return record;
}

// A record whose Init fails stays allocated.
template <class Record, class NotBuilt>
sword make_record(const RecordKind<Record, NotBuilt> &kind, Record **record,
                  const char *file = __builtin_FILE(), int line = __builtin_LINE()) {
  *record = allocate_record(kind, file, line);
  if (*record == nullptr) return failure;
  const sword status = kind.init(*record);
  if (status != success) log_record({file, line}, kind.init_failed);
  return status;
}

// Makes a record and reads its block into it; read_item_value(record) reads one value. A
// record whose block is not good is released alone, without its children.
template <class Record, class NotBuilt, class ReadItemValue>
sword build_record(const RecordKind<Record, NotBuilt> &kind, KZCITnsParseParams *params,
                   Record **record, ReadItemValue read_item_value,
                   const char *file = __builtin_FILE(), int line = __builtin_LINE()) {
  sword status = make_record(kind, record, file, line);
  if (status != success) return status;
  status = read_block(
      params, kind.key_met, kind.not_built, [&] { return read_item_value(**record); }, file, line);
  if (status != success) kzci_free(*record);
  return status;
}

}  // namespace kzoci::tns
