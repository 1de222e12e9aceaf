// Lookups in a names file: the last entry, an absent one, the first one.
#include "rows.h"
#include "support/names_file.h"

namespace bench {

namespace {

Target last_target(long entries) {
  switch (entries) {
    case 100:
      return {2.4, 1.8};
    case 10000:
      return {3.0, 2.4};
    default:
      return {2.6, 2.0};
  }
}

void add_last_rows(long entries) {
  const auto file = names_file(entries);
  const std::string name = last_service(entries);
  add_row({.name = "last of " + with_commas(entries) + " / R",
           .unit = "lookup",
           .setup =
               [=] {
                 return Costs{lookup_cost(file, name), read_cost(file)};
               },
           .target = last_target(entries)});
  add_row({.name = "last of " + with_commas(entries) + " / read(2) and counting",
           .unit = "lookup",
           .setup = [=] {
             return Costs{lookup_cost(file, name), count_cost(file)};
           }});
}

}  // namespace

void add_lookup_rows() {
  const long largest = largest_size();
  for (const long entries : {100L, 10000L, largest}) add_last_rows(entries);
  const auto large_file = names_file(largest);
  const std::string large = with_commas(largest);
  add_row(
      {.name = "absent name / last of " + large,
       .unit = "lookup",
       .setup =
           [=] {
             return Costs{absent_cost(large_file), lookup_cost(large_file, last_service(largest))};
           },
       .target = {1.05, 1.02}});
  add_row({.name = "first of " + large + " / first of 10",
           .unit = "lookup",
           .setup =
               [=] {
                 return Costs{lookup_cost(large_file, service_name(0)),
                              lookup_cost(names_file(10), service_name(0))};
               },
           .target = {1.15, 1.05}});
}

}  // namespace bench
