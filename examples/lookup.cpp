#include <cstdio>
#include <string_view>

#include "kzoci/oci_tnsname.h"

int main(int argc, char **argv) {
  const std::string_view name = argc > 1 ? argv[1] : "sales";
  KZCITns tns;
  boolean find = 0;
  KZCITnsInit(&tns);
  const sword status = KZCITnsBuild(&tns, reinterpret_cast<const OraText *>(name.data()),
                                    static_cast<ub4>(name.size()), &find);
  for (ub4 i = 0; status == 0 && find && i < tns.tns_service->description_count; ++i)
    std::printf("description %u of %.*s\n", i + 1, static_cast<int>(name.size()), name.data());
  KZCITnsClear(&tns);
  return status == 0 && find ? 0 : 1;
}
