// Building services from identifiers, and what has to hold afterwards.
#pragma once

#include <cstdint>
#include <string_view>

#include "kzoci/oci_tnsname.h"

namespace fuzz {

// A function of the public header that builds from an identifier.
using Build = sword (*)(KZCITns *tns, const OraText *dbname, ub4 dbname_len, boolean *find);

// What is built, and from what.
struct Lookup {
  Build build;
  const char *identifier;  // terminated where it is a literal descriptor
  std::size_t identifier_length;
  std::string_view input;  // all the text that a service can be built from
};

// What a build shows to its caller.
struct Outcome {
  sword status;
  boolean find;
  std::uint64_t log;  // stands for the log records

  bool operator==(const Outcome &other) const = default;
};

// Builds twice into one container, first with the n-th allocation failing (0 for
// none), then with all the memory there is, and releases everything. Checks each
// build, the tree, the dump and the accessors, and that what is released is all
// that was built. Returns the outcome of the second build.
Outcome build_twice(const Lookup &lookup, std::size_t failing_allocation);

}  // namespace fuzz
