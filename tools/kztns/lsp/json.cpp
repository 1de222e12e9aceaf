#include "lsp/json.h"

#include <algorithm>

#include <nlohmann/json.hpp>

namespace kztns::lsp {

const Json &member(const Json &object, const char *name) {
  static const Json none;
  if (!object.is_object()) return none;
  const auto found = object.find(name);
  return found == object.end() ? none : *found;
}

std::optional<std::int64_t> integer_in(const Json &value) {
  if (!value.is_number_integer()) return std::nullopt;
  return value.get<std::int64_t>();
}

std::optional<std::string> text_in(const Json &value) {
  const auto *const text = value.get_ptr<const std::string *>();
  return text == nullptr ? std::nullopt : std::optional(*text);
}

bool is_true(const Json &value) { return value.is_boolean() && value.get<bool>(); }

bool is_id(const Json &value) { return value.is_number_integer() || value.is_string(); }

bool has_text(const Json &array, const char *text) {
  return array.is_array() && std::any_of(array.begin(), array.end(), [&](const Json &value) {
           return text_in(value) == std::string(text);
         });
}

std::string text_of(const Json &message) {
  return message.dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace kztns::lsp
