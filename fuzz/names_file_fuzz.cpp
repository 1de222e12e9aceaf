// A lookup in a names file.
//
//   input := failing-allocation identifier LF names-file
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "fuzz/support/check.h"
#include "fuzz/support/fuzz_platform.h"
#include "fuzz/support/input.h"
#include "fuzz/support/lookup.h"
#include "fuzz/support/target.h"
#include "tests/support/memory_file.h"
#include "tests/support/model_reader.h"

namespace {

// The descriptor that the next file to be opened gets.
int next_descriptor() {
  const int descriptor = dup(STDERR_FILENO);
  close(descriptor);
  return descriptor;
}

// A literal descriptor is printed as a C string, a name never is.
std::string as_handed_over(std::string_view identifier) {
  std::string text(identifier);
  if (IsDescriptionTns(text.data(), static_cast<ub4>(text.size())) == 1) text += '\0';
  return text;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  static support::MemoryFile names_file;
  fuzz::Input input(data, size);
  const std::size_t failing_allocation = input.failing_allocation();
  const std::string_view identifier = input.line();
  const std::string_view text = input.rest();
  const fuzz::HeapText handed_over(as_handed_over(identifier));
  fuzz::check(names_file.write(text), "the names file cannot be written");

  const fuzz::Run run({identifier, text, std::getenv("KZCI_TNS_FILE")});
  const int descriptor = next_descriptor();
  const std::string everything = std::string(identifier) + std::string(text);
  fuzz::build_twice({KZCITnsBuild, handed_over.data(), identifier.size(), everything,
                     model::predict(identifier, text)},
                    failing_allocation);
  fuzz::check(next_descriptor() == descriptor, "a file stays open");
  return 0;
}
