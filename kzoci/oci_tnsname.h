/*
 * oci_tnsname.h: from a connect identifier to a tree of connection records.
 *
 * A connect identifier is a net service name, looked up in a TNS names file,
 * or a literal descriptor "(DESCRIPTION=...)". KZCITnsBuild turns either into a
 * KZCITnsService below the caller's KZCITns.
 *
 *   KZCITns tns;
 *   boolean find;
 *   KZCITnsInit(&tns);
 *   if (KZCITnsBuild(&tns, (const OraText *)"sales", 5, &find) == 0 && find)
 *     ... read tns.tns_service ...
 *   KZCITnsClear(&tns);
 *
 * What holds for every function here:
 *
 * - Status: 0 success; -1 failure; -2 a null argument, -1 where a function says
 *   so. A function that gives another status, or one of these for another
 *   reason, says that too.
 * - Ownership: the caller owns the KZCITns. Every record below it is a block of
 *   kzci_malloc that belongs to its parent. A Clear releases what is below the
 *   record and never the record itself.
 * - Failure: a builder that fails leaves its parent unchanged and releases its
 *   own record alone. Children already attached to that record stay allocated.
 * - Texts are lengths: a text field holds exactly as many characters as its
 *   length field says and is not terminated. Print it with "%.*s".
 * - Children: a parent holds its first child and a count. The children form a
 *   ring through their `le` entries, in the order in which they were written.
 * - Numbers of the input are 64-bit; from 2^63 to 2^64 - 1 they wrap to negative
 *   ones.
 * - Letter case: where it does not matter, "a" to "z" equal "A" to "Z" and
 *   nothing else is folded, whatever the locale.
 * - Threads: no locks and no global state. Different KZCITns may be used by
 *   different threads at once; one tree is used by one thread at a time. A lookup
 *   and KZCITnsDisplay read the environment: no thread may change it meanwhile.
 * - Log: every function reports through kzoci_log_inner. Failures of a callee
 *   are logged by each caller on the way up. A block is over where the next token
 *   is not "(": the WARN records of that ("expect token type is %d, but get %d"
 *   or, at the end of the input, "fail to call parse blank, status:%d", then
 *   "fail to call KZCITnsParse, status:%d") are part of every success.
 * - Memory and numbers come from kzci_malloc, kzci_free and my_strtoll10
 *   (kzoci/platform/), which an embedder may replace together with the log.
 *
 * The functions of single records, the tokenizer and the builders, which only
 * tools need, are in oci_tnsname_parser.h; it is included at the end.
 */
#ifndef KZOCI_OCI_TNSNAME_H
#define KZOCI_OCI_TNSNAME_H

#include <stddef.h>
#include <stdio.h>
#include <time.h>

#include "platform/api.h"
#include "platform/log.h"
#include "platform/types.h"
#include "version.h"

/* What must hold where the records are used, checked by the compiler. */
#if defined(__cplusplus)
#define KZOCI_REQUIRE(condition, text) static_assert(condition, text)
#elif defined(__GNUC__) /* also in C99 */
#define KZOCI_REQUIRE(condition, text) __extension__ _Static_assert(condition, text)
#else
#define KZOCI_REQUIRE(condition, text) extern const char kzoci_required[(condition) ? 1 : -1]
#endif

/* A record holds a time_t, so every program must have the library's. */
KZOCI_REQUIRE(sizeof(time_t) == 8, "32-bit time_t: define _TIME_BITS=64 and _FILE_OFFSET_BITS=64");

