/*
 * What a connection layer does with an identifier: build it, read what a session is
 * opened with, list the servers, and open sessions by the lists, the weights, the
 * blacklist and the retries that the identifier asks for. open_session.cpp is the same
 * in C++.
 *
 *   KZCI_TNS_FILE=examples/tnsnames.ora open_session sales [DOWN_HOST]...
 *
 * There is no network here: every server answers, except those on the hosts that are
 * named as down. The library says what the settings are and not what they bring about;
 * this is one way to read them.
 */
#include <inttypes.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <kzoci/oci_tnsname.h>

#define SESSIONS 4
#define TIME_BETWEEN_SESSIONS 5
#define LARGEST_NUMBER 1000000 /* of a weight and a time, so that no sum overflows */

/* What the layer knows of a server, beside its record. */
struct server {
  const KZCIDescription *des;
  const KZCIAddressList *list;
  const KZCIAddress *address;
  ub4 sessions;       /* opened on it */
  int is_blacklisted; /* until retry_at, or for as long as retries_left is 0 */
  sb8 retry_at;
  sb8 retries_left;
};

struct layer {
  struct server *servers; /* in the order in which they were written */
  size_t server_count;
  char **down_hosts;
  int down_host_count;
  sb8 now;
  ub4 session; /* number of the one that is being opened, from 0 */
  sb8 drawn;   /* in place of random numbers, so that every run is the same */
};

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

static void print_address(const KZCIAddress *address) {
  printf("    %.*s port %.*s weight %" PRId64 "\n", (int)address->host_len, address->host,
         (int)address->port_len, address->port, address->weight);
}

static void add_server(struct layer *layer, const KZCIDescription *des, const KZCIAddressList *list,
                       const KZCIAddress *address) {
  struct server *const servers =
      realloc(layer->servers, (layer->server_count + 1) * sizeof *layer->servers);
  if (servers == NULL) exit(71);
  layer->servers = servers;
  layer->servers[layer->server_count++] = (struct server){des, list, address, 0, 0, 0, 0};
}

/* Prints the servers and enters them into the layer's table. */
static void list_servers(struct layer *layer, const KZCITnsService *service) {
  const KZCIDescription *des = service->description;
  for (ub4 d = 0; d < service->description_count; ++d) {
    printf("description %" PRIu32 "\n", d + 1);
    const KZCIAddressList *list = des->address_list;
    for (ub4 l = 0; l < des->address_list_count; ++l) {
      printf("  list %" PRIu32 "\n", l + 1);
      const KZCIAddress *address = list->address;
      for (ub4 a = 0; a < list->address_count; ++a) {
        print_address(address);
        add_server(layer, des, list, address);
        address = KZCIAddressOfEntry(address->le.next);
      }
      list = KZCIAddressListOfEntry(list->le.next);
    }
    des = KZCIDescriptionOfEntry(des->le.next);
  }
}

static sb8 within(sb8 number, sb8 lowest) {
  if (number < lowest) return lowest;
  return number < LARGEST_NUMBER ? number : LARGEST_NUMBER;
}

static int is_down(const struct layer *layer, const KZCIAddress *address) {
  for (int i = 0; i < layer->down_host_count; ++i)
    if (strlen(layer->down_hosts[i]) == address->host_len &&
        memcmp(layer->down_hosts[i], address->host, address->host_len) == 0)
      return 1;
  return 0;
}

static int may_be_tried(const struct layer *layer, const struct server *server) {
  return !server->is_blacklisted || (server->retries_left > 0 && server->retry_at <= layer->now);
}

/* A server of the list that may be tried, counted from `from` on; null when none is. */
static struct server *next_in_turn(struct layer *layer, const KZCIAddressList *list, ub4 from) {
  struct server *first = layer->servers;
  while (first->list != list) ++first;
  for (ub4 i = 0; i < list->address_count; ++i) {
    struct server *const server = first + (from + i) % list->address_count;
    if (may_be_tried(layer, server)) return server;
  }
  return NULL;
}

static sb8 share(const struct layer *layer, const struct server *server,
                 const KZCIAddressList *list) {
  if (server->list != list || !may_be_tried(layer, server)) return 0;
  return within(server->address->weight, 0);
}

/* Any server of the list, in proportion to its weight. */
static struct server *draw(struct layer *layer, const KZCIAddressList *list) {
  struct server *const end = layer->servers + layer->server_count;
  sb8 total = 0;
  for (struct server *s = layer->servers; s < end; ++s) total += share(layer, s, list);
  if (total == 0) return next_in_turn(layer, list, 0);
  sb8 point = layer->drawn % total;
  layer->drawn += 3;
  struct server *server = layer->servers;
  while (point >= share(layer, server, list)) point -= share(layer, server++, list);
  return server;
}

