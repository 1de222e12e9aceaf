// A slow-SQL report against the two formatter calls that it is made of. Batches
// are dropped by the log.
#include <cstdarg>
#include <cstdio>
#include <memory>

#include "kzoci/oci_tnsname.h"
#include "rows.h"
#include "slow_sql_report.h"
#include "support/measure.h"

namespace bench {

namespace {

// Formats once for the length and once for the text, after the text that is there.
class BarePair {
 public:
  [[gnu::format(printf, 2, 3)]] void write(const char *format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int length = std::vsnprintf(nullptr, 0, format, arguments);
    va_end(arguments);
    if (at_ + length >= slow_sql_buffer_size) at_ = 0;
    va_start(arguments, format);
    at_ += std::vsnprintf(buffer_ + at_, static_cast<std::size_t>(slow_sql_buffer_size - at_),
                          format, arguments);
    va_end(arguments);
  }

 private:
  char buffer_[slow_sql_buffer_size];
  sb8 at_ = 0;
};

Costs write_costs() {
  const auto buffer = std::make_shared<SlowSqlBuffer>();
  const auto pair = std::make_shared<BarePair>();
  return {cost_of(repeat([buffer] { buffer->write(); })),
          cost_of(repeat([pair] { pair->write(SLOW_SQL_REPORT); }))};
}

}  // namespace

void add_slow_sql_rows() {
  add_row({.name = "slow-SQL write / two vsnprintf", .unit = "report", .setup = write_costs});
}

}  // namespace bench
