/*
 * oci_tnsname_parser.h: the parts that KZCITnsBuild, KZCITnsDisplay and
 * KZCITnsClear are made of, for tools that take names files apart: the key
 * words' identifiers, the parse state, the tokenizer, the builders, and the
 * functions of single records. What oci_tnsname.h says of every function holds
 * here, too.
 *
 * Include oci_tnsname.h, which includes this file.
 */
#ifndef KZOCI_OCI_TNSNAME_PARSER_H
#define KZOCI_OCI_TNSNAME_PARSER_H

#include "oci_tnsname.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ======================================================================
 * Key words
 * ====================================================================== */

/* Identifiers of the key words; the word is given where it differs from the
 * name. */
typedef enum enum_kzci_lb_key_type {
  LB_ERROR_KEY = 0, /* no key word */
  LB_DESCRIPTION = 1,
  LB_KZLB = 2,
  LB_CONNECT_TIMEOUT = 3, /* KZLB_CONNECT_TIMEOUT */
  LB_READ_TIMEOUT = 4,    /* KZLB_READ_TIMEOUT */
  LB_WRITE_TIMEOUT = 5,   /* KZLB_WRITE_TIMEOUT */
  LB_KZLB_GROUP_STRATEGY = 6,
  LB_KZLB_RETRY_ALL_DOWNS = 7,
  LB_KZLB_RETRY_TIMEOUT = 8,
  LB_KZLB_BLACKLIST = 9,
  LB_REMOVE_STRATEGY = 10,
  LB_NAME = 11,
  LB_TIMEOUT = 12,
  LB_APPEND_STRATEGY = 13,
  LB_RETRY_TIMES = 14, /* RETRY_TIMES or RETRYTIMES */
  LB_DRUATION = 15,    /* DURATION */
  LB_ADDRESS_LIST = 16,
  LB_KZLB_STRATEGY = 17,
  LB_ADDRESS = 18,
  LB_PROTOCOL = 19,
  LB_HOST = 20,
  LB_PORT = 21,
  LB_WEIGHT = 22,
  LB_CONNECT_DATA = 23,
  LB_SERVICE_NAME = 24,
  LB_SID = 25,
  LB_EXTRA_INFO = 26, /* KZ_USER_EXTRA_INFO */
  LB_KZ_MODE = 27,
  LB_USE_DEFAULT_SID = 28,
  LB_SLOWSQL_THRESHOLD = 29,
  LB_SLOWSQL_BUFFER_SIZE = 30,
  LB_SLOWSQL_FLUSH_SECOND = 31,
  LB_SESSION_VARIABLE = 32,
  LB_LOG_SIZE = 33,
  LB_LOG_LEVEL = 34,
  LB_LOG_COUNT = 35,
  LB_LOG_PATH = 36,
  LB_RETRY_DELAY = 37,
  LB_MAX_KEY_TYPE = 38 /* bound; no key */
} KZCILBKeyType;

/* ======================================================================
 * Tokens
 * ====================================================================== */

/* Kinds of token; 0 to 3 are produced and expected, the others are bounds. */
typedef enum kzci_tns_token_type {
  TNS_EQUAL_SIGN = 0,
  TNS_LEFT_PARENTHESES = 1,
  TNS_RIGHT_PARENTHESES = 2,
  TNS_KEY = 3, /* any other run of characters, quoted or not */
  TNS_ERROR_TYPE = 4,
  TNS_MAX_TOKEN_TYPE = 5
} KZCITnsTokenType;

/* Whether the reader of a key is between quotes. */
typedef enum kzci_tns_parse_status {
  TNS_PARSE_NORMAL = 0, /* outside quotes */
  TNS_PARSE_QUOTE = 1   /* between double quotes */
} KZCITnsParseStatus;

/* Where the input comes from. */
enum enum_kzci_tns_parse_mode {
  TNS_MODE_FILE = 1,       /* tns_file */
  TNS_MODE_DESCRIPTION = 2 /* description */
};

/* The state of one parse. Its owner sets every field to zero, then mode and
 * either tns_file or description and description_len. */
