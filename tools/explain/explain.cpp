// The C interface: what fails is a status, and what is handed out belongs to its caller.
#include "kzoci/explain.h"

#include <algorithm>
#include <cerrno>
#include <exception>
#include <limits>
#include <memory>
#include <string_view>

#include "reasons.h"
#include "text/utf8.h"

namespace {

using kztns::Position;
using kztns::Reasons;

constexpr int success = 0;
constexpr int no_memory = -1;
constexpr int invalid_handle = -2;

constexpr std::string_view no_memory_line = "no memory to tell why";

// Lengths of texts are ints in the module.
constexpr std::size_t longest_identifier = std::numeric_limits<int>::max();

// Gives errno back as it was.
class KeptErrno {
 public:
  KeptErrno() : value_(errno) {}
  ~KeptErrno() { errno = value_; }
  KeptErrno(const KeptErrno &) = delete;
  KeptErrno &operator=(const KeptErrno &) = delete;

 private:
  int value_;
};

// A record with what it points to.
struct Explanation : kzoci_explanation {
  Reasons reasons;
  std::vector<kzoci_near_name> names;
};

const char *text_or_null(const std::optional<std::string> &text) {
  return text ? text->c_str() : nullptr;
}

void fill_places(const Reasons &reasons, kzoci_explanation &record) {
  constexpr Position nowhere = {0, 0};
  const Position place = reasons.place.value_or(nowhere);
  const Position entry = reasons.entry.value_or(nowhere);
  record.line = place.line;
  record.column = place.column;
  record.entry_line = entry.line;
  record.entry_column = entry.column;
}

void fill_near_names(Explanation &explanation) {
  std::vector<kzoci_near_name> &names = explanation.names;
  for (const kztns::NearEntry &near : explanation.reasons.near)
    names.push_back(
        {near.name.c_str(), near.position.line, near.position.column, near.clause.c_str()});
  explanation.near_names = names.empty() ? nullptr : names.data();
  explanation.near_names_count = names.size();
}

std::unique_ptr<Explanation> explanation_of(Reasons reasons_of_it) {
  auto explanation = std::make_unique<Explanation>();
  explanation->reasons = std::move(reasons_of_it);
  const Reasons &reasons = explanation->reasons;
  kzoci_explanation &record = *explanation;
  record.outcome = reasons.outcome;
  record.is_literal = reasons.is_literal ? 1 : 0;
  record.message = reasons.message.c_str();
  record.identifier = reasons.identifier.c_str();
  record.file = text_or_null(reasons.file);
  record.variable = text_or_null(reasons.variable);
  fill_places(reasons, record);
  record.rule = reasons.rule.c_str();
  record.text = reasons.text.c_str();
  record.remedy = reasons.remedy.c_str();
  record.note = reasons.note.c_str();
  fill_near_names(*explanation);
  return explanation;
}

Reasons reasons_of(const char *identifier, std::size_t length, const char *path) {
  const std::string name(identifier, length);
  return kztns::reasons_of(name, path != nullptr ? std::optional<std::string>(path) : std::nullopt);
}

bool is_refused(const char *identifier, std::size_t length, const void *output) {
  return identifier == nullptr || output == nullptr || length > longest_identifier;
}

// Cut between two characters.
void write_line(std::string_view text, char *line, std::size_t size, std::size_t *line_len) {
  if (line_len != nullptr) *line_len = text.size();
  if (size == 0) return;
  std::string_view shown = text.substr(0, size - 1);
  if (shown.size() < text.size()) shown.remove_suffix(kztns::cut_end(shown));
  *std::copy(shown.begin(), shown.end(), line) = '\0';
}

}  // namespace

int kzoci_explain_line(const char *identifier, size_t identifier_len, const char *path, char *line,
                       size_t size, size_t *line_len) {
  if (is_refused(identifier, identifier_len, line)) return invalid_handle;
  const KeptErrno kept;
  try {
    write_line(reasons_of(identifier, identifier_len, path).message, line, size, line_len);
    return success;
  } catch (const std::exception &) {
    write_line(no_memory_line, line, size, line_len);
    return no_memory;
  }
}

int kzoci_explain(const char *identifier, size_t identifier_len, const char *path,
                  kzoci_explanation **explanation) {
  if (is_refused(identifier, identifier_len, explanation)) return invalid_handle;
  const KeptErrno kept;
  try {
    *explanation = explanation_of(reasons_of(identifier, identifier_len, path)).release();
    return success;
  } catch (const std::exception &) {
    return no_memory;
  }
}

void kzoci_explanation_free(kzoci_explanation *explanation) {
  delete static_cast<Explanation *>(explanation);
}
