#include "lookup/served_lookups.h"

#include "lookup/lookup.h"
#include "lookup/named_file.h"
#include "scan/tree_digest.h"
#include "trace/platform.h"

namespace kztns {
namespace {

// What all lookups together may read: a few seconds' work.
constexpr std::uint64_t most_read = std::uint64_t{1} << 30;

std::string name_at(const std::string &text, Offset at) {
  KZCITnsParseParams params = parse_at(text, at);
  if (KZCITnsParse(&params, TNS_KEY) != 0) return {};
  return {params.tns_key, params.tns_key_len};
}

bool is_found(const std::string &name, const ServedName &wanted) {
  const AllocationScope scope;
  Tree tree;
  boolean find = 0;
  const sword status = KZCITnsBuild(tree.get(), reinterpret_cast<const OraText *>(name.c_str()),
                                    static_cast<ub4>(name.size()), &find);
  return status == 0 && find != 0 && tree_digest(*tree.service()) == wanted.tree;
}

}  // namespace

bool all_are_found(const std::string &text, const std::vector<ServedName> &names) {
  MemoryFile file;
  // Without a file nothing can be looked up: what the library built is all there is.
  if (names.empty() || !file.append(text)) return true;
  const NamedFile named(file.path());
  std::uint64_t read = 0;
  for (const ServedName &wanted : names) {
    const std::string name = name_at(text, wanted.at);
    read += wanted.at;
    if (read > most_read) return true;
    // A lookup of no name finds none.
    if (!name.empty() && !is_found(name, wanted)) return false;
  }
  return true;
}

}  // namespace kztns
