// Listening to the module's log while a lookup runs: what the records say about
// the file and about the first fault.
#pragma once

#include <optional>
#include <string>

#include "platform.h"

namespace kztns {

class LogWatch : private LogListener {
 public:
  // Shows records from the given level on on standard error; none when absent.
  explicit LogWatch(std::optional<log_level> shown) : shown_(shown), listening_(*this) {}

  // The variable that chose the names file; empty when none is set.
  const std::string &variable() const { return variable_; }

  // The names file that the lookup chose; absent when no variable names one.
  const std::optional<std::string> &file_name() const { return file_name_; }

  // The text of the first ERROR record; where there is none, of the WARN records
  // that ended the lookup.
  std::string fault() const;

 private:
  void record(log_level level, const char *format, std::va_list arguments) override;
  bool is_wanted(log_level level) const;
  void take_debug(const std::string &text);
  void take_fault(log_level level, const std::string &text);

  std::optional<log_level> shown_;
  std::string variable_;
  std::optional<std::string> file_name_;
  std::optional<std::string> first_error_;
  std::string warning_;
  std::string warning_before_;
  Listening listening_;
};

}  // namespace kztns
