// The same facts through libpq: a connection string in place of a literal
// descriptor, a service file in place of a names file.
#include <libpq-fe.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include "literal.h"
#include "rows.h"
#include "support/names_file.h"

namespace bench {

namespace {

// What compact_literal says, in both of libpq's notations.
constexpr char connection_string[] =
    "host=db1.example.com,db2.example.com port=2881,2881 dbname=orders";
constexpr char connection_uri[] = "postgresql://db1.example.com:2881,db2.example.com:2881/orders";

Cost libpq_parse_cost(const char *connection) {
  return cost_of(repeat([=] {
    PQconninfoOption *const parsed = PQconninfoParse(connection, nullptr);
    if (parsed == nullptr) fail("libpq does not parse " + std::string(connection));
    PQconninfoFree(parsed);
  }));
}

void add_literal_row(std::string_view descriptor, const char *connection, const char *notation,
                     Target target = {}) {
  add_row({.name = "literal of " + std::to_string(descriptor.size()) + " bytes / PQconninfoParse" +
                   notation,
           .unit = "literal",
           .setup =
               [=] {
                 return Costs{cost_of(repeat([=] { parse_literal(descriptor); })),
                              libpq_parse_cost(connection)};
               },
           .target = target});
}

std::string value_of(const PQconninfoOption *options, const char *keyword) {
  for (; options->keyword != nullptr; ++options)
    if (std::strcmp(options->keyword, keyword) == 0)
      return options->val == nullptr ? "" : options->val;
  return "";
}

// libpq reads the service file when it collects the defaults of a connection,
// without opening one. The user is given, so that it does not ask the system.
void name_service(long entries) {
  ::setenv("PGUSER", "bench", 1);
  ::setenv("PGSERVICEFILE", service_file(entries).c_str(), 1);
  ::setenv("PGSERVICE", last_service(entries).c_str(), 1);
}

void look_up_service() {
  PQconninfoOption *const found = PQconndefaults();
  if (found == nullptr || value_of(found, "dbname").empty())
    fail("libpq does not find a service in its file");
  PQconninfoFree(found);
}

// Both files must say the same of the service that is looked up.
void check_same_facts(long entries) {
  KZCITns tns;
  boolean find = 0;
  const std::string name = last_service(entries);
  look_up_in(names_file(entries));
  KZCITnsInit(&tns);
  KZCITnsBuild(&tns, reinterpret_cast<const OraText *>(name.c_str()), static_cast<ub4>(name.size()),
               &find);
  if (find == 0) fail("the names file has no " + name);
  const KZCIDescription &des = *tns.tns_service->description;
  const KZCIAddress &address = *des.address_list->address;
  const std::string ours =
      std::string(address.host, address.host_len) + ":" +
      std::string(address.port, address.port_len) + "/" +
      std::string(des.connect_data->service_name, des.connect_data->service_name_len) + "?" +
      std::to_string(des.connect_timout);
  KZCITnsClear(&tns);

  name_service(entries);
  PQconninfoOption *const found = PQconndefaults();
  const std::string theirs = value_of(found, "host") + ":" + value_of(found, "port") + "/" +
                             value_of(found, "dbname") + "?" + value_of(found, "connect_timeout");
  PQconninfoFree(found);
  if (ours != theirs) fail("the files differ: " + ours + ", " + theirs);
}

Cost service_cost(long entries, double units = 1) {
  return cost_of(
      [entries](long times) {
        name_service(entries);
        for (; times > 0; --times) look_up_service();
      },
      units);
}

void add_entries_row(long entries) {
  add_row({.name = "an entry of " + with_commas(entries) + " / libpq's",
           .unit = "entry",
           .setup =
               [=] {
                 check_same_facts(entries);
                 const auto units = static_cast<double>(entries);
                 return Costs{lookup_cost(names_file(entries), last_service(entries), units),
                              service_cost(entries, units)};
               },
           .growth = {"entries of a file, against libpq", static_cast<double>(entries)}});
}

}  // namespace

void add_libpq_rows() {
  const long largest = largest_size();
  add_literal_row(compact_literal, connection_string, "", {1.4, 1.0});
  add_literal_row(compact_literal, connection_uri, " of a URI");
  add_literal_row(spaced_literal, connection_string, "");
  add_row({.name = "last of " + with_commas(largest) + " / libpq's service file",
           .unit = "lookup",
           .setup =
               [=] {
                 check_same_facts(largest);
                 return Costs{lookup_cost(names_file(largest), last_service(largest)),
                              service_cost(largest)};
               },
           .target = {0.6, 0.45}});
  for (const long entries : file_sizes()) add_entries_row(entries);
}

}  // namespace bench
