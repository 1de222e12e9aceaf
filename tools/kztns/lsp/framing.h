// Messages in a stream of bytes, each after its header:
//
//   Content-Length: BYTES CR LF [other header CR LF]... CR LF body
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace kztns::lsp {

// A longer message is no message that an editor sends: names files are smaller.
constexpr std::size_t longest_message = std::size_t{1} << 30;
constexpr std::size_t longest_header = 4096;

class MessageReader {
 public:
  void add(std::string_view bytes) { bytes_ += bytes; }

  // The next complete message's body; absent when there is none yet, or no more.
  std::optional<std::string> next();

  // Whether a header was none: where the next message begins is not known then.
  bool is_broken() const { return broken_; }

 private:
  bool read_header();

  std::string bytes_;
  std::optional<std::size_t> length_;  // of the current body
  bool broken_ = false;
};

// A body with its header.
std::string framed(std::string_view body);

}  // namespace kztns::lsp
