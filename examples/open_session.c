/*
 * What a connection layer does with an identifier before it opens a session:
 * build it, read what the session is opened with, and walk the servers in the
 * order in which they were written.
 *
 *   KZCI_TNS_FILE=examples/tnsnames.ora open_session sales
 */
#include <inttypes.h>
#include <stdio.h>
#include <string.h>

#include <kzoci/oci_tnsname.h>

static void print_session(KZCITnsService *service) {
  char extra_info[KZCI_EXTRA_INFO_SIZE];
  char session_variable[KZCI_SESSION_VARIABLE_SIZE];
  /* An output that is left alone keeps these: absent. */
  sb4 extra_info_len = 0;
  sb4 kz_mode = 0;
  sb4 session_variable_len = 0;

  if (KZCITnsServiceExtraInfoGet(service, extra_info, &extra_info_len, &kz_mode, session_variable,
                                 &session_variable_len) != 0)
    return;
  if (extra_info_len > 0)
    printf("extra information %.*s, mode %" PRId32 "\n", (int)extra_info_len, extra_info, kz_mode);
  if (session_variable_len > 0)
    printf("session variables %.*s\n", (int)session_variable_len, session_variable);
}

static void print_link(KZCITnsService *service) {
  char dblink[KZCI_DBLINK_SIZE];
  sb4 dblink_len = 0;

  if (KZCITnsServiceDblinkGet(service, dblink, &dblink_len) == 0) printf("link %s\n", dblink);
}

static void print_addresses(const KZCIAddressList *list) {
  KZCIAddress *address = list->address;
  for (ub4 i = 0; i < list->address_count; ++i) {
    printf("    %.*s port %.*s weight %" PRId64 "\n", (int)address->host_len, address->host,
           (int)address->port_len, address->port, address->weight);
    address = KZCIAddressNext(address);
  }
}

static void print_servers(const KZCITnsService *service) {
  KZCIDescription *des = service->description;
  for (ub4 d = 0; d < service->description_count; ++d) {
    printf("description %" PRIu32 "\n", d + 1);
    KZCIAddressList *list = des->address_list;
    for (ub4 l = 0; l < des->address_list_count; ++l) {
      printf("  list %" PRIu32 "\n", l + 1);
      print_addresses(list);
      list = KZCIAddressListNext(list);
    }
    des = KZCIDescriptionNext(des);
  }
}

int main(int argc, char **argv) {
  if (argc != 2) {
    fprintf(stderr, "usage: open_session IDENTIFIER\n");
    return 64;
  }
  KZCITns tns;
  boolean find = 0;
  KZCITnsInit(&tns);
  const sword status = KZCITnsBuild(&tns, (const OraText *)argv[1], (ub4)strlen(argv[1]), &find);
  if (status == 0 && find) {
    print_session(tns.tns_service);
    print_link(tns.tns_service);
    print_servers(tns.tns_service);
  } else {
    fprintf(stderr, "%s: %s\n", argv[1], status == 0 ? "not found" : "malformed");
  }
  KZCITnsClear(&tns);
  return status == 0 && find ? 0 : 1;
}
