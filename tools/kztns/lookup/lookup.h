// One lookup, as a program would make it.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "io/memory_file.h"
#include "io/read_file.h"
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

struct LookupOptions {
  std::optional<std::string> file = {};  // absent: the one that the environment chooses
  bool from_input = false;               // standard input is read, and file is what reports call it
  std::uint64_t max_size = default_max_size;
  std::optional<log_level> shown = {};  // records from this level on go to standard error
};

enum class Outcome {
  found,
  not_found,
  malformed,
  unreadable  // the names file is there, but cannot be read: nothing was looked up
};

struct Lookup {
  Outcome outcome = Outcome::not_found;
  bool is_literal = false;                    // the identifier is a descriptor itself
  std::string variable = {};                  // that chose the names file; empty for none
  std::optional<std::string> file_name = {};  // absent when no variable names one
  // What the file held when it was read, once: a pipe can be read no second time.
  std::shared_ptr<const MemoryFile> content = {};
  std::string file_note = {};  // that its path is cut; empty where it is not
  ReadFault file_fault = {};   // why there is no content of a file that is named
  std::string fault = {};      // of malformed input, the log's words for it
};

// Builds the identifier's service into the tree.
Lookup look_up(const std::string &identifier, const LookupOptions &options, Tree &tree);

// The same where a names file of that text is the one that lookups read.
Lookup look_up_in(const std::string &text, const std::string &identifier, Tree &tree);

// The link string of the service that was built; empty when it has none.
std::string link_string(Tree &tree);

}  // namespace kztns
