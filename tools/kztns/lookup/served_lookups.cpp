#include "lookup/served_lookups.h"

#include <algorithm>

#include "lookup/lookup.h"
#include "lookup/named_file.h"
#include "scan/tree_digest.h"
#include "trace/platform.h"

namespace kztns {
namespace {

// What the lookups of names that are new, and those of the others, may read together: a few
// seconds' work.
constexpr std::uint64_t most_read_of_new = std::uint64_t{1} << 30;
constexpr std::uint64_t most_read_of_all = std::uint64_t{1} << 28;

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

// Names that are evenly spread over the text: all of them if they are read in so many bytes.
std::vector<ServedName> some_of(std::vector<ServedName> names, std::uint64_t most_read) {
  std::uint64_t all = 0;
  for (const ServedName &name : names) all += name.at;
  const std::uint64_t step = all / most_read + 1;
  if (step == 1) return names;
  std::sort(names.begin(), names.end(),
            [](const ServedName &left, const ServedName &right) { return left.at < right.at; });
  std::vector<ServedName> some;
  for (std::uint64_t i = 0; i < names.size(); i += step)
    some.push_back(names[static_cast<std::size_t>(i)]);
  return some;
}

bool are_found(const std::string &text, const std::vector<ServedName> &names) {
  return std::all_of(names.begin(), names.end(), [&](const ServedName &wanted) {
    const std::string name = name_at(text, wanted.at);
    // A lookup of no name finds none.
    return name.empty() || is_found(name, wanted);
  });
}

}  // namespace

bool all_are_found(const std::string &text, const std::vector<ServedName> &new_names,
                   const std::vector<ServedName> &names) {
  MemoryFile file;
  // Without a file nothing can be looked up: what the library built is all there is.
  if (names.empty() || !file.append(text)) return true;
  const NamedFile named(file.path());
  return are_found(text, some_of(new_names, most_read_of_new)) &&
         are_found(text, some_of(names, most_read_of_all));
}

}  // namespace kztns
