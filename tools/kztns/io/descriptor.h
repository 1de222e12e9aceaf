// A file descriptor that is closed with its owner.
#pragma once

#include <unistd.h>

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
    while (!bytes.empty()) {
      const ssize_t count = write(number_, bytes.data(), bytes.size());
      if (count < 0 && errno != EINTR) return false;
      if (count > 0) bytes.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
  }

 private:
  int number_;
};

}  // namespace kztns