/* The server of the list that has most sessions. */
static struct server *most_used(struct layer *layer, const KZCIAddressList *list) {
  struct server *found = next_in_turn(layer, list, 0);
  for (size_t i = 0; found != NULL && i < layer->server_count; ++i) {
    struct server *const server = layer->servers + i;
    if (server->list == list && may_be_tried(layer, server) && server->sessions > found->sessions)
      found = server;
  }
  return found;
}

static struct server *choose(struct layer *layer, const KZCIAddressList *list) {
  if (list->address_count == 0) return NULL;
  if (!list->kzlb) return next_in_turn(layer, list, 0);
  switch (list->kzlb_strategy) {
    case LB_OPTION_RANDOM:
      return draw(layer, list);
    case LB_OPTION_SERVERAFFINITY:
      return most_used(layer, list);
    default: /* LB_OPTION_ROTATION */
      return next_in_turn(layer, list, layer->session);
  }
}

/* Takes a server out, and says when it is tried again. */
static void blacklist(struct layer *layer, struct server *server) {
  const KZCIBlacklistConf *const conf = &server->des->black_list_conf;
  const int counts = conf->append_strategy == LB_OPTION_RETRY_DERUATION;
  if (!server->is_blacklisted)
    server->retries_left = counts ? conf->retry_times : 1;
  else if (counts)
    --server->retries_left;
  server->is_blacklisted = 1;
  /* Without that strategy it is back for the next session. */
  server->retry_at = layer->now + (counts ? within(conf->duration, 1) : 1);
  printf("no answer within %" PRId64 ", blacklisted until ", conf->remove_timeout);
  if (server->retries_left > 0)
    printf("%" PRId64 "\n", server->retry_at);
  else
    printf("all are down\n");
}

static int connect_to(struct layer *layer, struct server *server) {
  const KZCIAddress *const address = server->address;
  printf("  %.*s:%.*s ", (int)address->host_len, address->host, (int)address->port_len,
         address->port);
  if (is_down(layer, address)) {
    blacklist(layer, server);
    return 0;
  }
  server->is_blacklisted = 0;
  ++server->sessions;
  printf("open\n");
  return 1;
}

/* Tries the lists one after the other, in turn where the description balances. */
static int connect_by(struct layer *layer, const KZCIDescription *des) {
  const ub4 count = des->address_list_count;
  const KZCIAddressList *list = des->address_list;
  if (des->kzlb && count > 0)
    for (ub4 i = 0; i < layer->session % count; ++i) list = KZCIAddressListOfEntry(list->le.next);
  for (ub4 i = 0; i < count; ++i) {
    struct server *server;
    while ((server = choose(layer, list)) != NULL)
      if (connect_to(layer, server)) return 1;
    list = KZCIAddressListOfEntry(list->le.next);
  }
  return 0;
}

static int connect_to_any(struct layer *layer, const KZCITnsService *service) {
  const KZCIDescription *des = service->description;
  for (ub4 i = 0; i < service->description_count; ++i) {
    if (connect_by(layer, des)) return 1;
    des = KZCIDescriptionOfEntry(des->le.next);
  }
  return 0;
}

/* All are down: takes back the servers whose description wants retries then. */
static int take_back(struct layer *layer) {
  int some = 0;
  for (size_t i = 0; i < layer->server_count; ++i) {
    struct server *const server = layer->servers + i;
    if (server->des->retry_all_downs <= 0) continue;
    server->is_blacklisted = 0;
    some = 1;
  }
  return some;
}

static int open_sessions(struct layer *layer, const KZCITnsService *service) {
  for (layer->session = 0; layer->session < SESSIONS; ++layer->session) {
    printf("session %" PRIu32 " at %" PRId64 "\n", layer->session + 1, layer->now);
    if (!connect_to_any(layer, service)) {
      /* A real layer waits here, and tries more than once. */
      if (!take_back(layer)) return 0;
      printf("  all are down: once more\n");
      if (!connect_to_any(layer, service)) return 0;
    }
    layer->now += TIME_BETWEEN_SESSIONS;
  }
  return 1;
}

int main(int argc, char **argv) {
  if (argc < 2) {
    fprintf(stderr, "usage: open_session IDENTIFIER [DOWN_HOST]...\n");
    return 64;
  }
  KZCITns tns;
  boolean find = 0;
  int opened = 0;
  KZCITnsInit(&tns);
  const sword status = KZCITnsBuild(&tns, (const OraText *)argv[1], (ub4)strlen(argv[1]), &find);
  if (status == 0 && find) {
    struct layer layer = {NULL, 0, argv + 2, argc - 2, 0, 0, 0};
    print_session(tns.tns_service);
    print_link(tns.tns_service);
    list_servers(&layer, tns.tns_service);
    opened = open_sessions(&layer, tns.tns_service);
    if (!opened) fprintf(stderr, "%s: no server answers\n", argv[1]);
    free(layer.servers);
  } else {
    fprintf(stderr, "%s: %s\n", argv[1], status == 0 ? "not found" : "malformed");
  }
  KZCITnsClear(&tns);
  return opened ? 0 : 1;
}
