// The calls of the logger that a test can make fail.
//
// The linker puts stand-ins before them (log_faults.cpp); they do as the system
// does but while a plan is in force.
#pragma once

#include <cstddef>
#include <string>

namespace log_faults {

enum class Call {
  malloc,
  getcwd,
  open,
  fstat,
  stat,
  flock,
  rename,
  ftruncate,
  write,
  write_to_standard_error
};

constexpr std::size_t for_ever = static_cast<std::size_t>(-1);

struct Plan {
  Call call;
  std::size_t first = 1;      // The number of the first of these calls that fails,
  std::size_t times = 1;      // and how many do.
  int error = 0;              // What they fail with; 0 for a write of a single byte, and
                              // for a file that seems to be on another device.
  bool after_a_byte = false;  // The first of these writes is of a single byte.
};

// Makes calls fail while it exists.
class Faults {
 public:
  explicit Faults(const Plan &plan);
  ~Faults();
  Faults(const Faults &) = delete;
  Faults &operator=(const Faults &) = delete;

  std::size_t struck() const;
};

std::string name_of(Call call);

}  // namespace log_faults
