// One lookup, as a program would make it.
#pragma once

#include <optional>
#include <string>

#include "kzoci/oci_tnsname.h"

namespace kztns {

// A container that is released with its owner.
class Tree {
 public:
  Tree() { KZCITnsInit(&tns_); }
  ~Tree() { KZCITnsClear(&tns_); }
  Tree(const Tree &) = delete;
  Tree &operator=(const Tree &) = delete;

  KZCITns *get() { return &tns_; }
  KZCITnsService *service() { return tns_.tns_service; }

 private:
  KZCITns tns_;
};

enum class Outcome { found, not_found, malformed };

struct Lookup {
  Outcome outcome;
  bool is_literal;                       // the identifier is a descriptor itself
  std::string variable;                  // that chose the names file; empty for none
  std::optional<std::string> file_name;  // absent when no variable names one
  std::string fault;                     // of malformed input, the log's words for it
};

// Builds the identifier's service into the tree. Records from the given level on
// are shown on standard error.
Lookup look_up(const std::string &identifier, std::optional<log_level> shown, Tree &tree);

}  // namespace kztns
