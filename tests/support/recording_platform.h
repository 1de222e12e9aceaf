// A platform that writes down what the module asks of it: every log record,
// every allocation and every release, in one sequence.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "kzoci/platform/log.h"
#include "kzoci/platform/memory.h"

namespace support {

struct Block {
  std::string tag;
  std::size_t size = 0;

  bool operator==(const Block &other) const { return tag == other.tag && size == other.size; }
};

// Forgets all events and live blocks and allows every allocation again.
// Blocks that are still allocated are given back to the system.
void reset_platform();

// The n-th allocation from now on (1 is the next one) fails; with for_ever, so
// do all that follow.
void fail_allocation(std::size_t n, bool for_ever = false);

// Log records as "LEVEL text", with pointers as printed by "%p".
std::vector<std::string> log_records();

// The same with every pointer replaced by "PTR".
std::vector<std::string> log_without_pointers();

// A text with every pointer replaced in the same way.
std::string without_pointers(const std::string &text);

// Log records of one level, without the level, pointers replaced by "PTR".
std::vector<std::string> log_of(log_level level);

// Records at WARN and above, as "LEVEL text", pointers replaced by "PTR".
std::vector<std::string> warnings_and_errors();

// Log records as log_without_pointers, and in their midst "MALLOC size tag",
// "MALLOC FAILS size tag", "FREE tag" and "FREE null".
std::vector<std::string> events();

// Only the MALLOC and FREE events.
std::vector<std::string> memory_events();

// Source files that logged, one for each record.
std::vector<std::string> log_files();

// Formats of the records as the module handed them over.
std::vector<std::string> log_formats();

// Where the records of a format were logged, as "FILE:LINE".
std::vector<std::string> log_places(const std::string &format);

// Blocks that are allocated now, in the order of their allocation.
std::vector<Block> live_blocks();

// Allocations asked for since the last reset, failed ones included.
std::size_t allocation_count();

// Releases of something that is not allocated, since the last reset.
std::size_t bad_releases();

// When off, log records are counted but neither formatted nor kept.
void keep_log(bool keep);

// A pointer as "%p" prints it.
std::string pointer_text(const void *pointer);

const char *level_name(log_level level);

}  // namespace support
