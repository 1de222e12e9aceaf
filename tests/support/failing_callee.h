// Functions of the module that fail when a test says so. The linker puts a
// stand-in in front of each (--wrap); it sees the calls from one object file to
// another.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <iterator>
#include <string>

#include "kzoci/oci_tnsname.h"
#include "parsing.h"

namespace failing_callee {

using support::operator+;
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

inline std::ptrdiff_t open_files() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"),
                       std::filesystem::directory_iterator());
}

inline Lines release(const std::string &tag) { return {"FREE " + tag}; }

// Works in a folder of its own, so that the name of the file is short and known.
class FailingCallee : public testing::Test {
 protected:
  void SetUp() override {
    start_ = std::filesystem::current_path();
    std::filesystem::current_path(folder_.path());
    environment_.set("KZCI_TNS_FILE", "names.ora");
    begin();
  }

  void TearDown() override {
    EXPECT_TRUE(all_struck());
    EXPECT_EQ(support::bad_releases(), 0u);
    begin();
    std::filesystem::current_path(start_);
  }

  void begin() {
    support::reset_platform();
    forget_failures();
    KZCITnsInit(&tns_);
  }

  void names_file(const std::string &text) { folder_.write("names.ora", text); }

  // What happened since the given number of events.
  static Lines since(std::size_t count) {
    const Lines all = support::events();
    return Lines(all.begin() + static_cast<std::ptrdiff_t>(count), all.end());
  }

  support::Environment environment_;
  support::TemporaryFolder folder_;
  std::filesystem::path start_;
  KZCITns tns_;
};

}  // namespace failing_callee
