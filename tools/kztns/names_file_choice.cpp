#include "names_file_choice.h"

#include "log_watch.h"
#include "lookup.h"

namespace kztns {

FileChoice choose_file() {
  // No entry has a name of so many characters.
  const std::string nobody(300, '-');
  const LogWatch watch(std::nullopt);
  Tree tree;
  boolean find = 0;
  KZCITnsBuild(tree.get(), reinterpret_cast<const OraText *>(nobody.c_str()),
               static_cast<ub4>(nobody.size()), &find);
  return {watch.variable(), watch.file_name()};
}

}  // namespace kztns
