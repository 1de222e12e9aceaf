// Building services from identifiers, and what has to hold afterwards.
#pragma once

#include <cstddef>
#include <string_view>

#include "kzoci/oci_tnsname.h"
#include "tests/support/model_reader.h"

namespace fuzz {

// A function of the public header that builds from an identifier.
using Build = sword (*)(KZCITns *tns, const OraText *dbname, ub4 dbname_len, boolean *find);

// What is built, from what, and what a simple reader of the grammar makes of it.
struct Lookup {
  Build build;
  const char *identifier;  // terminated where it is a literal descriptor
  std::size_t identifier_length;
  std::string_view input;  // all the text that a service can be built from
  model::Prediction expected;
};

// Builds twice into one container, first with all the memory there is, then with
// the n-th allocation failing (0 for none), and releases everything. Checks each
// build, the tree, the dump and the accessors, and that what is released is all
// that was built.
void build_twice(const Lookup &lookup, std::size_t failing_allocation);

}  // namespace fuzz
