// A built tree as JSON: every field of every record.
#pragma once

#include <string>

#include "kzoci/oci_tnsname.h"

namespace kztns {

// Two spaces a level, a line feed at the end. Bytes that are not UTF-8 are
// escaped, so that the text is always valid JSON. docs/tree.schema.json tells its
// form.
std::string tree_json(const KZCITns &tns);

}  // namespace kztns
