// Reading a names file, whatever its name leads to: a file or a pipe is read
// up to a limit, all else is refused by its kind.
#pragma once

#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

namespace kztns {

// Bytes of a file that is read unless the user says otherwise: far more than any
// names file has, and less than most machines' memory.
constexpr std::uint64_t default_max_size = std::uint64_t{1} << 30;

// No more than this may the user say: lengths of texts are ints in the module.
constexpr std::uint64_t largest_max_size = std::numeric_limits<int>::max();

// Why a file gives no text.
struct ReadFault {
  bool missing = false;   // there is no such file
  std::string text = {};  // "is a directory", as a clause about the file
  bool too_large = false;
};

// Takes a piece of a file; whether it wants more.
using PieceTaker = std::function<bool(std::string_view)>;

// Calls take with each piece of the file, in their order, until it returns false.
// Returns what keeps the file from being read to its end; absent for nothing.
std::optional<ReadFault> read_pieces(const std::string &path, std::uint64_t max_size,
                                     const PieceTaker &take);

// The same of standard input.
std::optional<ReadFault> read_input_pieces(std::uint64_t max_size, const PieceTaker &take);

// The whole file; absent when it cannot be read, with the reason in fault.
std::optional<std::string> read_file(const std::string &path, std::uint64_t max_size,
                                     ReadFault &fault);

// Standard input to its end; absent when it cannot be read, with the reason in fault.
std::optional<std::string> read_standard_input(std::uint64_t max_size, ReadFault &fault);

}  // namespace kztns
