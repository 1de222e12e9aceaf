#include "report/fingerprints.h"

#include <cstdio>

namespace kztns {
namespace {

// FNV-1a: the same on every machine, and good enough to tell lines apart.
class Hash {
 public:
  void add(char c) { value_ = (value_ ^ static_cast<unsigned char>(c)) * 0x100000001B3; }
  void add(std::string_view text) {
    for (const char c : text) add(c);
    add('\0');
  }
  std::uint64_t value() const { return value_; }

 private:
  std::uint64_t value_ = 0xCBF29CE484222325;
};

std::string without_blanks(std::string_view line) {
  std::string rest;
  for (const char c : line)
    if (c != ' ' && c != '\t') rest += c;
  return rest;
}

}  // namespace

std::string Fingerprints::next(const Finding &finding) {
  Hash hash;
  hash.add(row_of(finding.rule).id);
  hash.add(finding.entry);
  hash.add(finding.path);
  hash.add(without_blanks(finding.source));
  const int number = ++counts_[hash.value()];
  char text[40];
  std::snprintf(text, sizeof text, "%016llx:%d", static_cast<unsigned long long>(hash.value()),
                number);
  return text;
}

}  // namespace kztns
