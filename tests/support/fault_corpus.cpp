#include "fault_corpus.h"

namespace support {
namespace {

using namespace std::string_literals;

constexpr Outcome found = {0, 1};
constexpr Outcome absent = {0, 0};
constexpr Outcome malformed = {-1, 0};

const std::string other_entries =
    "# two entries that are passed over\n"
    "other = (x (y) \"z\")\n"
    "KZCIX = (DESCRIPTION = (ADDRESS = (HOST = x)))\n";

// Every key of a description, and every kind of block below it.
const std::string every_key =
    "(KZLB = ON)(KZLB_GROUP_STRATEGY = rot)(KZLB_RETRY_ALL_DOWNS = 1)(KZLB_RETRY_TIMEOUT = 2)"
    "(KZLB_CONNECT_TIMEOUT = 3)(KZLB_READ_TIMEOUT = 4)(KZLB_WRITE_TIMEOUT = -5)(RETRY_DELAY = 6)"
    "(KZLB_BLACKLIST = (REMOVE_STRATEGY = (NAME = TIMEOUT)(TIMEOUT = 7))"
    " (APPEND_STRATEGY = (NAME = r)(RETRY_TIMES = 8)(RETRYTIMES = 8)(DURATION = 9)))"
    "(ADDRESS_LIST = (KZLB = off)(KZLB_STRATEGY = S)"
    " (ADDRESS = (PROTOCOL = tcp)(HOST = a)(PORT = 1)(WEIGHT = 2)) (ADDRESS = (HOST = b)))"
    "(ADDRESS_LIST = (KZLB_STRATEGY = RO)(KZLB_STRATEGY = RA)(ADDRESS = (PORT = 12345678)))"
    "(CONNECT_DATA = (SERVICE_NAME = s)(SID = t)(KZ_USER_EXTRA_INFO = \"u ()\")"
    " (SESSION_VARIABLE = v)(KZ_MODE = 1)(USE_DEFAULT_SID = 0))";

const std::string bare =
    "(address = (host = c)) # a comment\n"
    "(ADDRESS_LIST = (ADDRESS = (HOST = d))) (KZLB = o)";

const std::string small_entry = "mydb = (DESCRIPTION = (ADDRESS = (HOST = a)))";

// The text is written in two parts: up to where the builder stops, and the rest.
Sample in_file(const std::string &name, const std::string &entry, const std::string &rest,
               Outcome outcome) {
  return {name, Source::file, "mydb", "other = (x)\nmydb = " + entry + rest, outcome};
}

std::string many_blocks() {
  std::string blocks;
  for (int i = 0; i < 40; ++i) blocks += "()";
  return blocks;
}

std::vector<Sample> good_entries() {
  return {
      in_file("every key", "(DESCRIPTION = " + every_key + ")", "\nnext = (x)\n", found),
      in_file("bare address", "(DESCRIPTION = " + bare + ")", "", found),
      in_file("two descriptions",
              "(DESCRIPTION = (ADDRESS_LIST = (ADDRESS = (HOST = a)) (ADDRESS = (HOST = b))))\n"
              "(DESCRIPTION = (CONNECT_DATA = (SID = s)) (ADDRESS = (HOST = c)))\n",
              "KZCISYSTEMVARIABLES = (LOG_COUNT = 1)", found),
      in_file("description without addresses", "(DESCRIPTION = (KZLB = OFF))", "", found),
      in_file("lists without addresses",
              "(DESCRIPTION = (ADDRESS_LIST = (KZLB = ON)) (ADDRESS_LIST = (KZLB = OFF)))", "",
              found),
      in_file("blanks and comments",
              "\t(\r\n DESCRIPTION # (\n = # ) \n ( ADDRESS = ( HOST = \"a # b\" ) ) )", " # end",
              found),
      in_file("default SID",
              "(DESCRIPTION = (ADDRESS = (HOST = a)) (CONNECT_DATA = (USE_DEFAULT_SID = 1)))", "",
              found),
      {"quoted name", Source::file, "my db", "my\" \"db=(DESCRIPTION=(ADDRESS=(HOST=a)))", found},
      {"empty name", Source::file, "", "\"\"=(LOG_COUNT=1)", found},
      {"entry after others", Source::file, "mydb", other_entries + small_entry, found},
      {"entry after many small blocks", Source::file, "mydb",
       "other = (" + many_blocks() + ")\n" + small_entry, found},
      {"entry after a long one", Source::file, "mydb",
       "other = (" + std::string(3000, 'x') + ")\n" + small_entry, found},
      {"long blanks and comments", Source::file, "mydb",
       std::string(1500, ' ') + "#" + std::string(1500, '(') + "\n" + small_entry, found},
  };
}

// Entries that end too early, yet after a complete item.
std::vector<Sample> entries_cut_after_an_item() {
  return {
      in_file("one block, then an open parenthesis", "(DESCRIPTION = (ADDRESS = (HOST = a)))\n(",
              "= x", malformed),
      in_file("one block, then an item of a second",
              "(DESCRIPTION = (ADDRESS = (HOST = a))) (DESCRIPTION = (ADDRESS_LIST = (ADDRESS = "
              "(HOST = b)(PORT = 1)",
              "next = (x)", found),
      in_file("no end of the only block",
              "(DESCRIPTION = (ADDRESS_LIST = (ADDRESS = (HOST = b)(PORT = 1)", "next = (x)",
              malformed),
      in_file("second connect data",
              "(DESCRIPTION = (ADDRESS = (HOST = a)) (CONNECT_DATA = (SID = s))"
              " (CONNECT_DATA = (SID = t))",
              ")", found),
      in_file("blacklist without its end",
              "(DESCRIPTION = (KZLB_BLACKLIST = (REMOVE_STRATEGY = (TIMEOUT = 1)", "=", malformed),
  };
}

// An address, a list, connect data and a blacklist inside a description that has
// records already.
std::string in_list(const std::string &item) {
  return "(DESCRIPTION = (CONNECT_DATA = (SID = s)) (ADDRESS_LIST = (ADDRESS = (HOST = a)) " + item;
}
std::string in_address(const std::string &item) { return in_list("(ADDRESS = (HOST = b) " + item); }
std::string in_data(const std::string &item) {
  return "(DESCRIPTION = (ADDRESS = (HOST = a)) (CONNECT_DATA = (SID = s) " + item;
}
std::string in_description(const std::string &item) {
  return "(DESCRIPTION = (ADDRESS = (HOST = a)) (CONNECT_DATA = (SID = s)) " + item;
}
std::string in_blacklist(const std::string &item) {
  return in_description("(KZLB_BLACKLIST = (REMOVE_STRATEGY = (NAME = T)) " + item);
}

Sample bad(const std::string &name, const std::string &entry, const std::string &rest = ")))") {
  return in_file(name, entry, rest, malformed);
}

std::vector<Sample> bad_values() {
  return {
      bad("protocol", in_address("(PROTOCOL = UDP")),
      bad("long protocol", in_address("(PROTOCOL = TCPTCPTCP")),
      bad("weight", in_address("(WEIGHT = 5x")),
      bad("weight out of range", in_address("(WEIGHT = 99999999999999999999")),
      bad("host cut at the limit of a key", in_address("(HOST = " + std::string(256, 'h')),
          std::string(44, 'h') + ")"),
      bad("list's switch", in_list("(KZLB = YES")),
      bad("list's strategy", in_list("(KZLB_STRATEGY = NONE")),
      bad("mode", in_data("(KZ_MODE = 1.5")),
      bad("default SID", in_data("(USE_DEFAULT_SID = \"\"")),
      bad("description's switch", in_description("(KZLB = YES")),
      bad("group strategy", in_description("(KZLB_GROUP_STRATEGY = RANDOM")),
      bad("retry timeout", in_description("(KZLB_RETRY_TIMEOUT = x")),
      bad("retry delay", in_description("(RETRY_DELAY = x")),
      bad("remove strategy", in_blacklist("(REMOVE_STRATEGY = (NAME = RETRYDURATION")),
      bad("remove timeout", in_blacklist("(REMOVE_STRATEGY = (TIMEOUT = x")),
      bad("append strategy", in_blacklist("(APPEND_STRATEGY = (NAME = TIMEOUT")),
      bad("retry times", in_blacklist("(APPEND_STRATEGY = (RETRY_TIMES = x")),
      bad("no host", in_address("(HOST = ")),
      bad("no mode", in_data("(KZ_MODE = "), "(x)"),
      bad("no switch", in_description("(KZLB = "), "= x"),
  };
}

std::vector<Sample> bad_keys() {
  return {
      bad("unknown in an address", in_address("(HOSTS ")),
      bad("unknown in a list", in_list("(ADDRESSES ")),
      bad("unknown in connect data", in_data("(SIDS ")),
      bad("unknown in a description", in_description("(KZLBS ")),
      bad("unknown in a blacklist", in_blacklist("(STRATEGY ")),
      bad("unknown in a strategy", in_blacklist("(APPEND_STRATEGY = (TIMES ")),
      bad("longer than any key word", in_description("(KZLB_CONNECT_TIMEOUTSS ")),
      bad("refused in an address", in_address("(ADDRESS =")),
      bad("refused in a list", in_list("(CONNECT_DATA =")),
      bad("refused in connect data", in_data("(HOST =")),
      bad("refused in a description", in_description("(RETRY_TIMES =")),
      bad("refused in a blacklist", in_blacklist("(NAME =")),
      bad("refused in the remove strategy", in_blacklist("(REMOVE_STRATEGY = (DURATION =")),
      bad("refused in the append strategy", in_blacklist("(APPEND_STRATEGY = (TIMEOUT =")),
      bad("second bare address", in_description("(ADDRESS =")),
      bad("unknown for a block", "(DESCRIPTIONS "),
      bad("refused for a block", "(ADDRESS ="),
      bad("unknown for a second block", "(DESCRIPTION = (ADDRESS = (HOST = a))) (x "),
      bad("no key", in_description("("), "())"),
      bad("no equal sign", in_description("(KZLB "), "(x))"),
      bad("no first parenthesis", "", "x"),
      bad("nothing", "", ""),
      bad("empty description", "(DESCRIPTION ="),
      bad("empty list", in_description("(ADDRESS_LIST =")),
      bad("empty address", in_list("(ADDRESS =")),
      bad("empty connect data", "(DESCRIPTION = (ADDRESS = (HOST = a)) (CONNECT_DATA ="),
      bad("empty blacklist", in_description("(KZLB_BLACKLIST =")),
      bad("zero byte that ends a comment", "(DESCRIPTION # a comment", "\0 = (KZLB = ON))"s),
      bad("second value", in_address("(PORT = 1 "), "2)"),
  };
}

Sample no_entry(const std::string &name, const std::string &before, const std::string &rest,
                Outcome outcome) {
  return {name, Source::file, "mydb", before + rest, outcome};
}

// Files in which the entry is not reached.
std::vector<Sample> other_files() {
  return {
      no_entry("empty file", "", "", absent),
      no_entry("only blanks", " \t\r\n# comment", "", absent),
      no_entry("only other entries", other_entries, "", absent),
      no_entry("name in another letter case", "MYDB = (x)\n", "", absent),
      no_entry("reserved entry in front", other_entries + "KZCI =",
               " (LOG_COUNT = 1)\nmydb = (DESCRIPTION = (ADDRESS = (HOST = a)))\n", absent),
      no_entry("empty name in front", "\"\" =", " (x)\nmydb = (x)", absent),
      no_entry("no body", other_entries + "more = ", "x (y)\n", malformed),
      no_entry("no equal sign", other_entries + "more ", "(y)\n", malformed),
      no_entry("no name", other_entries, "(y)\n", malformed),
      no_entry("one parenthesis too many", other_entries, ")\nmydb = (x)\n", malformed),
      no_entry("one parenthesis too few", "other = ((x)\nmydb = (y)\n", "", absent),
  };
}

Sample reserved(const std::string &name, const std::string &settings, const std::string &rest,
                Outcome outcome) {
  return {name, Source::file, "KZCISYSTEMVARIABLES",
          other_entries + "KZCISYSTEMVARIABLES = " + settings + rest, outcome};
}

std::vector<Sample> reserved_entries() {
  return {
      reserved("every setting",
               "(SLOWSQL_THRESHOLD = 1)(SLOWSQL_BUFFER_SIZE = 2)(SLOWSQL_FLUSH_SECOND = 3)"
               "(SESSION_VARIABLE = x)(LOG_SIZE = 4)(LOG_LEVEL = INFO)(LOG_COUNT = 5)"
               "(LOG_COUNT = 4294967296)(LOG_PATH = /log)(ANYTHING = 6)(DESCRIPTION = 7)"
               "(SLOWSQL_THRESHOLX = 1)(SLOWSQL_FLUSX_SECOND = 2)"
               "(\"\" = 8)\n",
               "", found),
      reserved("number", "(LOG_COUNT = 1)(LOG_SIZE = 4k", ")", malformed),
      reserved("block for a number", "(LOG_COUNT = 1)(LOG_COUNT = ", "(3))", malformed),
      reserved("block for a text", "(LOG_COUNT = 1)(LOG_LEVEL = ", "(INFO))", malformed),
      reserved("block for an unknown value", "(LOG_COUNT = 1)(ANYTHING = ", "(x))", malformed),
      reserved("block for a key", "(LOG_COUNT = 1)(", "(x))", malformed),
      reserved("key alone", "(LOG_COUNT = 1)(LOG_LEVEL ", ")", malformed),
      reserved("no equal sign after no key word", "(LOG_COUNT = 1)(ANYTHING ", ")", malformed),
      reserved("key left out", "(LOG_COUNT = 1)(= 2)", "", found),
      {"prefix in another letter case", Source::file, "kzci",
       "kzci = (LOG_LEVEL = INFO)\nnext = (x)", found},
  };
}

std::vector<Sample> descriptors() {
  const auto literal = [](const std::string &name, const std::string &entry,
                          const std::string &rest, Outcome outcome) {
    return Sample{name, Source::literal, "", entry + rest, outcome};
  };
  return {
      literal("every key", "(DESCRIPTION = " + every_key + ")", " \n", found),
      literal("bare address", "\n( description = " + bare + " )", " # end", found),
      literal("second connect data",
              "(DESCRIPTION=(CONNECT_DATA=(SID=s))(ADDRESS=(HOST=a))(CONNECT_DATA=(SID=t))", ")",
              malformed),
      literal("text after", "(DESCRIPTION=" + bare + ")", "x", malformed),
      literal("block after", "(DESCRIPTION=" + bare + ")", "(DESCRIPTION=(KZLB=ON))", malformed),
      literal("no end", "(DESCRIPTION=" + bare, "", malformed),
      literal("no end of an address", "(DESCRIPTION=" + bare + "(ADDRESS_LIST=(ADDRESS=(HOST=a)",
              "", malformed),
      literal("bad address", in_address("(WEIGHT=x"), ")))))", malformed),
      literal("bad connect data", in_data("(HOST="), "x)))", malformed),
      literal("empty description", "(DESCRIPTION=", "", malformed),
      literal("blank in the word", "(DESC ", "RIPTION=(KZLB=ON))", malformed),
      {"wrong word", Source::literal_only, "", "(ADDRESS=(HOST=a))", malformed},
      {"unknown word", Source::literal_only, "", "(x =(HOST=a))", malformed},
      {"no parenthesis", Source::literal_only, "", "x", malformed},
      {"end before the word", Source::literal_only, "", "(", absent},
      {"end before the equal sign", Source::literal_only, "", "(DESCRIPTION ", absent},
      {"empty text", Source::literal_only, "", "", absent},
  };
}

}  // namespace

std::vector<Sample> fault_corpus() {
  std::vector<Sample> all;
  for (const auto &part : {good_entries(), entries_cut_after_an_item(), bad_values(), bad_keys(),
                           other_files(), reserved_entries(), descriptors()})
    all.insert(all.end(), part.begin(), part.end());
  return all;
}

}  // namespace support
