// The tokenizer once more, made to be obviously right: it has the whole input as
// one text and looks at one character at a time.
#pragma once

#include <cstddef>
#include <string_view>

#include "kzoci/oci_tnsname.h"

namespace fuzz {

class PlainTokenizer {
 public:
  explicit PlainTokenizer(std::string_view text) : text_(text) {}

  // Each returns the status of the operation that it stands for.
  sword check_buffer();
  sword parse_blank();
  sword parse_key();
  sword parse(KZCITnsTokenType expected);
  sword service_skip();

  // Ends the process when the parse state is not what it should be by now.
  void check_state(const KZCITnsParseParams &params) const;

  std::size_t position() const { return at_; }
  std::string_view key() const { return {key_, key_length_}; }

 private:
  bool has_character() { return check_buffer() == 0; }

  std::string_view text_;
  std::size_t at_ = 0;      // next character
  std::size_t loaded_ = 0;  // end of the part that has been read
  bool is_eof_ = false;
  bool is_comment_ = false;
  KZCITnsTokenType last_token_ = TNS_EQUAL_SIGN;
  char key_[sizeof(KZCITnsParseParams::tns_key)] = {};
  std::size_t key_length_ = 0;
};

}  // namespace fuzz
