// Slow-SQL reports through the default logger to a file: collected in a buffer,
// against one log record each. A program of its own, because the other rows
// replace the logger.
#include <memory>
#include <string>

#include "kzoci/platform/default_logger.h"
#include "slow_sql_report.h"
#include "support/measure.h"

namespace {

void log_to_file() {
  const std::string path = (bench::options().files / "slow_sql.log").string();
  constexpr sb8 file_size = 64 << 20;
  const kzoci_log_settings settings = {nullptr,   0, path.c_str(), static_cast<ub4>(path.size()),
                                       file_size, 1};
  if (kzoci_log_configure(&settings) != 0) bench::fail("cannot log to " + path);
}

bench::Costs batch_costs() {
  log_to_file();
  const auto buffer = std::make_shared<bench::SlowSqlBuffer>();
  const auto log_one = [] {
    kzoci_log_inner(LOG_LEVEL_SLOWSQL, __FILE__, __LINE__, "SLOWSQL:" SLOW_SQL_REPORT);
  };
  return {bench::cost_of(bench::repeat([buffer] { buffer->write(); })),
          bench::cost_of(bench::repeat(log_one))};
}

void add_rows() {
  bench::add_row({.name = "slow-SQL write to a file / one log record each",
                  .unit = "report",
                  .setup = batch_costs});
}

}  // namespace

int main(int argc, char **argv) { return bench::run_rows(argc, argv, add_rows); }
