// The rows that are measured on a platform that drops the log.
#include "rows.h"
#include "support/measure.h"

namespace {

void add_rows() {
  bench::add_lookup_rows();
  bench::add_thread_rows();
  bench::add_literal_rows();
  bench::add_record_rows();
  bench::add_slow_sql_rows();
  bench::add_growth_rows();
#ifdef KZOCI_BENCH_LIBPQ
  bench::add_libpq_rows();
#endif
}

}  // namespace

int main(int argc, char **argv) { return bench::run_rows(argc, argv, add_rows); }
