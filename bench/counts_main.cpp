// Does one operation a number of times, for scripts/counts, which counts instructions: the
// difference between two numbers of times is the operation's own.
//
//   counts operations                      prints their names
//   counts OPERATION TIMES NAMES_FILE
//
// The platform drops every log record at once and its memory is malloc's, so that what is
// counted is the module and the C library.
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "kzoci/oci_tnsname.h"
#include "kzoci/platform/log.h"
#include "kzoci/platform/memory.h"
#include "literal.h"

void kzoci_log_inner(log_level, const char *, int, const char *, ...) {}
void *kzci_malloc(size_t size, const char *) { return std::malloc(size); }
void kzci_free(void *pointer) { std::free(pointer); }

namespace {

// A count of work that was not done is worse than none.
void require(bool done, const char *what) {
  if (done) return;
  std::fprintf(stderr, "counts: %s\n", what);
  std::exit(1);
}

// A service, built for as long as the object lives.
class Built {
 public:
  explicit Built(std::string_view identifier) {
    boolean find = 0;
    KZCITnsInit(&tns_);
    const sword status = KZCITnsBuild(&tns_, reinterpret_cast<const OraText *>(identifier.data()),
                                      static_cast<ub4>(identifier.size()), &find);
    require(status == 0 && find != 0, "a service is not built");
  }
  ~Built() { KZCITnsClear(&tns_); }
  Built(const Built &) = delete;
  Built &operator=(const Built &) = delete;

  KZCITnsService *service() const { return tns_.tns_service; }

 private:
  KZCITns tns_;
};

// All the entries before the one that is looked up are passed over.
void pass_over(long times) {
  char name[32];
  std::snprintf(name, sizeof name, "svc%07ld", times);
  const Built last(name);
}

void build_first(long times) {
  for (; times > 0; --times) const Built first("svc0000000");
}

void build_compact(long times) {
  for (; times > 0; --times) const Built literal(bench::compact_literal);
}

void build_spaced(long times) {
  for (; times > 0; --times) const Built literal(bench::spaced_literal);
}

void display(long times) {
  const Built literal(bench::compact_literal);
  FILE *const file = std::fopen("/dev/null", "w");
  require(file != nullptr, "cannot open /dev/null");
  for (; times > 0; --times)
    require(KZCITnsServiceDisplay(literal.service(), file) == 0, "no display");
  std::fclose(file);
}

void read_link_string(long times) {
  const Built literal(bench::compact_literal);
  char link[KZCI_DBLINK_SIZE];
  sb4 length = 0;
  for (; times > 0; --times)
    require(KZCITnsServiceDblinkGet(literal.service(), link, &length) == 0, "no link string");
}

void read_session_data(long times) {
  const Built literal(
      "(DESCRIPTION=(CONNECT_DATA=(SERVICE_NAME=orders)(KZ_USER_EXTRA_INFO=sales)"
      "(SESSION_VARIABLE=time_zone)(KZ_MODE=2)))");
  char info[KZCI_EXTRA_INFO_SIZE];
  char variable[KZCI_SESSION_VARIABLE_SIZE];
  sb4 info_length = 0;
  sb4 mode = 0;
  sb4 variable_length = 0;
  for (; times > 0; --times)
    require(KZCITnsServiceExtraInfoGet(literal.service(), info, &info_length, &mode, variable,
                                       &variable_length) == 0,
            "no session data");
}

void write_slow_sql(long times) {
  constexpr sb8 buffer_size = 65536;
  KZCISLowSQL reports = {};
  require(KZCISlowSQLBufferInit(&reports, buffer_size) == 0, "no slow-SQL buffer");
  for (; times > 0; --times)
    require(KZCISlowSQLWrite(&reports, "%s took %d ms on %s\n",
                             "select name, amount from orders where customer = 4711", 230,
                             "db1.example.com") == 0,
            "a slow-SQL report is refused");
  KZCISlowSQLBufferClear(&reports);
}

struct Operation {
  std::string_view name;
  void (*repeat)(long times);
};

constexpr Operation operations[] = {
    {"entry_passed_over", pass_over},
    {"first_entry", build_first},
    {"literal_of_179", build_compact},
    {"literal_of_231", build_spaced},
    {"display", display},
    {"link_string", read_link_string},
    {"session_data", read_session_data},
    {"slow_sql_write", write_slow_sql},
};

// The names of all operations, a line each.
void print_operations() {
  for (const Operation &operation : operations) std::puts(operation.name.data());
}

}  // namespace

int main(int argc, char **argv) {
  if (argc == 2 && std::string_view(argv[1]) == "operations") {
    print_operations();
    return 0;
  }
  require(argc == 4, "usage: counts operations | counts OPERATION TIMES NAMES_FILE");
  ::setenv("KZCI_TNS_FILE", argv[3], 1);
  for (const Operation &operation : operations)
    if (operation.name == argv[1]) {
      operation.repeat(std::strtol(argv[2], nullptr, 10));
      return 0;
    }
  require(false, "there is no such operation");
}
