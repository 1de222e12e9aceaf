// The lines of the dump: a label, a colon, a value.
#pragma once

#include <cstddef>
#include <cstdio>

#include "kzoci/oci_tnsname.h"
#include "log.h"

namespace kzoci::tns {

inline void print_number(FILE *file, const char *label, sb8 number) {
  std::fprintf(file, "%s:%" KZ_LD "\n", label, long_number(number));
}

// Texts are printed by their length, and never beyond their array.
template <std::size_t capacity>
void print_text(FILE *file, const char *label, const char (&text)[capacity], ub4 length) {
  std::fprintf(file, "%s:%.*s\n", label, precision(length, capacity), text);
}

}  // namespace kzoci::tns
