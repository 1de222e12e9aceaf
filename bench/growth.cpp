// How costs grow: with the entries of a file, with the addresses of a descriptor,
// with the services that a container holds already.
#include <memory>
#include <string>

#include "kzoci/platform/memory.h"
#include "literal.h"
#include "rows.h"
#include "support/names_file.h"

namespace bench {

namespace {

void add_entries_row(long entries) {
  add_row({.name = "an entry of " + with_commas(entries) + " / R's",
           .unit = "entry",
           .setup =
               [=] {
                 const auto units = static_cast<double>(entries);
                 return Costs{lookup_cost(names_file(entries), last_service(entries), units),
                              read_cost(names_file(entries), units)};
               },
           .growth = {"entries of a file, against R", static_cast<double>(entries), 1.5}});
}

// A list of so many addresses; of none, no list.
std::string descriptor_of(long addresses) {
  std::string text = "(DESCRIPTION=";
  if (addresses != 0) text += "(ADDRESS_LIST=";
  for (long i = 0; i < addresses; ++i)
    text += "(ADDRESS=(PROTOCOL=TCP)(HOST=db" + std::to_string(100000 + i) +
            ".example.com)(PORT=2881))";
  if (addresses != 0) text += ")";
  return text + "(CONNECT_DATA=(SERVICE_NAME=orders)))";
}

Cost descriptor_cost(long addresses) {
  return cost_of(repeat([text = descriptor_of(addresses)] { parse_literal(text); }));
}

// What an address adds: the descriptor's cost less that of one without
// addresses, shared out.
Cost address_cost(long addresses) {
  return [=, with = descriptor_cost(addresses), without = descriptor_cost(0)] {
    return (with() - without()) / static_cast<double>(addresses);
  };
}

void add_addresses_row(long addresses) {
  constexpr long reference = 100;
  add_row({.name = "an address of " + with_commas(addresses) + " / of " + with_commas(reference),
           .unit = "address",
           .setup =
               [=] {
                 return Costs{address_cost(addresses), address_cost(reference)};
               },
           .growth = {"addresses of a descriptor", static_cast<double>(addresses), 1.5}});
}

// A container that holds services before the one that is measured.
class Container {
 public:
  explicit Container(long services) {
    KZCITnsInit(&tns_);
    for (long i = 0; i < services; ++i) build_literal(tns_, compact_literal);
  }
  ~Container() { KZCITnsClear(&tns_); }
  Container(const Container &) = delete;
  Container &operator=(const Container &) = delete;

  // Builds one more service and takes it away again.
  void build_one_more() {
    build_literal(tns_, compact_literal);
    KZCITnsService *const last = KZCITnsServiceOfEntry(tns_.tns_service->le.prev);
    last->le.prev->next = last->le.next;
    last->le.next->prev = last->le.prev;
    if (--tns_.tns_service_count == 0) tns_.tns_service = nullptr;
    KZCITnsServiceClear(last);
    kzci_free(last);
  }

 private:
  KZCITns tns_;
};

Cost one_more_cost(long services) {
  const auto container = std::make_shared<Container>(services);
  return cost_of(repeat([container] { container->build_one_more(); }));
}

void add_services_row(long services) {
  add_row({.name = "one more beside " + with_commas(services) + " services / beside none",
           .unit = "service",
           .setup =
               [=] {
                 return Costs{one_more_cost(services), one_more_cost(0)};
               },
           .growth = {"services of a container", static_cast<double>(services), 1.5}});
}

}  // namespace

void add_growth_rows() {
  for (const long entries : file_sizes()) add_entries_row(entries);
  for (const long addresses : {1, 10, 100, 1000, 10000}) add_addresses_row(addresses);
  for (const long services : {1, 10, 100, 1000, 10000}) add_services_row(services);
}

}  // namespace bench
