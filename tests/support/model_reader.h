// A second reader of the grammar, made to be obviously right: it has the whole
// input as one text and predicts what a lookup builds, what it returns, what it logs and
// which blocks it leaves allocated, also when memory or the file ends half-way.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "kzoci/oci_tnsname.h"
#include "model_log.h"
#include "model_tree.h"

namespace model {

struct Prediction {
  sword status = 0;
  boolean find = 0;
  std::string tree = text_of_nothing();
  std::size_t allocations = 0;  // asked for, the failing one too
  Blocks live = {};             // allocated after the lookup, sorted
  Blocks lost = {};             // those of them that nobody can release

  bool operator==(const Prediction &other) const = default;
};

// What goes wrong.
struct Fault {
  std::size_t input_end = std::string::npos;  // where the names file is cut off
  std::size_t allocation = 0;                 // the one that fails; 0 for none
};

// KZCITnsBuild on an empty container, with a names file of this text. When the log is
// wanted, the environment names the file by KZCI_TNS_FILE.
Prediction predict(std::string_view identifier, std::string_view names_file,
                   const Fault &fault = {}, Lines *log = nullptr);

// KZCITnsBuildDes on an empty container, with any text.
Prediction predict_literal(std::string_view text, const Fault &fault = {}, Lines *log = nullptr);

}  // namespace model
