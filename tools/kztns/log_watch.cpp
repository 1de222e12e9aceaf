#include "log_watch.h"

#include <algorithm>
#include <cstdio>
#include <string_view>

namespace kztns {
namespace {

constexpr std::string_view file_name_label = "get configure file:";

const char *level_name(log_level level) {
  constexpr const char *names[] = {"TRACE", "DEBUG", "INFO", "WARN", "ERROR", "FATAL", "SLOWSQL"};
  return names[level - LOG_LEVEL_TRACE];
}

}  // namespace

// The file's name comes at DEBUG, before the first entry is read. From then on
// DEBUG records are formatted only when somebody wants to see them: a large file
// makes millions.
LogWatch::LogWatch(std::optional<log_level> shown) : shown_(shown) {
  kzoci_log_set_sink(receive, this);
  kzoci_log_set_threshold(std::min(LOG_LEVEL_DEBUG, shown.value_or(LOG_LEVEL_DEBUG)));
}

LogWatch::~LogWatch() {
  kzoci_log_set_sink(nullptr, nullptr);
  kzoci_log_set_threshold(LOG_LEVEL_ERROR);
}

void LogWatch::receive(void *self, const kzoci_log_record *record) {
  static_cast<LogWatch *>(self)->take(*record);
}

void LogWatch::take(const kzoci_log_record &record) {
  const std::string_view text(record.text, record.text_len);
  if (shown_ && record.level >= *shown_)
    std::fprintf(stderr, "%s %s\n", level_name(record.level), record.text);
  if (text.starts_with(file_name_label)) {
    file_name_ = text.substr(file_name_label.size());
    kzoci_log_set_threshold(std::min(LOG_LEVEL_WARN, shown_.value_or(LOG_LEVEL_WARN)));
  }
  if (record.level >= LOG_LEVEL_ERROR && !first_error_) first_error_ = text;
  if (record.level == LOG_LEVEL_WARN) {
    warning_before_ = warning_;
    warning_ = text;
  }
}

std::string LogWatch::fault() const {
  if (first_error_) return *first_error_;
  // The tokenizer tells what it met, its caller that this ended the lookup.
  return warning_before_.empty() ? warning_ : warning_before_ + "; " + warning_;
}

}  // namespace kztns
