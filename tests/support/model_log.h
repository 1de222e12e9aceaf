// The records that a lookup logs, as "LEVEL text" in their order, with "PTR" for every
// pointer. Without a place for them nothing is kept.
#pragma once

#include <concepts>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace model {

using Lines = std::vector<std::string>;

class Log {
 public:
  explicit Log(Lines *lines) : lines_(lines) {}

  template <class... Parts>
  void debug(const Parts &...parts) {
    add("DEBUG ", parts...);
  }
  template <class... Parts>
  void warn(const Parts &...parts) {
    add("WARN ", parts...);
  }
  template <class... Parts>
  void error(const Parts &...parts) {
    add("ERROR ", parts...);
  }

 private:
  template <class... Parts>
  void add(const Parts &...parts) {
    if (lines_ == nullptr) return;
    std::string line;
    (append(line, parts), ...);
    lines_->push_back(std::move(line));
  }

  static void append(std::string &line, std::string_view part) { line += part; }
  static void append(std::string &line, std::integral auto number) {
    line += std::to_string(number);
  }

  Lines *lines_;
};

}  // namespace model
