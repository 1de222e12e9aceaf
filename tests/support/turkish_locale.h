// A locale in which "i" and "I" are no pair, for comparisons that must not follow it.
#pragma once

#include <cctype>
#include <clocale>
#include <cstdlib>

#include "system_calls.h"

namespace support {

// In force until it goes out of scope.
class TurkishLocale {
 public:
  TurkishLocale() {
    setenv("LOCPATH", KZOCI_TEST_LOCALES, 1);
    is_in_force_ =
        std::setlocale(LC_ALL, "tr_TR.ISO-8859-9") != nullptr && std::toupper('i') != 'I';
  }
  ~TurkishLocale() {
    std::setlocale(LC_ALL, "C");
    unsetenv("LOCPATH");
  }
  TurkishLocale(const TurkishLocale &) = delete;
  TurkishLocale &operator=(const TurkishLocale &) = delete;

  bool is_in_force() const { return is_in_force_; }

 private:
  bool is_in_force_;
};

}  // namespace support
