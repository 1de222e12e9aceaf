// How the fuzzer mutates the inputs of targets that read names files: by token most of
// the time, by byte otherwise.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "fuzz/support/names_mutator.h"

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t *data, std::size_t size, std::size_t max_size);

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t *data, std::size_t size,
                                               std::size_t max_size, unsigned seed);

std::size_t LLVMFuzzerCustomMutator(std::uint8_t *data, std::size_t size, std::size_t max_size,
                                    unsigned seed) {
  support::Random random(seed);
  if (random.one_in(3)) return LLVMFuzzerMutate(data, size, max_size);
  const std::string_view input(reinterpret_cast<const char *>(data), size);
  const std::string mutated = fuzz::mutated_input(input, fuzz::Head::KZOCI_FUZZ_HEAD, random);
  // An empty input is not allowed here; one that is too long is cut.
  if (mutated.empty()) return LLVMFuzzerMutate(data, size, max_size);
  return mutated.copy(reinterpret_cast<char *>(data), max_size);
}
