// The literal descriptors that are measured, and building one.
#pragma once

#include <string>
#include <string_view>

#include "kzoci/oci_tnsname.h"

namespace bench {

// One description, one list of two addresses, connect data: six records with
// the service.
constexpr std::string_view compact_literal =
    "(DESCRIPTION=(ADDRESS_LIST=(ADDRESS=(PROTOCOL=TCP)(HOST=db1.example.com)(PORT=2881))"
    "(ADDRESS=(PROTOCOL=TCP)(HOST=db2.example.com)(PORT=2881)))"
    "(CONNECT_DATA=(SERVICE_NAME=orders)))";
constexpr std::size_t literal_records = 6;

// The same with blanks, as it is written in files.
constexpr std::string_view spaced_literal =
    "(DESCRIPTION =\n"
    "  (ADDRESS_LIST =\n"
    "    (ADDRESS = (PROTOCOL = TCP) (HOST = db1.example.com) (PORT = 2881))\n"
    "    (ADDRESS = (PROTOCOL = TCP) (HOST = db2.example.com) (PORT = 2881))\n"
    "  )\n"
    "  (CONNECT_DATA =\n"
    "    (SERVICE_NAME = orders)\n"
    "  ))";

static_assert(compact_literal.size() == 179);
static_assert(spaced_literal.size() == 231);

// Adds the service of a descriptor to a container; checks that it was built.
// The descriptor is terminated.
void build_literal(KZCITns &tns, std::string_view descriptor);

// Builds a descriptor into a container of its own and releases it.
void parse_literal(std::string_view descriptor);

}  // namespace bench
