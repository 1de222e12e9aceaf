// Paths as URIs, as editors and code review tools exchange them.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kztns {

// What is no plain character, as "%..". An absolute path becomes a URI with "file:".
std::string uri_of(std::string_view path);

// The path of a URI with "file:"; absent for another one.
std::optional<std::string> path_of(std::string_view uri);

}  // namespace kztns
