#include "text_lookup.h"

#include <algorithm>
#include <cstdio>
#include <memory>
#include <new>
#include <string_view>

#include "kzoci/oci_tnsname.hpp"
#include "trace/platform.h"

namespace kztns {
namespace {

// Takes pieces off the text that is left. Unlike fmemopen's, the stream goes on after a
// zero byte.
ssize_t read_piece(void *cookie, char *buffer, std::size_t size) {
  auto &rest = *static_cast<std::string_view *>(cookie);
  const std::size_t length = std::min(size, rest.size());
  std::copy_n(rest.data(), length, buffer);
  rest.remove_prefix(length);
  return static_cast<ssize_t>(length);
}

struct Closed {
  void operator()(std::FILE *file) const { std::fclose(file); }
};

Outcome outcome_of(const kzoci::Result &result) {
  switch (result.outcome) {
    case kzoci::Outcome::found:
      return Outcome::found;
    case kzoci::Outcome::not_found:
      return Outcome::not_found;
    default:
      return Outcome::malformed;
  }
}

}  // namespace

Outcome look_up_in_text(const std::string &identifier, const std::string &text) {
  char buffer[4096];
  std::string_view rest = text;
  const std::unique_ptr<std::FILE, Closed> file(
      fopencookie(&rest, "r", {read_piece, nullptr, nullptr, nullptr}));
  if (file == nullptr) throw std::bad_alloc();
  // A stream that gets no memory of its own would end the text at its beginning.
  std::setvbuf(file.get(), buffer, _IOFBF, sizeof buffer);
  const AllocationScope scope;
  kzoci::Tns tns;
  const kzoci::Result result = tns.look_up_in(file.get(), identifier);
  scope.require_memory();
  return outcome_of(result);
}

}  // namespace kztns