#ifdef __cplusplus
extern "C" {
#endif

/* ======================================================================
 * Records of the tree
 * ====================================================================== */

/* Sizes in bytes of the buffers that a caller gives for what is read out of a
 * built service. */
#define KZCI_EXTRA_INFO_SIZE 256       /* user extra information; not terminated */
#define KZCI_SESSION_VARIABLE_SIZE 257 /* session variables; not terminated */
#define KZCI_DBLINK_SIZE 256           /* a link string and its zero byte */

/* Entry of a circular, doubly linked list; a member of the records that it
 * chains. An entry that is alone points at itself in both directions. */
typedef struct list_entry {
  ub4 type;                /* 0 in every record; nothing reads it */
  struct list_entry *prev; /* the one before on the ring */
  struct list_entry *next; /* the one after */
} list_entry_t;

/* Strategies of load balancing and blacklisting. This library reads and keeps
 * them; following them is the connection layer's work. */
typedef enum enum_kzci_lb_option {
  LB_OPTION_GROUP_ROTATION = 0,     /* take the address lists in turn */
  LB_OPTION_RANDOM = 1001,          /* take any address */
  LB_OPTION_SERVERAFFINITY = 1002,  /* stay with a server */
  LB_OPTION_ROTATION = 1003,        /* take the addresses in turn */
  LB_OPTION_TIMEOUT = 2001,         /* blacklist a server after a time-out */
  LB_OPTION_RETRY_DERUATION = 3001, /* take it back after retries */
  LB_OPTION_NORMAL = 3002,          /* take it back as any other */
  LB_OPTION_MAX = 3003              /* bound; no strategy */
} KZCILBOption;

/* One ADDRESS block: a server. */
typedef struct kzci_address {
  char host[257];          /* HOST, at most 256 characters; default empty */
  char port[7];            /* PORT as text, at most 6 characters; default empty */
  char protocol[6];        /* PROTOCOL as written, "TCP" in any case; default empty */
  ub4 host_len;            /* characters of host */
  ub4 port_len;            /* characters of port */
  ub4 protocol_len;        /* characters of protocol */
  list_entry_t le;         /* in the ring of its address list */
  list_entry_t connect_le; /* the connection layer's; initialised, never linked here */
  sb8 weight;              /* WEIGHT, share of the load; default 1 */
} KZCIAddress;

/* One ADDRESS_LIST block, or the list that a bare ADDRESS implies. */
typedef struct kzci_address_list {
  KZCIAddress *address;       /* first address, or null */
  ub4 address_count;          /* addresses on the ring */
  list_entry_t le;            /* in the ring of its description */
  boolean kzlb;               /* KZLB: balancing over the addresses wanted; default 1 */
  KZCILBOption kzlb_strategy; /* KZLB_STRATEGY; default LB_OPTION_RANDOM */
} KZCIAddressList;

/* The CONNECT_DATA block: what the connection layer sends when it opens a
 * session. Every field is zero by default. */
typedef struct kzci_connect_data {
  char service_name[257];                     /* SERVICE_NAME or SID, at most 256 characters */
  ub4 service_name_len;                       /* characters of service_name */
  char user_extra_info[KZCI_EXTRA_INFO_SIZE]; /* KZ_USER_EXTRA_INFO; it may fill the array */
  ub4 user_extra_info_len;                    /* characters of user_extra_info */
  char session_variable[KZCI_SESSION_VARIABLE_SIZE]; /* SESSION_VARIABLE, at most 256 characters */
  ub4 session_variable_len;                          /* characters of session_variable */
  sb8 kz_mode;                                       /* KZ_MODE */
  sb8 use_default_sid; /* USE_DEFAULT_SID: not 0 leaves the service out of the link string */
} KZCIConnectData;

/* The KZLB_BLACKLIST block. Times are in the connection layer's units. */
typedef struct kzci_blacklist_conf {
  KZCILBOption remove_strategy; /* when a failing server is taken out; default LB_OPTION_TIMEOUT */
  sb8 remove_timeout;           /* its time-out; default 50 */
  KZCILBOption append_strategy; /* how it is put back; default LB_OPTION_NORMAL */
  sb8 retry_times;              /* its retry count; default 1 */
  sb8 duration;                 /* its duration; default 10 */
} KZCIBlacklistConf;

/* The process-wide settings of the reserved entry. In every other service they
 * keep their defaults. */
typedef struct kzci_system_variables {
  sb8 slowsql_threshold;    /* SLOWSQL_THRESHOLD; default 100 */
  sb8 slowsql_buffer_size;  /* SLOWSQL_BUFFER_SIZE, characters; default 0, no buffer */
  ub4 slowsql_flush_second; /* SLOWSQL_FLUSH_SECOND, seconds; default 60 */
  char session_variable[KZCI_SESSION_VARIABLE_SIZE]; /* SESSION_VARIABLE, at most 256 characters;
                                                        default empty */
  ub4 session_variable_len;                          /* characters of session_variable */
  sb8 log_size;         /* LOG_SIZE, bytes, at least 1048576 once set; default 0 */
  ub4 log_count;        /* LOG_COUNT, number of log files; default 0 */
  char log_level[1025]; /* LOG_LEVEL as written; default empty */
  ub4 log_level_len;    /* characters of log_level */
  char log_path[1025];  /* LOG_PATH; default empty */
  ub4 log_path_len;     /* characters of log_path */
} KZCISystemVariables;

/* One DESCRIPTION block. Times are in the connection layer's units. */
typedef struct kzci_description {
  KZCIAddressList *address_list;     /* first address list, or null */
  ub4 address_list_count;            /* address lists on the ring */
  list_entry_t le;                   /* in the ring of its service */
  KZCIConnectData *connect_data;     /* the CONNECT_DATA block, or null */
  boolean kzlb;                      /* KZLB: balance over the address lists; default 0 */
  sb8 retry_all_downs;               /* KZLB_RETRY_ALL_DOWNS; default 120 */
  sb8 connect_timout;                /* KZLB_CONNECT_TIMEOUT; default 0 */
  sb8 read_timout;                   /* KZLB_READ_TIMEOUT; default 0 */
  sb8 write_timout;                  /* KZLB_WRITE_TIMEOUT; default 0 */
  time_t retry_timeout;              /* KZLB_RETRY_TIMEOUT; default 10000 */
  KZCILBOption kzlb_group_strategy;  /* KZLB_GROUP_STRATEGY; default LB_OPTION_GROUP_ROTATION */
  KZCIBlacklistConf black_list_conf; /* KZLB_BLACKLIST */
} KZCIDescription;

/* The name at the end of a service is a flexible array, which C++ has as an
 * extension only. */
#if defined(__cplusplus) && defined(__clang__)
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wc99-extensions"
#elif defined(__cplusplus) && defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wpedantic"
#endif

/* One net service and its name, in one block of sizeof(KZCITnsService) plus
 * net_service_name_len bytes. */
typedef struct kzci_tns_service {
  KZCIDescription *description; /* first description, or null */
  ub4 description_count;        /* descriptions on the ring */
  list_entry_t le;              /* in the ring of its container */
  KZCISystemVariables sys_vars; /* filled for the reserved entry only */
  ub4 net_service_name_len;     /* characters of net_service_name */
  char net_service_name[];      /* the entry's name; not terminated */
} KZCITnsService;

#if defined(__cplusplus) && defined(__clang__)
#pragma clang diagnostic pop
#elif defined(__cplusplus) && defined(__GNUC__)
#pragma GCC diagnostic pop
#endif

/* The container, owned by the caller. */
typedef struct kzci_tns {
  KZCITnsService *tns_service; /* first service, or null */
  ub4 tns_service_count;       /* services on the ring */
} KZCITns;

/* ======================================================================
 * Walking the tree
 *
 *   KZCIDescription *des = service->description;
 *   for (ub4 i = 0; i < service->description_count; ++i) {
 *     ...
 *     des = KZCIDescriptionNext(des);
 *   }
 *
 * ...Next gives the record after this one on its ring, the first one again
 * after the last. ...OfEntry gives the record that holds an entry, for callers
 * that keep `le` pointers. None of them accepts null; none logs.
 * ====================================================================== */

/* The record of the given type that holds the entry as its `le`. */
#define KZCI_RECORD_OF_ENTRY(record_type, entry) \
  ((record_type *)(void *)((char *)(entry)-offsetof(record_type, le)))

/* The service that holds an entry. */
static inline KZCITnsService *KZCITnsServiceOfEntry(list_entry_t *entry) {
  return KZCI_RECORD_OF_ENTRY(KZCITnsService, entry);
}

/* The service after this one on its ring. */
static inline KZCITnsService *KZCITnsServiceNext(KZCITnsService *tns_service) {
  return KZCITnsServiceOfEntry(tns_service->le.next);
}

/* The description that holds an entry. */
static inline KZCIDescription *KZCIDescriptionOfEntry(list_entry_t *entry) {
  return KZCI_RECORD_OF_ENTRY(KZCIDescription, entry);
}

/* The description after this one on its ring. */
static inline KZCIDescription *KZCIDescriptionNext(KZCIDescription *des) {
  return KZCIDescriptionOfEntry(des->le.next);
}

/* The address list that holds an entry. */
static inline KZCIAddressList *KZCIAddressListOfEntry(list_entry_t *entry) {
  return KZCI_RECORD_OF_ENTRY(KZCIAddressList, entry);
}

/* The address list after this one on its ring. */
static inline KZCIAddressList *KZCIAddressListNext(KZCIAddressList *address_list) {
  return KZCIAddressListOfEntry(address_list->le.next);
}

/* The address that holds an entry. */
static inline KZCIAddress *KZCIAddressOfEntry(list_entry_t *entry) {
  return KZCI_RECORD_OF_ENTRY(KZCIAddress, entry);
}

/* The address after this one on its ring. */
static inline KZCIAddress *KZCIAddressNext(KZCIAddress *address) {
  return KZCIAddressOfEntry(address->le.next);
}

/* ======================================================================
 * From an identifier to a tree
 * ====================================================================== */

/*
 * Makes an empty container.
 *
 * tns  the caller's record; its contents on entry do not matter
 *
 * Returns 0; -1 when tns is null (ERROR).
 */
KZOCI_API sword KZCITnsInit(KZCITns *tns);

/*
 * Builds the service that a connect identifier names and appends it to a
 * container.
 *
 * tns         container, initialised; gains one service on success
 * dbname      the identifier, a service name or a literal descriptor; need not
 *             be terminated. One DEBUG record prints a literal descriptor as a C
 *             string: where that record is formatted, a zero byte must follow
 * dbname_len  bytes of dbname
 * find        out: 1 when the service was built, 0 otherwise
 *
 * A service name is looked up in the names file. The first of these environment
 * variables that is set, even to an empty value, says where that is:
 * KZCI_TNS_FILE (the path), TNS_ADMIN (a directory, "/tnsnames.ora" is appended),
 * ORACLE_HOME (a directory, "/network/admin/tnsnames.ora" is appended). The path
 * is cut to 256 characters. The name must be spelt as in the file, letter case
 * included. The first entry of that name is built; the file is open only during
 * the call. The scan ends at the reserved entry "KZCISYSTEMVARIABLES" and at any
 * entry whose name is a leading part of that word.
 *
 * Returns 0 with *find 1: built. 0 with *find 0: no entry of that name, no
 * variable that names a file, or a file that cannot be opened; the DEBUG
 * records say which. -1 with *find 0: malformed input or no memory. -2: an
 * argument is null (ERROR); *find is untouched.
 * After a failure the container is as it was.
 */
KZOCI_API sword KZCITnsBuild(KZCITns *tns, const OraText *dbname, ub4 dbname_len, boolean *find);

/*
 * Tells whether an identifier is a literal descriptor: whether its first 13
 * characters that are not space, tab, line feed or carriage return are
 * "(DESCRIPTION=", in any letter case.
 *
 * description      the identifier; need not be terminated; may be null when
 *                  description_len is 0
 * description_len  its bytes; above 2147483647 nothing is examined
 *
 * Returns 1 or 0. Logs nothing.
 */
KZOCI_API boolean IsDescriptionTns(char *description, ub4 description_len);

/* ======================================================================
 * Printing a tree
 * ====================================================================== */

/*
 * Prints the whole tree, one value a line, depth as dashes.
 *
 * tns  the container
 *
 * The text goes to standard output. When the environment variable
 * KZCI_TNS_DISPLAY is set, the file that it names is opened for reading and the
 * text goes nowhere: the variable tests that the file can be opened and keeps
 * the text off standard output. Its path is not cut.
 *
 * Returns 0; -1 when tns is null or empty (ERROR), when the file cannot be
 * opened (DEBUG), or when a service has no description or a description no
 * address list (ERROR at each level); the status of another record that fails
 * (ERROR at each level). Lines already written stay.
 */
KZOCI_API sword KZCITnsDisplay(KZCITns *tns);

/* ======================================================================
 * Releasing a tree
 * ====================================================================== */

/*
 * Releases every service of a container and empties it.
 *
 * tns  the container; null is nothing to do
 *
 * Returns 0; -1 when a count does not agree with its ring (ERROR), which leaves
 * the tree partly released.
 */
KZOCI_API sword KZCITnsClear(KZCITns *tns);

/* ======================================================================
 * Reading a built service
 *
 * Both look at the service's first description only.
 * ====================================================================== */

/*
 * Hands out what a session is opened with.
 *
 * tns_service           a built service
 * extra_info            out: user extra information; at least KZCI_EXTRA_INFO_SIZE bytes
 * extra_info_len        out: its length
 * kz_mode               out: the mode's low 32 bits
 * session_variable      out: session variables; at least KZCI_SESSION_VARIABLE_SIZE bytes
 * session_variable_len  out: their length
 *
 * The texts are copied without a terminator. Empty extra information leaves
 * extra_info, *extra_info_len and *kz_mode untouched: the mode goes with it.
 * Empty session variables leave their two outputs untouched.
 *
 * Returns 0; -1: no description or no connect data (ERROR); -2: an argument is
 * null (ERROR). After a failure all outputs are untouched.
 */
KZOCI_API sword KZCITnsServiceExtraInfoGet(KZCITnsService *tns_service, char *extra_info,
                                           sb4 *extra_info_len, sb4 *kz_mode,
                                           char *session_variable, sb4 *session_variable_len);

/*
 * Writes the link string of the service's first address: "host:port/service",
 * or "host:port" when use_default_sid is not 0.
 *
 * tns_service  a built service
 * dblink       out: the link string, terminated, cut to 255 characters; at least
 *              KZCI_DBLINK_SIZE bytes
 * dblink_len   out: its length before the cut
 *
 * Returns 0; -1: no description, address list, address or connect data (ERROR),
 * or the text cannot be formatted (ERROR); -2: an argument is null (ERROR).
 * After a failure *dblink_len is untouched.
 */
KZOCI_API sword KZCITnsServiceDblinkGet(KZCITnsService *tns_service, char *dblink, sb4 *dblink_len);

/* ======================================================================
 * Slow-SQL buffer: reports of slow statements, logged in batches
 *
 *   KZCISLowSQL slowsql = {0};
 *   KZCISlowSQLBufferInit(&slowsql, 65536);
 *   KZCISlowSQLWrite(&slowsql, "%s took %d ms\n", statement, milliseconds);
 *   KZCISlowSQLBufferClear(&slowsql);
 *
 * A batch is one log record at LOG_LEVEL_SLOWSQL, "SLOWSQL:" and the reports.
 * One record serves one thread at a time.
 * ====================================================================== */

/* The buffer and where it stands. */
typedef struct kzci_slow_sql {
  char *buffer;      /* the text, terminated; null when there is no buffer */
  sb8 buffer_length; /* its size in characters */
  sb8 buffer_pos;    /* characters written so far */
  ub4 flush_second;  /* seconds between flushes; set and read by the caller */
} KZCISLowSQL;

/*
 * Gives a record an empty buffer. A buffer that it already has is not released:
 * clear first. flush_second is kept.
 *
 * slowsql  the caller's record
 * size     characters of the buffer; 0 or less for none (DEBUG)
 *
 * Returns 0; -2: null record or no memory, not logged.
 */
KZOCI_API sword KZCISlowSQLBufferInit(KZCISLowSQL *slowsql, sb8 size);

/*
 * Logs the text of the buffer, if there is any, and empties it.
 *
 * Returns 0; -2: null record or no buffer, not logged.
 */
KZOCI_API sword KZCISlowSQLBufferFlush(KZCISLowSQL *slowsql);

/*
 * Logs what is in the buffer and releases it. flush_second is kept.
 *
 * Returns 0, also without a buffer; -2: null record, not logged; the flush's
 * status when that fails (ERROR), the buffer is released all the same.
 */
KZOCI_API sword KZCISlowSQLBufferClear(KZCISLowSQL *slowsql);

/*
 * Adds a report. What is in the buffer is logged first when the report would
 * fill it, and the report itself at once when it fills the buffer alone; a
 * report longer than the buffer is cut to its length minus 1.
 *
 * slowsql  a record with a buffer
 * fmt      printf format of the report, followed by its arguments, which are
 *          read twice
 *
 * Returns 0; -1: a flush failed (ERROR); -2: null record or no buffer, not
 * logged.
 */
KZOCI_API sword KZCISlowSQLWrite(KZCISLowSQL *slowsql, const char *fmt, ...)
    KZOCI_PRINTF_LIKE(2, 3);

#if defined(__LP64__)
KZOCI_REQUIRE(sizeof(KZCITnsService) == 2416, "size of the service record");
KZOCI_REQUIRE(sizeof(KZCISystemVariables) == 2368, "size of the system variables");
#endif

#ifdef __cplusplus
}
#endif

#include "oci_tnsname_parser.h"

#endif
