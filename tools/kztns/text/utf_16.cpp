#include "text/utf_16.h"

#include <algorithm>
#include <cstdint>
#include <optional>

namespace kztns {
namespace {

enum class Order { little, big };

std::optional<Order> order_of_mark(std::string_view text) {
  if (text.starts_with("\xFF\xFE")) return Order::little;
  if (text.starts_with("\xFE\xFF")) return Order::big;
  return std::nullopt;
}

// Nothing but the beginning of a text is looked at to tell its encoding.
constexpr std::size_t most_looked_at = 1024;

// In a text that is plain ASCII but for a few characters, nearly all upper bytes are zero
// and hardly any other one.
std::optional<Order> order_of_zeros(std::string_view text) {
  const std::size_t units = std::min(text.size(), most_looked_at) / 2;
  if (units < 2) return std::nullopt;
  std::size_t zeros[2] = {};
  for (std::size_t i = 0; i < units * 2; ++i) zeros[i % 2] += text[i] == '\0' ? 1 : 0;
  const std::size_t nearly_all = units - units / 4;
  const std::size_t hardly_any = units / 8;
  if (zeros[0] <= hardly_any && zeros[1] >= nearly_all) return Order::little;
  if (zeros[1] <= hardly_any && zeros[0] >= nearly_all) return Order::big;
  return std::nullopt;
}

std::optional<Order> order_of(std::string_view text) {
  const auto order = order_of_mark(text);
  return order ? order : order_of_zeros(text);
}

void append_utf_8(std::uint32_t character, std::string &to) {
  const auto add = [&](std::uint32_t byte) { to += static_cast<char>(byte); };
  if (character < 0x80) return add(character);
  if (character < 0x800) {
    add(0xC0 | character >> 6);
  } else if (character < 0x10000) {
    add(0xE0 | character >> 12);
    add(0x80 | (character >> 6 & 0x3F));
  } else {
    add(0xF0 | character >> 18);
    add(0x80 | (character >> 12 & 0x3F));
    add(0x80 | (character >> 6 & 0x3F));
  }
  add(0x80 | (character & 0x3F));
}

}  // namespace

bool is_utf_16(std::string_view text) { return order_of(text).has_value(); }

std::string utf_8_of_utf_16(std::string_view text) {
  const Order order = order_of(text).value_or(Order::little);
  const auto unit = [&](std::size_t at) -> std::uint32_t {
    const std::uint32_t first = static_cast<unsigned char>(text[at]);
    const std::uint32_t second = static_cast<unsigned char>(text[at + 1]);
    return order == Order::little ? first | second << 8 : first << 8 | second;
  };
  constexpr std::uint32_t no_character = 0xFFFD;
  std::string converted;
  std::size_t at = order_of_mark(text) ? 2 : 0;
  for (; at + 1 < text.size(); at += 2) {
    std::uint32_t character = unit(at);
    const bool high = (character & 0xFC00) == 0xD800;
    const std::uint32_t low = high && at + 3 < text.size() ? unit(at + 2) : 0;
    if ((low & 0xFC00) == 0xDC00) {
      character = 0x10000 + ((character & 0x3FF) << 10 | (low & 0x3FF));
      at += 2;
    } else if ((character & 0xF800) == 0xD800) {
      character = no_character;
    }
    append_utf_8(character, converted);
  }
  // A line feed that another program appended as one byte.
  if (at < text.size() && text[at] != '\0') converted += text[at];
  return converted;
}

}  // namespace kztns
