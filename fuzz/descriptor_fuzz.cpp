// A literal descriptor.
//
//   input := failing-allocation descriptor
#include <strings.h>

#include <string>

#include "fuzz/support/check.h"
#include "fuzz/support/fuzz_platform.h"
#include "fuzz/support/input.h"
#include "fuzz/support/lookup.h"
#include "fuzz/support/target.h"
#include "tests/support/parsing.h"

namespace {

bool is_blank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

// Whether the text without its blanks begins with "(DESCRIPTION=".
bool is_literal(std::string_view text) {
  constexpr std::string_view prefix = "(DESCRIPTION=";
  std::string start;
  for (const char c : text)
    if (!is_blank(c) && start.size() < prefix.size()) start += c;
  return start.size() == prefix.size() &&
         strncasecmp(start.data(), prefix.data(), prefix.size()) == 0;
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  static const support::Environment no_names_file;
  fuzz::Input input(data, size);
  const std::size_t failing_allocation = input.failing_allocation();
  const std::string_view descriptor = input.rest();
  const fuzz::HeapText exact(descriptor);
  const fuzz::HeapText terminated(std::string(descriptor) + '\0');

  const fuzz::Run run({descriptor});
  const bool literal = IsDescriptionTns(exact.data(), static_cast<ub4>(exact.size())) == 1;
  fuzz::check(literal == is_literal(descriptor), "taken for a literal descriptor: %d", literal);

  const fuzz::Lookup as_descriptor = {KZCITnsBuildDes, terminated.data(), descriptor.size(),
                                      descriptor};
  const fuzz::Outcome built = fuzz::build_twice(as_descriptor, failing_allocation);

  const fuzz::Lookup as_identifier = {KZCITnsBuild, terminated.data(), descriptor.size(),
                                      descriptor};
  const fuzz::Outcome looked_up = fuzz::build_twice(as_identifier, failing_allocation);
  const bool agree = looked_up.status == built.status && looked_up.find == built.find;
  fuzz::check(literal ? agree : looked_up.status == 0 && looked_up.find == 0,
              "as an identifier: status %d, find %d", looked_up.status, looked_up.find);
  return 0;
}
