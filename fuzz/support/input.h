// Taking a fuzz input apart. The choices at its head are characters that can be
// written in an editor, so that the corpus is text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>

namespace fuzz {

class Input {
 public:
  Input(const std::uint8_t *data, std::size_t size)
      : text_(reinterpret_cast<const char *>(data), size) {}

  bool empty() const { return text_.empty(); }

  // The next byte; '0' after the end.
  unsigned char byte() {
    if (text_.empty()) return '0';
    const auto next = static_cast<unsigned char>(text_.front());
    text_.remove_prefix(1);
    return next;
  }

  // The next byte counted from '0' on; smaller bytes are negative.
  int digit() { return byte() - '0'; }

  // A choice of n: '0' is the first.
  unsigned choice(unsigned n) { return static_cast<unsigned char>(byte() - '0') % n; }

  // Two digits to the base of 64.
  int number() {
    const int high = digit();
    return high * 64 + digit();
  }

  // Which allocation fails: '0' none, '1' the first, up to the 31st.
  std::size_t failing_allocation() { return choice(32); }

  // The bytes up to the next line feed, which is consumed, or to the end.
  std::string_view line() {
    const std::size_t length = text_.find('\n');
    const std::string_view taken = take(length);
    take(1);
    return taken;
  }

  // At most n bytes.
  std::string_view take(std::size_t n) {
    const std::string_view taken = text_.substr(0, n);
    text_.remove_prefix(taken.size());
    return taken;
  }

  std::string_view rest() { return take(text_.size()); }

 private:
  std::string_view text_;
};

// A heap block of a text's exact size, so that a read after its end shows.
class HeapText {
 public:
  explicit HeapText(std::string_view text)
      : characters_(new char[text.size()]), size_(text.size()) {
    if (!text.empty()) std::memcpy(characters_.get(), text.data(), text.size());
  }

  char *data() const { return characters_.get(); }
  std::size_t size() const { return size_; }
  std::string_view view() const { return {characters_.get(), size_}; }

 private:
  std::unique_ptr<char[]> characters_;
  std::size_t size_;
};

}  // namespace fuzz
