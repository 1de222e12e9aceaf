#include "lookup.h"

#include "log_watch.h"

namespace kztns {

Lookup look_up(const std::string &identifier, std::optional<log_level> shown, Tree &tree) {
  const auto length = static_cast<ub4>(identifier.size());
  const LogWatch watch(shown);
  boolean find = 0;
  const sword status = KZCITnsBuild(
      tree.get(), reinterpret_cast<const OraText *>(identifier.c_str()), length, &find);
  Lookup lookup;
  lookup.outcome = status != 0 ? Outcome::malformed
                   : find != 0 ? Outcome::found
                               : Outcome::not_found;
  lookup.is_literal = IsDescriptionTns(const_cast<char *>(identifier.c_str()), length) != 0;
  lookup.variable = watch.variable();
  lookup.file_name = watch.file_name();
  lookup.fault = watch.fault();
  return lookup;
}

}  // namespace kztns
