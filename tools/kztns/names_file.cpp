#include "names_file.h"

#include <cstdio>
#include <memory>

#include "kzoci/oci_tnsname.h"

namespace kztns {
namespace {

using File = std::unique_ptr<std::FILE, int (*)(std::FILE *)>;

bool read_name(KZCITnsParseParams &params, std::string &name) {
  if (KZCITnsParse(&params, TNS_KEY) != 0) return false;
  name.assign(params.tns_key, params.tns_key_len);
  return KZCITnsParse(&params, TNS_EQUAL_SIGN) == 0;
}

// Passes over the entry's body. An entry that ends every lookup is passed over
// all the same, under a name that does not.
bool pass_body(KZCITnsParseParams &params, bool &ends_lookups) {
  sword status = KZCITnsServiceSkip(&params);
  ends_lookups = status == 0 && params.is_eof == 1;
  if (ends_lookups) {
    params.is_eof = 0;
    params.tns_key[0] = '-';
    params.tns_key_len = 1;
    status = KZCITnsServiceSkip(&params);
  }
  return status == 0;
}

}  // namespace

std::string for_each_entry(const std::string &path,
                           const std::function<void(const Entry &)> &visit) {
  const File file(std::fopen(path.c_str(), "r"), std::fclose);
  if (file == nullptr) return {};
  KZCITnsParseParams params = {};
  params.mode = TNS_MODE_FILE;
  params.tns_file = file.get();

  std::string name;
  std::optional<std::string> barrier;
  for (bool more = true; more && read_name(params, name);) {
    visit({name, barrier});
    bool ends_lookups = false;
    more = pass_body(params, ends_lookups);
    if (ends_lookups && !barrier) barrier = name;
  }
  return name;
}

}  // namespace kztns
