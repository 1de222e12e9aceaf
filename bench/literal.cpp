// Literal descriptors against the floor: the same records allocated, zeroed and
// freed, and the same log calls dropped.
#include "literal.h"

#include <benchmark/benchmark.h>

#include <cstring>
#include <vector>

#include "kzoci/platform/log.h"
#include "kzoci/platform/memory.h"
#include "rows.h"
#include "support/dropping_platform.h"
#include "support/measure.h"

namespace bench {

namespace {

// Log calls by the number of their arguments. Numbers and texts are passed
// alike, in a register or a word of the stack each.
struct LogCalls {
  std::size_t with[4] = {};
};

LogCalls log_calls_of(const PlatformCalls &calls) {
  LogCalls logs;
  for (const std::string &format : calls.log_formats) {
    const std::size_t count = argument_count(format);
    if (count >= std::size(logs.with))
      fail("a record with more arguments than expected: " + format);
    ++logs.with[count];
  }
  return logs;
}

void drop_logs(const LogCalls &logs) {
  const char *const text = compact_literal.data();
  const int length = static_cast<int>(compact_literal.size());
  for (std::size_t i = 0; i < logs.with[0]; ++i)
    kzoci_log_inner(LOG_LEVEL_DEBUG, __FILE__, __LINE__, "no argument");
  for (std::size_t i = 0; i < logs.with[1]; ++i)
    kzoci_log_inner(LOG_LEVEL_DEBUG, __FILE__, __LINE__, "status:%d", length);
  for (std::size_t i = 0; i < logs.with[2]; ++i)
    kzoci_log_inner(LOG_LEVEL_WARN, __FILE__, __LINE__, "text:%.*s", length, text);
  for (std::size_t i = 0; i < logs.with[3]; ++i)
    kzoci_log_inner(LOG_LEVEL_DEBUG, __FILE__, __LINE__, "size:%d, text:%.*s", length, length,
                    text);
}

void bare_records(const std::vector<std::size_t> &sizes) {
  void *records[literal_records];
  for (std::size_t i = 0; i < literal_records; ++i) {
    records[i] = kzci_malloc(sizes[i], "record");
    std::memset(records[i], 0, sizes[i]);
    benchmark::DoNotOptimize(records[i]);
  }
  benchmark::ClobberMemory();
  for (void *const record : records) kzci_free(record);
}

Cost floor_cost(std::string_view descriptor) {
  const PlatformCalls calls = calls_of([=] { parse_literal(descriptor); });
  if (calls.allocations.size() != literal_records)
    fail("a literal has other records than expected");
  return cost_of(repeat([logs = log_calls_of(calls), sizes = calls.allocations] {
    bare_records(sizes);
    drop_logs(logs);
  }));
}

Cost parse_cost(std::string_view descriptor) {
  return cost_of(repeat([=] { parse_literal(descriptor); }));
}

}  // namespace

void build_literal(KZCITns &tns, std::string_view descriptor) {
  boolean find = 0;
  const sword status = KZCITnsBuild(&tns, reinterpret_cast<const OraText *>(descriptor.data()),
                                    static_cast<ub4>(descriptor.size()), &find);
  if (status != 0 || find == 0) fail("a literal descriptor is not built");
}

void parse_literal(std::string_view descriptor) {
  KZCITns tns;
  KZCITnsInit(&tns);
  build_literal(tns, descriptor);
  KZCITnsClear(&tns);
}

void add_literal_rows() {
  add_row({.name = "literal of 179 bytes / floor",
           .unit = "literal",
           .setup =
               [] {
                 return Costs{parse_cost(compact_literal), floor_cost(compact_literal)};
               },
           .target = {2.2, 1.8}});
  add_row({.name = "literal of 231 bytes / floor", .unit = "literal", .setup = [] {
             return Costs{parse_cost(spaced_literal), floor_cost(spaced_literal)};
           }});
  add_row({.name = "literal of 231 bytes / of 179 bytes", .unit = "literal", .setup = [] {
             return Costs{parse_cost(spaced_literal), parse_cost(compact_literal)};
           }});
}

}  // namespace bench
