// What holds of every tree that the builders make.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "kzoci/oci_tnsname.h"
#include "tests/support/keys.h"

namespace fuzz {

// Walks records that were built from one input. Each check covers all that is
// below the record and ends the process when something does not hold.
class TreeChecker {
 public:
  // input  the text that the records were built from
  explicit TreeChecker(std::string_view input);

  void walk(const KZCITns &tns);
  void walk(const KZCITnsService &service);
  void walk(const KZCIDescription &description);
  void walk(const KZCIAddressList &list);
  void walk(const KZCIAddress &address);
  void walk(const KZCIConnectData &data);
  void walk(const KZCIBlacklistConf &blacklist);
  void walk(const KZCISystemVariables &variables);

  // Blocks that the records checked so far stand in.
  std::size_t blocks() const { return blocks_; }

 private:
  template <class Child, class Visit>
  void ring(const Child *first, ub4 count, const char *kind, Visit visit);
  void values(support::Place place, const void *record);
  void text(std::string_view text, std::size_t limit, std::string_view name);
  void text_as_string(std::string_view whole, std::size_t limit, std::string_view name);

  std::string input_without_quotes_;
  std::size_t blocks_ = 0;
};

// Blocks below a container, all of them reachable.
std::size_t blocks_below(const KZCITns &tns, std::string_view input);

// Whether a service of this name is read as system variables: the reserved name
// or any leading part of it, in any letter case.
bool is_reserved(std::string_view name);

inline std::string_view name_of(const KZCITnsService &service) {
  return {service.net_service_name, service.net_service_name_len};
}

// A text as a string copy keeps it: zeros from its first zero byte on.
std::string copied_as_string(std::string_view text);

}  // namespace fuzz
