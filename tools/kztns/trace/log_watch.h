// Listening to the module's log while a lookup runs: showing records, and what
// they say about the first fault.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "trace/log_records.h"
#include "trace/platform.h"

namespace kztns {

// A record that is shown in other words.
struct Rewording {
  MessageId record;
  std::string shown;
};

// A text that is shown as another one, wherever a record holds it.
struct Substitution {
  std::string text;  // empty for none
  std::string shown;
};

class LogWatch : private LogListener {
 public:
  // Shows records from the given level on on standard error, one a line; none when
  // absent.
  explicit LogWatch(std::optional<log_level> shown, std::vector<Rewording> rewordings = {},
                    Substitution substitution = {})
      : shown_(shown),
        rewordings_(std::move(rewordings)),
        substitution_(std::move(substitution)),
        listening_(*this) {}

  // The text of the first ERROR record; where there is none, of the WARN records
  // that ended the lookup.
  std::string fault() const;

 private:
  void record(log_level level, const char *format, std::va_list arguments) override;
  bool is_shown(log_level level) const { return shown_ && level >= *shown_; }
  // In other words if there are some for it.
  const std::string &reworded(const char *format, const std::string &text) const;
  void take_fault(log_level level, const std::string &text);

  std::optional<log_level> shown_;
  std::vector<Rewording> rewordings_;
  Substitution substitution_;
  std::optional<std::string> first_error_;
  std::string warning_;
  std::string warning_before_;
  Listening listening_;
};

}  // namespace kztns
