#include <stdio.h>
#include <string.h>

#include "kzoci/oci_tnsname.h"

int main(int argc, char **argv) {
  const char *name = argc > 1 ? argv[1] : "sales";
  KZCITns tns;
  boolean find = 0;
  KZCITnsInit(&tns);
  const sword status = KZCITnsBuild(&tns, (const OraText *)name, (ub4)strlen(name), &find);
  if (status == 0 && find) {
    const KZCIAddress *address = tns.tns_service->description->address_list->address;
    printf("%.*s:%.*s\n", (int)address->host_len, address->host, (int)address->port_len,
           address->port);
  }
  KZCITnsClear(&tns);
  return status == 0 && find ? 0 : 1;
}
