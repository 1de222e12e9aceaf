// A file descriptor that is closed with its owner.
#pragma once

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string_view>

namespace kztns {

class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() {
    if (number_ >= 0) close(number_);
  }
  Descriptor(const Descriptor &) = delete;
  Descriptor &operator=(const Descriptor &) = delete;

  int number() const { return number_; }

  // Writes all of it; otherwise errno tells why not.
  bool write_all(std::string_view bytes) const {
    // As much as the calls of all systems take.
    constexpr std::size_t largest_piece = 1 << 30;
    while (!bytes.empty()) {
      const auto piece = static_cast<unsigned>(std::min(bytes.size(), largest_piece));
      const ssize_t count = write(number_, bytes.data(), piece);
      if (count < 0 && errno != EINTR) return false;
      if (count > 0) bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
  }

 private:
  int number_;
};

}  // namespace kztns
