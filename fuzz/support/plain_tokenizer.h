// The tests' plain tokenizer with the operations, the statuses and the state of the
// module's one.
#pragma once

#include <cstddef>
#include <string_view>

#include "kzoci/oci_tnsname.h"
#include "tests/support/model_input.h"

namespace fuzz {

class PlainTokenizer {
 public:
  explicit PlainTokenizer(std::string_view text) : input_(text) {}

  // Each returns the status of the operation that it stands for.
  sword check_buffer();
  sword parse_blank();
  sword parse_key();
  sword parse(KZCITnsTokenType expected);
  sword service_skip();

  // Ends the process when the parse state is not what it should be by now.
  void check_state(const KZCITnsParseParams &params) const;

  std::size_t position() const { return input_.position(); }
  std::string_view key() const { return input_.word(); }

 private:
  model::Input input_;
};

}  // namespace fuzz
