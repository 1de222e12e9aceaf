// The slow-SQL buffer's operations in any order, beside a plain buffer.
//
//   input      := { operation }
//   operation  := i size | w length | p length { byte } | d length | f | c | a
//
// i initialises, w writes a report of so many letters, p a report that quotes the
// bytes after, d a number in a field of so many characters, f flushes, c clears,
// a makes the next allocation fail. Sizes and lengths are two digits to the base
// of 64; sizes may be negative.
#include <algorithm>
#include <string>
#include <vector>

#include "fuzz/support/check.h"
#include "fuzz/support/fuzz_platform.h"
#include "fuzz/support/input.h"
#include "fuzz/support/target.h"
#include "kzoci/oci_tnsname.h"

namespace {

using fuzz::check;

constexpr std::string_view operations = "iwpdfca";
constexpr std::size_t longest_report = 4096;
constexpr std::size_t largest_buffer = 16384;  // that two digits can ask for
constexpr int most_operations = 256;           // of one input
constexpr ub4 flush_second = 17;

// The buffer as a string, and the records that it should have logged.
class PlainBuffer {
 public:
  sword init(sb8 size, bool has_memory) {
    text_.clear();
    length_ = has_memory ? std::max<sb8>(size, 0) : 0;
    return has_memory || size <= 0 ? 0 : -2;
  }

  sword flush() {
    if (length_ == 0) return -2;
    if (!text_.empty()) records_.push_back("SLOWSQL:" + kept());
    text_.clear();
    return 0;
  }

  sword write(const std::string &report) {
    if (length_ == 0) return -2;
    if (is_full_with(report.size())) flush();
    text_ += report;
    if (is_full_with(0)) flush();
    return 0;
  }

  sword clear() {
    flush();
    length_ = 0;
    return 0;
  }

  void check_state(const KZCISLowSQL &slowsql) {
    check(fuzz::take_slow_sql() == records_, "other records are logged");
    records_.clear();
    check((slowsql.buffer != nullptr) == (length_ > 0) && slowsql.buffer_length == length_,
          "buffer of %lld characters, should be %lld",
          static_cast<long long>(slowsql.buffer_length), static_cast<long long>(length_));
    check(slowsql.buffer_pos == static_cast<sb8>(text_.size()), "position %lld, should be %zu",
          static_cast<long long>(slowsql.buffer_pos), text_.size());
    check(slowsql.buffer_pos <= std::max<sb8>(length_ - 2, 0), "position %lld of %lld",
          static_cast<long long>(slowsql.buffer_pos), static_cast<long long>(length_));
    check(length_ == 0 || slowsql.buffer == text_, "other text is in the buffer");
    check(slowsql.flush_second == flush_second, "the interval changes");
  }

 private:
  bool is_full_with(std::size_t more) const {
    return static_cast<sb8>(text_.size() + more) >= length_ - 1;
  }

  // What is left of a text that has been cut to the buffer, up to its end.
  std::string kept() const { return text_.substr(0, static_cast<std::size_t>(length_ - 1)); }

  sb8 length_ = 0;
  std::string text_;
  std::vector<std::string> records_;
};

struct Report {
  std::string text;
  sword status;
};

// The alphabet over and over.
std::string letters(std::size_t length) {
  std::string out(length, '\0');
  for (std::size_t i = 0; i < length; ++i) out[i] = static_cast<char>('a' + i % 26);
  return out;
}

std::size_t length_of(fuzz::Input &input) {
  return std::min(static_cast<std::size_t>(std::max(input.number(), 0)), longest_report);
}

Report write_letters(KZCISLowSQL &slowsql, fuzz::Input &input) {
  const std::string text = letters(length_of(input));
  return {text, KZCISlowSQLWrite(&slowsql, "%s", text.c_str())};
}

// Quotes from a block of the exact size; a zero byte ends the quotation.
Report write_quotation(KZCISLowSQL &slowsql, fuzz::Input &input) {
  const fuzz::HeapText quoted(input.take(length_of(input)));
  const std::string_view text = quoted.view();
  const std::string printed(text.substr(0, text.find('\0')));
  return {"[" + printed + "]\n",
          KZCISlowSQLWrite(&slowsql, "[%.*s]\n", static_cast<int>(quoted.size()), quoted.data())};
}

Report write_number(KZCISLowSQL &slowsql, fuzz::Input &input) {
  const std::size_t width = length_of(input);
  const std::string text = std::string(std::max<std::size_t>(width, 2) - 2, ' ') + "42";
  return {text, KZCISlowSQLWrite(&slowsql, "%*d", static_cast<int>(width), 42)};
}

// Gives the status, and in expected the status that it should be.
sword run_one(char operation, KZCISLowSQL &slowsql, PlainBuffer &plain, fuzz::Input &input,
              sword *expected) {
  switch (operation) {
    case 'i': {
      const sb8 size = input.number();
      const sword status = KZCISlowSQLBufferInit(&slowsql, size);
      const bool has_memory = !fuzz::allocation_has_failed();
      fuzz::fail_allocation(0);
      *expected = plain.init(size, has_memory);
      return status;
    }
    case 'f':
      *expected = plain.flush();
      return KZCISlowSQLBufferFlush(&slowsql);
    case 'c':
      *expected = plain.clear();
      return KZCISlowSQLBufferClear(&slowsql);
    case 'a':
      fuzz::fail_allocation(1);
      *expected = 0;
      return 0;
    default: {
      const Report report = operation == 'w'   ? write_letters(slowsql, input)
                            : operation == 'p' ? write_quotation(slowsql, input)
                                               : write_number(slowsql, input);
      *expected = plain.write(report.text);
      return report.status;
    }
  }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  fuzz::Input input(data, size);
  const fuzz::Run run({fuzz::Input(data, size).rest(), letters(26) + "[]\n 42"}, largest_buffer);
  KZCISLowSQL slowsql = {};
  slowsql.flush_second = flush_second;
  PlainBuffer plain;
  for (int i = 0; i < most_operations && !input.empty(); ++i) {
    const auto byte = static_cast<char>(input.byte());
    const bool is_known = operations.find(byte) != std::string_view::npos;
    const char operation =
        is_known ? byte : operations[static_cast<unsigned char>(byte) % operations.size()];
    sword expected = 0;
    const sword status = run_one(operation, slowsql, plain, input, &expected);
    check(status == expected, "operation %c: status %d, should be %d", operation, status, expected);
    plain.check_state(slowsql);
  }
  check(KZCISlowSQLBufferClear(&slowsql) == 0 && slowsql.buffer == nullptr, "not cleared");
  return 0;
}
