// The entries of a names file, read by the module's own tokenizer.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace kztns {

// Its texts are valid during the visit.
struct Entry {
  std::string_view name;
  // The entry before this one that ends every lookup; absent for an entry that a
  // lookup reaches.
  std::optional<std::string_view> hidden_behind;
};

// Calls visit for the entries of the file in their order, also for those behind
// an entry that ends every lookup. Stops at the end of the file, at the first
// fault, or when the file cannot be opened. Returns the last name read.
std::string for_each_entry(const std::string &path,
                           const std::function<void(const Entry &)> &visit);

}  // namespace kztns
