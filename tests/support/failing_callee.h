// Functions of the module that fail when a test says so. The module is a shared library
// here, whose calls find the stand-ins of the program first.
#pragma once

#include <cstddef>
#include <string>

#include "kzoci/oci_tnsname.h"
#include "lookup_fixture.h"

namespace failing_callee {

using support::Lines;

// Functions with a stand-in.
enum Callee {
  service_init,
  description_init,
  address_list_init,
  address_init,
  connect_data_init,
  blacklist_init,
  variables_init,
  get_key_type,
  check_buffer,
  parse_blank,
  address_clear,
  connect_data_clear,
  variables_clear,
  address_display,
  connect_data_display,
  variables_display,
  slow_sql_flush,
  format_text,
  callee_count
};

// The n-th call from now on fails with this status, and does nothing else.
void fail_call(Callee callee, std::size_t n, sword status);

// Calls since the last fail_call.
std::size_t calls_of(Callee callee);

// From now on, what the last token is after a search for blanks.
void change_token_after_blanks(KZCITnsTokenType type);

// Whether every failure that was planned has come about.
bool all_struck();

// Nothing fails any more.
void forget_failures();

// A failure's status goes up unchanged, whatever it is; the end of the input has
// a meaning of its own further up.
inline constexpr sword end_of_input = 100;
inline constexpr sword statuses[] = {-1, -2, 42, end_of_input};

// The lines with the failure's status in place of "STATUS".
inline Lines with_status(Lines lines, sword status) {
  const std::string mark = "STATUS";
  for (std::string &line : lines)
    if (const auto at = line.find(mark); at != std::string::npos)
      line.replace(at, mark.size(), std::to_string(status));
  return lines;
}

// Nothing fails when a test begins and when it ends.
class FailingCallee : public support::LookupTest {
 protected:
  void SetUp() override {
    LookupTest::SetUp();
    begin();
  }

  void TearDown() override {
    EXPECT_TRUE(all_struck());
    forget_failures();
    LookupTest::TearDown();
  }

  void begin() {
    forget_failures();
    LookupTest::begin();
  }
};

}  // namespace failing_callee
