#include "model_words.h"

#include <algorithm>

#include "keys.h"

namespace model {
namespace {

char upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; }

}  // namespace

bool stands_for(std::string_view value, std::string_view word) {
  for (std::size_t i = 0; i < value.size(); ++i) {
    if (i == word.size()) return value[i] == '\0';
    if (upper(value[i]) != word[i]) return false;
  }
  return true;
}

std::string_view key_of(std::string_view text) {
  for (const support::Key &key : support::keys)
    if (text.size() == key.word.size() && stands_for(text, key.word)) return key.word;
  return no_key;
}

std::string copied_as_string(std::string_view text) {
  std::string copy(printed(text));
  copy.resize(text.size(), '\0');
  return copy;
}

std::string_view printed(std::string_view text) {
  return text.substr(0, std::min(text.find('\0'), text.size()));
}

}  // namespace model
