// What the page's worker calls: one message in, those that come of it out.
#include <cstddef>
#include <string>

#include "page/page.h"

namespace {

kztns::Page &page() {
  static kztns::Page only;
  return only;
}

std::string &last_answer() {
  static std::string answer;
  return answer;
}

}  // namespace

// The answer is there until the next call.
extern "C" const char *kztns_answer(const char *message, std::size_t length) {
  last_answer() = page().answer(std::string(message, length));
  return last_answer().data();
}

extern "C" std::size_t kztns_answer_length() { return last_answer().size(); }
