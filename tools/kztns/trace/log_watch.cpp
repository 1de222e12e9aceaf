#include "trace/log_watch.h"

#include <algorithm>
#include <cstdio>

#include "kzoci/platform/level_names.h"
#include "text/escape.h"

namespace kztns {
namespace {

std::string formatted(const char *format, std::va_list arguments) {
  std::va_list again;
  va_copy(again, arguments);
  const int length = std::vsnprintf(nullptr, 0, format, again);
  va_end(again);
  std::string text(length > 0 ? static_cast<std::size_t>(length) : 0, '\0');
  std::vsnprintf(text.data(), text.size() + 1, format, arguments);
  return text;
}

std::string substituted(std::string text, const Substitution &substitution) {
  if (substitution.text.empty()) return text;
  for (std::size_t at = text.find(substitution.text); at != std::string::npos;
       at = text.find(substitution.text, at + substitution.shown.size()))
    text.replace(at, substitution.text.size(), substitution.shown);
  return text;
}

}  // namespace

// DEBUG records are formatted only when they are shown: a large file makes
// millions.
void LogWatch::record(log_level level, const char *format, std::va_list arguments) {
  if (level < LOG_LEVEL_WARN && !is_shown(level)) return;
  const std::string text = substituted(formatted(format, arguments), substitution_);
  if (is_shown(level))
    std::fprintf(stderr, "%s %s\n", kzoci::platform::level_name(level),
                 visible(reworded(format, text)).c_str());
  if (level >= LOG_LEVEL_WARN) take_fault(level, text);
}

const std::string &LogWatch::reworded(const char *format, const std::string &text) const {
  const std::optional<MessageId> id = message_of(format);
  const auto found =
      std::find_if(rewordings_.begin(), rewordings_.end(),
                   [&](const Rewording &rewording) { return rewording.record == id; });
  return found == rewordings_.end() ? text : found->shown;
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
