// The rows of the benchmark, a group each; every function adds its own.
#pragma once

namespace bench {

void add_lookup_rows();
void add_thread_rows();
void add_literal_rows();
void add_record_rows();
void add_slow_sql_rows();
void add_growth_rows();
void add_libpq_rows();  // only where libpq is found

}  // namespace bench
