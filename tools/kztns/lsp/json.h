// Reading messages of which nothing is certain: what is missing or of another type is null.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include <nlohmann/json_fwd.hpp>

namespace kztns::lsp {

using Json = nlohmann::json;

// A member of an object; null when it is not there, or when there is no object.
const Json &member(const Json &object, const char *name);

// The same of objects in objects: "textDocument", "uri".
template <class... Names>
const Json &member(const Json &object, const char *name, const Names *...names) {
  return member(member(object, name), names...);
}

std::optional<std::int64_t> integer_in(const Json &value);
std::optional<std::string> text_in(const Json &value);
bool is_true(const Json &value);

// Whether a request may have it as its id.
bool is_id(const Json &value);

// Whether an array has a text.
bool has_text(const Json &array, const char *text);

// As a message; bytes that are not UTF-8 are replaced.
std::string text_of(const Json &message);

}  // namespace kztns::lsp
