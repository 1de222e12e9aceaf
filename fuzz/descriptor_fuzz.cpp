// A literal descriptor, given to the function that takes any text for one and to
// the one that finds out. No names file is set.
//
//   input := failing-allocation descriptor
#include <string>

#include "fuzz/support/fuzz_platform.h"
#include "fuzz/support/input.h"
#include "fuzz/support/lookup.h"
#include "fuzz/support/target.h"
#include "tests/support/model_reader.h"
#include "tests/support/parsing.h"

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  static const support::Environment no_names_file;
  fuzz::Input input(data, size);
  const std::size_t failing_allocation = input.failing_allocation();
  const std::string_view descriptor = input.rest();
  const fuzz::HeapText exact(descriptor);
  const fuzz::HeapText terminated(std::string(descriptor) + '\0');

  const fuzz::Run run({descriptor});
  // What it says shows in what KZCITnsBuild does; here, a read too far would show.
  IsDescriptionTns(exact.data(), static_cast<ub4>(exact.size()));
  fuzz::build_twice({KZCITnsBuildDes, terminated.data(), descriptor.size(), descriptor,
                     model::predict_literal(descriptor)},
                    failing_allocation);
  fuzz::build_twice({KZCITnsBuild, terminated.data(), descriptor.size(), descriptor,
                     model::predict(descriptor, "")},
                    failing_allocation);
  return 0;
}
