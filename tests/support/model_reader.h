// A second reader of the grammar, made to be obviously right: it has the whole
// input as one text, knows no refills, and predicts what a lookup builds, what
// it returns and which blocks it leaves behind.
#pragma once

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
  // Blocks that nobody can release, by their tags, sorted.
  Tags lost = {};
  // Error records about values, in their order.
  std::vector<std::string> complaints = {};

  bool operator==(const Prediction &other) const = default;
};

// KZCITnsBuild on an empty container, with a names file of this text.
Prediction predict(std::string_view identifier, std::string_view names_file);

// KZCITnsBuildDes on an empty container, with any text.
Prediction predict_literal(std::string_view text);

}  // namespace model
