// What the trace of a build means for people.
#pragma once

#include <functional>

#include "rules/fix.h"
#include "rules/rules.h"
#include "scan/file_scan.h"

namespace kztns {

// Where a traced text comes from.
struct Subject {
  const NamesText &text;
  std::string_view noun;  // what the text is: "file", "text" or "entry"
  // For fixes of an entry:
  Offset end = ~Offset{0};  // where it ends at the latest
  bool last = true;         // whether no entry comes after it
  // Whether no entry has a name; unset where names cannot be given.
  std::function<bool(std::string_view)> is_free = {};
};

// What is wrong, before it is a finding of the file: the rule, the place and the words.
struct Diagnosis {
  Rule rule;
  Offset at;
  std::string text;
  std::string remedy = {};  // empty: the rule's own
  Fix fix = {};
  std::string path = {};  // of the block in an entry
};

// Explains the trace's fault, of which there is one; name is the entry's.
Diagnosis diagnose(const Subject &subject, const Trace &trace, std::string_view name);

// A token as a message quotes it.
std::string quoted_token(const Subject &subject, Offset at);

// The first invisible character of a text, "\xc2\xa0" for
// example; empty for none.
std::string_view odd_character(std::string_view text);

}  // namespace kztns