typedef struct kzci_tns_parse_params {
  char tns_buffer[1024];           /* the part of the input at hand */
  char tns_key[256];               /* text of the last key; not terminated */
  ub4 buffer_pos;                  /* index in tns_buffer of the next character */
  ub4 buffer_len;                  /* characters in tns_buffer */
  ub4 tns_key_len;                 /* characters in tns_key, 0 to 256 */
  int is_eof;                      /* 1 once the input, or the scan, has ended */
  int mode;                        /* TNS_MODE_FILE or TNS_MODE_DESCRIPTION */
  char *tns_name;                  /* value of the environment that named the file */
  FILE *tns_file;                  /* the names file, in file mode; the owner's */
  char *description;               /* the text, in descriptor mode; the owner's */
  int description_len;             /* characters of description */
  int description_offset;          /* characters of description already read */
  int is_comment;                  /* 1 inside a comment */
  KZCITnsTokenType tns_token_type; /* type of the last token consumed */
  KZCILBKeyType key_type;          /* what KZCITnsGetKeyType found */
} KZCITnsParseParams;

/*
 * Makes sure that a character is at hand, reading up to 1024 more when none is.
 *
 * Returns 0: a character is at buffer_pos. -1: the input has ended, is_eof is
 * 1 (a read error counts as the end). -2: null record, not logged. A read is
 * logged at DEBUG.
 */
KZOCI_API sword KZCITnsCheckBuffer(KZCITnsParseParams *parse_params);

/*
 * Passes over spaces, tabs, line feeds, carriage returns and comments ("#" to
 * the end of the line, or to a zero byte).
 *
 * Returns 0: buffer_pos is on the next other character. 100: the input has
 * ended (DEBUG). -2: null record, not logged. Another status of
 * KZCITnsCheckBuffer (ERROR).
 */
KZOCI_API sword KZCITnsParseBlank(KZCITnsParseParams *parse_params);

/*
 * Reads a key from buffer_pos into tns_key: characters up to a space, tab, line
 * feed, carriage return, "(", ")" or "=", which is left; between double quotes
 * every character belongs to the key, the quotes themselves do not.
 *
 * Returns 0 with the key in tns_key and tns_key_len. 100: the input ended first
 * (DEBUG). -1: the key's 256th character is the last one at hand (ERROR). -2:
 * null record, not logged. Another status of KZCITnsCheckBuffer (ERROR).
 *
 * A key of more than 256 characters is cut there when more characters are at
 * hand; the rest is the start of the next token. After a failure tns_key holds
 * the new characters over the old ones and tns_key_len its old value.
 */
KZOCI_API sword KZCITnsParseKey(KZCITnsParseParams *parse_params);

/*
 * Consumes the next token if it has the expected type.
 *
 * Returns 0: consumed; tns_token_type is its type, a key's text is in tns_key.
 * -1: it has another type and is left (WARN), or the key is too long (ERROR).
 * 100: the input has ended (WARN before a token, ERROR inside a key). -2: null
 * record, not logged.
 */
KZOCI_API sword KZCITnsParse(KZCITnsParseParams *parse_params, KZCITnsTokenType expect_type);

/*
 * Looks up tns_key among the key words, in any letter case, and stores the
 * identifier in key_type, LB_ERROR_KEY for a text that is none.
 *
 * Returns 0 in both cases (DEBUG; ERROR for a text of more than 20
 * characters); -2: null record, not logged.
 */
KZOCI_API sword KZCITnsGetKeyType(KZCITnsParseParams *parse_params);

/*
 * Passes over one entry of the file. On entry its name is in tns_key and its "="
 * consumed; on success the ")" that balances its first "(" is consumed.
 * Parentheses are counted even in comments and quotes. An entry whose name is a leading part of
 * "KZCISYSTEMVARIABLES", in this letter case, is not passed over: is_eof
 * becomes 1 and nothing is consumed.
 *
 * Returns 0; 100: the input has ended (DEBUG); -1: the body does not begin with
 * "(" (WARN); -2: null record (ERROR); another status of KZCITnsCheckBuffer
 * (ERROR).
 */
