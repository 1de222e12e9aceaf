// The report that the slow-SQL rows write, and a buffer that takes it.
#pragma once

#include "kzoci/oci_tnsname.h"
#include "support/measure.h"

// A format and its arguments.
#define SLOW_SQL_REPORT_FORMAT "%s took %d ms on %s\n"
#define SLOW_SQL_REPORT_ARGUMENTS \
  "select name, amount from orders where customer = 4711 and day > 20", 230, "db1.example.com"
#define SLOW_SQL_REPORT SLOW_SQL_REPORT_FORMAT, SLOW_SQL_REPORT_ARGUMENTS

namespace bench {

constexpr sb8 slow_sql_buffer_size = 65536;

class SlowSqlBuffer {
 public:
  SlowSqlBuffer() {
    if (KZCISlowSQLBufferInit(&slow_sql_, slow_sql_buffer_size) != 0) fail("no slow-SQL buffer");
  }
  ~SlowSqlBuffer() { KZCISlowSQLBufferClear(&slow_sql_); }
  SlowSqlBuffer(const SlowSqlBuffer &) = delete;
  SlowSqlBuffer &operator=(const SlowSqlBuffer &) = delete;

  void write() {
    if (KZCISlowSQLWrite(&slow_sql_, SLOW_SQL_REPORT) != 0) fail("a slow-SQL report is refused");
  }

 private:
  KZCISLowSQL slow_sql_ = {};
};

}  // namespace bench
