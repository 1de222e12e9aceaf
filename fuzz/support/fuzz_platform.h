// A platform that watches what the module asks of it. Log records are formatted
// and must quote nothing but the input; memory is patterned, so that a read of
// something unset or released shows; blocks that a failed build leaves allocated
// are given back at the end of the run.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "check.h"
#include "kzoci/platform/log.h"
#include "kzoci/platform/memory.h"

namespace fuzz {

// One run of a target. Without one, nothing may be logged or allocated.
class Run {
 public:
  // sources     every text that a log record may quote
  // own_length  how much longer than all of them together a record may be, beside
  //             its format
  explicit Run(std::initializer_list<std::string_view> sources, std::size_t own_length = 128);
  ~Run();
  Run(const Run &) = delete;
  Run &operator=(const Run &) = delete;
};

// The n-th allocation from now on fails; 0 for none.
void fail_allocation(std::size_t n);

// Whether the allocation that was to fail has been asked for.
bool allocation_has_failed();

// Blocks that are allocated now.
std::size_t live_blocks();

// Whether a block of at least this size is allocated there.
bool is_live(const void *block, std::size_t size);

// Stands for the sequence of log records since the last call: their levels,
// places and formats.
std::uint64_t take_log_fingerprint();

// Texts of the slow-SQL records since the last call.
std::vector<std::string> take_slow_sql();

// What holds of a text that the module printed: bytes that are neither printable
// nor line feeds come from the sources.
void check_printed(std::string_view text);

}  // namespace fuzz
