// The lines of the dump: a label, a colon, a value.
#pragma once

#include <cstddef>
#include <cstdio>
#include <cstring>

#include "kzoci/oci_tnsname.h"
#include "log.h"

namespace kzoci::tns {

inline void print_number(FILE *file, const char *label, sb8 number) {
  std::fprintf(file, "%s:%ld\n", label, long_number(number));
}

// As the int that the field holds, also where a caller's program has stored what is no
// strategy.
inline void print_strategy(FILE *file, const char *label, const KZCILBOption &strategy) {
  int number = 0;
  static_assert(sizeof number == sizeof strategy);
  std::memcpy(&number, &strategy, sizeof number);
  print_number(file, label, number);
}

// Texts are printed by their length, and never beyond their array.
template <std::size_t capacity>
void print_text(FILE *file, const char *label, const char (&text)[capacity], ub4 length) {
  std::fprintf(file, "%s:%.*s\n", label, precision(length, capacity), text);
}

}  // namespace kzoci::tns
