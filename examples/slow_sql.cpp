// What a client does with the reserved entry of its names file: hand the log
// settings to the logger, report the statements over the threshold through the
// slow-SQL buffer, and flush it from time to time.
//
//   KZCI_TNS_FILE=examples/tnsnames.ora slow_sql
#include <cstdio>

#include <kzoci/platform/default_logger.h>
#include <kzoci/oci_tnsname.hpp>

namespace {

struct Statement {
  int at_second;  // when it ended, on the program's clock
  const char *text;
  sb8 milliseconds;
};

// In place of the statements that a program runs.
constexpr Statement statements[] = {
    {1, "select * from orders", 450},
    {2, "select 1", 1},
    {3, "update stock set amount = amount - 1", 230},
    {40, "delete from carts where age > 30", 900},
    {41, "select count(*) from visits", 200},
};

bool set_up_log(const KZCISystemVariables &variables) {
  const kzoci_log_settings settings = {variables.log_level, variables.log_level_len,
                                       variables.log_path,  variables.log_path_len,
                                       variables.log_size,  variables.log_count};
  return kzoci_log_configure(&settings) == 0;
}

void run_statements(const KZCISystemVariables &variables, KZCISLowSQL &slow_sql) {
  int last_flush = 0;
  for (const Statement &statement : statements) {
    if (statement.milliseconds >= variables.slowsql_threshold)
      KZCISlowSQLWrite(&slow_sql, "%s: %lld ms\n", statement.text,
                       static_cast<long long>(statement.milliseconds));
    if (static_cast<ub4>(statement.at_second - last_flush) < slow_sql.flush_second) continue;
    KZCISlowSQLBufferFlush(&slow_sql);
    last_flush = statement.at_second;
  }
}

}  // namespace

int main() {
  kzoci::Tns tns;
  const kzoci::Result result = tns.look_up("KZCISYSTEMVARIABLES");
  if (!result) {
    std::fprintf(stderr, "slow_sql: the names file has no KZCISYSTEMVARIABLES\n");
    return 1;
  }
  const KZCISystemVariables &variables = result.service->sys_vars;
  if (!set_up_log(variables)) std::fprintf(stderr, "slow_sql: logging on standard error\n");

  KZCISLowSQL slow_sql = {};
  slow_sql.flush_second = variables.slowsql_flush_second;
  KZCISlowSQLBufferInit(&slow_sql, variables.slowsql_buffer_size);
  run_statements(variables, slow_sql);
  KZCISlowSQLBufferClear(&slow_sql);
  return 0;
}
