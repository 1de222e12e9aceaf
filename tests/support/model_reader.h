// A second reader of the grammar, made to be obviously right: it has the whole
// input as one text, knows no refills, and predicts what a lookup builds, what
// it returns and which blocks it leaves allocated, also when memory or the file
// ends half-way.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "kzoci/oci_tnsname.h"
#include "model_tree.h"

namespace model {

struct Prediction {
  sword status = 0;
  boolean find = 0;
  std::string tree = text_of_nothing();
  std::size_t allocations = 0;  // asked for, the failing one too
  Blocks live = {};             // allocated after the lookup, sorted
  Blocks lost = {};             // those of them that nobody can release
  // Error records about values, in their order.
  std::vector<std::string> complaints = {};

  bool operator==(const Prediction &other) const = default;
};

// What goes wrong.
struct Fault {
  std::size_t input_end = std::string::npos;  // where the names file is cut off
  std::size_t allocation = 0;                 // the one that fails; 0 for none
};

// KZCITnsBuild on an empty container, with a names file of this text.
Prediction predict(std::string_view identifier, std::string_view names_file,
                   const Fault &fault = {});

// KZCITnsBuildDes on an empty container, with any text.
Prediction predict_literal(std::string_view text, const Fault &fault = {});

}  // namespace model
