#include "text/uri.h"

#include <cctype>
#include <charconv>
#include <cstdio>

namespace kztns {

std::string uri_of(std::string_view path) {
  std::string uri;
  for (const char c : path) {
    const auto byte = static_cast<unsigned char>(c);
    if (std::isalnum(byte) != 0 || std::string_view("-._~/").find(c) != std::string_view::npos) {
      uri += c;
      continue;
    }
    char escaped[4];
    std::snprintf(escaped, sizeof escaped, "%%%02X", byte);
    uri += escaped;
  }
  return uri.starts_with("/") ? "file://" + uri : uri;
}

std::optional<std::string> path_of(std::string_view uri) {
  constexpr std::string_view scheme = "file://";
  if (!uri.starts_with(scheme)) return std::nullopt;
  uri.remove_prefix(scheme.size());
  // The host of a file is this one.
  uri.remove_prefix(std::min(uri.find('/'), uri.size()));
  std::string path;
  while (!uri.empty()) {
    unsigned code = 0;
    const bool escaped =
        uri[0] == '%' && uri.size() > 2 &&
        std::from_chars(uri.data() + 1, uri.data() + 3, code, 16).ptr == uri.data() + 3;
    path += escaped ? static_cast<char>(code) : uri[0];
    uri.remove_prefix(escaped ? 3 : 1);
  }
  return path;
}

}  // namespace kztns