KZOCI_API sword KZCITnsServiceSkip(KZCITnsParseParams *parse_params);

/* ======================================================================
 * Builders
 *
 * Each is called right after a block's "=" and reads the block's items; the
 * ")" that closes the block is left for the caller. A builder succeeds when the
 * last token that it consumed is ")".
 *
 * Logged are: the call at DEBUG, except by KZCISystemVariablesBuild; the
 * success at DEBUG, except by KZCIAddressBuild; token failures at WARN; what
 * fails the block at ERROR. A protocol that is not TCP has no record of its own.
 *
 * Each returns 0; -2 when an argument is null (ERROR); -1 on failure, no memory
 * included; the status of the record's Init when that fails, in which case the
 * record stays allocated. KZCITnsBuildDes and KZCISystemVariablesBuild differ.
 * ====================================================================== */

/*
 * Builds a service from the body of a file's entry and appends it.
 *
 * tns           container; gains the service on success
 * parse_params  parse state; the entry's name is in tns_key, its "=" consumed.
 *               Left before the token that ends the entry.
 *
 * An entry whose name is a leading part of "KZCISYSTEMVARIABLES", in any letter
 * case, is read as system variables.
 */
KZOCI_API sword KZCITnsServiceBuild(KZCITns *tns, KZCITnsParseParams *parse_params);

/*
 * Builds a service from a literal descriptor and appends it. The service's name
 * is the descriptor's first word as written ("DESCRIPTION").
 *
 * tns, dbname, dbname_len, find  as for KZCITnsBuild
 *
 * Returns 0 with *find 1: built. 0 with *find 0: the text ends before the
 * first "=". -1 with *find 0: malformed text, no memory, or text after the
 * descriptor. -2 with *find 0: a null argument (ERROR; find itself may be null).
 */
KZOCI_API sword KZCITnsBuildDes(KZCITns *tns, const OraText *dbname, ub4 dbname_len, boolean *find);

/* Builds a description (DESCRIPTION=...) and appends it to a service. */
KZOCI_API sword KZCIDescriptionBuild(KZCITnsService *tns_service, KZCITnsParseParams *parse_params);

/* Builds an address list (ADDRESS_LIST=...) and appends it to a description. */
KZOCI_API sword KZCIAddressListBuild(KZCIDescription *des, KZCITnsParseParams *parse_params);

/* Builds an address (ADDRESS=...) and appends it to an address list. */
KZOCI_API sword KZCIAddressBuild(KZCIAddressList *address_list, KZCITnsParseParams *parse_params);

/* Builds the connect data (CONNECT_DATA=...) of a description. -1 when the
 * description has some already: they stay, the new ones are released. */
KZOCI_API sword KZCIConnectDataBuild(KZCIDescription *des, KZCITnsParseParams *parse_params);

/* Reads a blacklist policy (KZLB_BLACKLIST=...) into a record. Values read
 * before a failure stay. */
KZOCI_API sword KZCIBlacklistConfBuild(KZCIBlacklistConf *black_list_conf,
                                       KZCITnsParseParams *parse_params);

/* Reads REMOVE_STRATEGY=... and APPEND_STRATEGY=... of a blacklist policy. */
KZOCI_API sword KZCIRemoveStrategyBuild(KZCIBlacklistConf *black, KZCITnsParseParams *parse_params);
KZOCI_API sword KZCIAppendStrategyBuild(KZCIBlacklistConf *black, KZCITnsParseParams *parse_params);

/*
 * Reads the value of one system variable, the one that key_type names.
 *
 * sys_vars      the record that takes the value
 * parse_params  parse state, right after the item's "="
 *
 * Returns 0, also for a key that is no system variable (its value is skipped,
 * WARN) and for a text that is too long (ERROR; the field keeps its value);
 * -1 for a bad number (ERROR; what was converted stays in the field); the
 * status of the read when a text cannot be read (ERROR), 100 at the end of the
 * input included; -2 when an argument is null, not logged. The value that the
 * field then holds is logged at DEBUG.
 */
KZOCI_API sword KZCISystemVariablesBuild(KZCISystemVariables *sys_vars,
                                         KZCITnsParseParams *parse_params);

