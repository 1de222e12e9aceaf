#include "log_watch.h"

#include <cstdio>
#include <string_view>

namespace kztns {
namespace {

constexpr std::string_view file_name_label = "get configure file:";

const char *level_name(log_level level) {
  constexpr const char *names[] = {"TRACE", "DEBUG", "INFO", "WARN", "ERROR", "FATAL", "SLOWSQL"};
  return names[level - LOG_LEVEL_TRACE];
}

std::string formatted(const char *format, std::va_list arguments) {
  std::va_list again;
  va_copy(again, arguments);
  const int length = std::vsnprintf(nullptr, 0, format, again);
  va_end(again);
  std::string text(length > 0 ? static_cast<std::size_t>(length) : 0, '\0');
  std::vsnprintf(text.data(), text.size() + 1, format, arguments);
  return text;
}

}  // namespace

// The file's name comes at DEBUG, before the first entry is read. From then on
// DEBUG records are formatted only when somebody wants to see them: a large file
// makes millions.
bool LogWatch::is_wanted(log_level level) const {
  return level >= LOG_LEVEL_WARN || !file_name_ || (shown_ && level >= *shown_);
}

void LogWatch::record(log_level level, const char *format, std::va_list arguments) {
  if (!is_wanted(level)) return;
  const std::string text = formatted(format, arguments);
  if (shown_ && level >= *shown_) std::fprintf(stderr, "%s %s\n", level_name(level), text.c_str());
  if (level >= LOG_LEVEL_WARN)
    take_fault(level, text);
  else if (!file_name_)
    take_debug(text);
}

void LogWatch::take_debug(const std::string &text) {
  if (text.starts_with(file_name_label)) {
    file_name_ = text.substr(file_name_label.size());
    return;
  }
  for (const char *const variable : {"KZCI_TNS_FILE", "TNS_ADMIN", "ORACLE_HOME"})
    if (text.starts_with(std::string("get ") + variable + ":")) variable_ = variable;
}

void LogWatch::take_fault(log_level level, const std::string &text) {
  if (level >= LOG_LEVEL_ERROR) {
    if (!first_error_) first_error_ = text;
    return;
  }
  warning_before_ = warning_;
  warning_ = text;
}

std::string LogWatch::fault() const {
  if (first_error_) return *first_error_;
  // The tokenizer tells what it met, its caller that this ended the lookup.
  return warning_before_.empty() ? warning_ : warning_before_ + "; " + warning_;
}

}  // namespace kztns
