// Listening to the module's log while a lookup runs: what the records say about
// the file and about the first fault.
#pragma once

#include <optional>
#include <string>

#include "kzoci/platform/default_logger.h"

namespace kztns {

class LogWatch {
 public:
  // Shows records from the given level on on standard error; none when absent.
  explicit LogWatch(std::optional<log_level> shown);
  ~LogWatch();
  LogWatch(const LogWatch &) = delete;
  LogWatch &operator=(const LogWatch &) = delete;

  // The names file that the lookup chose; absent when no variable names one.
  const std::optional<std::string> &file_name() const { return file_name_; }

  // The text of the first ERROR record; where there is none, of the WARN records
  // that ended the lookup.
  std::string fault() const;

 private:
  static void receive(void *self, const kzoci_log_record *record);
  void take(const kzoci_log_record &record);

  std::optional<log_level> shown_;
  std::optional<std::string> file_name_;
  std::optional<std::string> first_error_;
  std::string warning_;
  std::string warning_before_;
};

}  // namespace kztns
