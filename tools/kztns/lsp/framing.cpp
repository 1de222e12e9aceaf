#include "lsp/framing.h"

#include <charconv>

#include "text/characters.h"
#include "text/spelling.h"

namespace kztns::lsp {
namespace {

constexpr std::string_view length_header = "Content-Length";
constexpr std::string_view end_of_header = "\r\n\r\n";

// The length that a header says; absent when it says none, or another header is none.
std::optional<std::size_t> length_in(std::string_view header) {
  std::optional<std::size_t> length;
  while (!header.empty()) {
    const std::string_view line = header.substr(0, header.find("\r\n"));
    header.remove_prefix(std::min(line.size() + 2, header.size()));
    const std::size_t colon = line.find(':');
    if (colon == std::string_view::npos) return std::nullopt;
    if (!equal_but_for_case(line.substr(0, colon), length_header)) continue;
    const std::string_view digits = trimmed(line.substr(colon + 1));
    std::size_t value = 0;
    const auto end = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (end.ec != std::errc() || end.ptr != digits.data() + digits.size()) return std::nullopt;
    length = value;
  }
  return length;
}

}  // namespace

std::optional<std::string> MessageReader::next() {
  if (broken_ || (!length_ && !read_header()) || bytes_.size() < *length_) return std::nullopt;
  std::string body = bytes_.substr(0, *length_);
  bytes_.erase(0, *length_);
  length_.reset();
  return body;
}

bool MessageReader::read_header() {
  const std::size_t end = bytes_.find(end_of_header);
  if (end == std::string::npos) {
    broken_ = bytes_.size() > longest_header;
    return false;
  }
  length_ = length_in(std::string_view(bytes_).substr(0, end));
  broken_ = !length_ || *length_ > longest_message || end > longest_header;
  bytes_.erase(0, end + end_of_header.size());
  return !broken_;
}

std::string framed(std::string_view body) {
  std::string message(length_header);
  message.append(": ").append(std::to_string(body.size())).append(end_of_header).append(body);
  return message;
}

}  // namespace kztns::lsp