/* ======================================================================
 * Records one by one: defaults
 *
 * Each sets the whole record to zero and then its defaults; contents on entry
 * do not matter. Each returns 0; -1 for a null record (ERROR), except the last
 * two, which return -2. KZCITnsInit, for the container, is in oci_tnsname.h.
 * ====================================================================== */

/*
 * tns_service  record with at least name_size bytes after its fixed part
 * name_size    length of the name
 * name         its text, copied up to its first zero byte and filled up with
 *              zeros; not read when name_size is 0
 *
 * Also returns the status of KZCISystemVariablesInit when that fails (ERROR).
 */
KZOCI_API sword KZCITnsServiceInit(KZCITnsService *tns_service, ub4 name_size, const char *name);

/* Also returns the status of KZCIBlacklistConfInit when that fails (ERROR). */
KZOCI_API sword KZCIDescriptionInit(KZCIDescription *des);
KZOCI_API sword KZCIAddressListInit(KZCIAddressList *address_list);
KZOCI_API sword KZCIAddressInit(KZCIAddress *address);
KZOCI_API sword KZCIConnectDataInit(KZCIConnectData *con_data);

/* -2 for a null record (ERROR). */
KZOCI_API sword KZCIBlacklistConfInit(KZCIBlacklistConf *black_list_conf);

/* -2 for a null record, without a record in the log. */
KZOCI_API sword KZCISystemVariablesInit(KZCISystemVariables *sys_vars);

/* ======================================================================
 * Records one by one: release
 *
 * Each releases what is below the record, never the record. For a null record
 * there is nothing to do: status 0. Each logs its call at DEBUG, except
 * KZCISystemVariablesClear; the first three also log that there is nothing to
 * release (DEBUG; ERROR for a null description). Each returns 0; -1 when a count does not agree
 * with its ring (ERROR); the status of a child that fails (ERROR). A failure
 * stops the release: children already released are gone while the parent still
 * points at the first one.
 * ====================================================================== */

/* Releases every description. */
KZOCI_API sword KZCITnsServiceClear(KZCITnsService *tns_service);

/* Releases every address list, then the connect data. */
KZOCI_API sword KZCIDescriptionClear(KZCIDescription *des);

/* Releases every address. */
KZOCI_API sword KZCIAddressListClear(KZCIAddressList *address_list);

/* Nothing hangs below these three: they return 0. */
KZOCI_API sword KZCIAddressClear(KZCIAddress *address);
KZOCI_API sword KZCIConnectDataClear(KZCIConnectData *con_data);
KZOCI_API sword KZCISystemVariablesClear(KZCISystemVariables *sys_vars);

/* ======================================================================
 * Records one by one: print
 *
 * display_file  stream open for writing, the caller's; results of the writes
 *               are not checked
 *
 * Each returns 0; -2 when an argument is null (ERROR where nothing else is
 * said); -1 when a child that must be there is missing (ERROR); the status of a
 * child that fails (ERROR). Lines already written stay.
 * ====================================================================== */

/* The service's name, its descriptions and its system variables; for the
 * reserved entry (any name that is a leading part of its name, in any letter
 * case) the system variables alone. -1 for another service without
 * descriptions. */
KZOCI_API sword KZCITnsServiceDisplay(KZCITnsService *tns_service, FILE *display_file);

/* -1 for a description without address lists. */
KZOCI_API sword KZCIDescriptionDisplay(KZCIDescription *des, FILE *display_file);

/* Prints nothing for a list without addresses. Null is logged at DEBUG. */
KZOCI_API sword KZCIAddressListDisplay(KZCIAddressList *address_list, FILE *display_file);

/* These three log nothing. */
KZOCI_API sword KZCIAddressDisplay(KZCIAddress *address, FILE *display_file);
KZOCI_API sword KZCIConnectDataDisplay(KZCIConnectData *con_data, FILE *display_file);
KZOCI_API sword KZCISystemVariablesDisplay(KZCISystemVariables *sys_vars, FILE *display_file);

#ifdef __cplusplus
}
#endif

#endif
