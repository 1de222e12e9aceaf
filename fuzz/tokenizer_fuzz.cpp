// The tokenizer's operations in any order, beside a plain tokenizer, on the input
// as a text and as a file.
//
//   input      := operations LF text
//   operations := { b buffer | w blanks | k key | ( | ) | = | K key token
//                 | t key type | s skip }
//
// The operations are repeated as long as that consumes something, up to a limit.
#include <algorithm>
#include <cctype>
#include <string>

#include "fuzz/support/check.h"
#include "fuzz/support/fuzz_platform.h"
#include "fuzz/support/input.h"
#include "fuzz/support/plain_tokenizer.h"
#include "fuzz/support/target.h"
#include "tests/support/keys.h"
#include "tests/support/parsing.h"

namespace {

using fuzz::check;
using fuzz::PlainTokenizer;

constexpr std::string_view operations = "bwkts()=K";
constexpr std::size_t longest_row = 64;       // of operations
constexpr std::size_t most_operations = 512;  // with all repetitions

char operation_of(char c) {
  return operations.find(c) != std::string_view::npos
             ? c
             : operations[static_cast<unsigned char>(c) % operations.size()];
}

KZCITnsTokenType type_of(char operation) {
  if (operation == '(') return TNS_LEFT_PARENTHESES;
  if (operation == ')') return TNS_RIGHT_PARENTHESES;
  return operation == '=' ? TNS_EQUAL_SIGN : TNS_KEY;
}

bool is_key_word(std::string word) {
  std::transform(word.begin(), word.end(), word.begin(),
                 [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  return std::any_of(std::begin(support::keys), std::end(support::keys),
                     [&word](const support::Key &key) { return key.word == word; });
}

// Looking up a key consumes nothing and fails for no key.
sword check_key_type(KZCITnsParseParams &params, const PlainTokenizer &plain) {
  const sword status = KZCITnsGetKeyType(&params);
  check(params.key_type >= LB_ERROR_KEY && params.key_type < LB_MAX_KEY_TYPE, "key type %d",
        params.key_type);
  check((params.key_type != LB_ERROR_KEY) == is_key_word(std::string(plain.key())),
        "key type %d for \"%.*s\"", params.key_type, static_cast<int>(plain.key().size()),
        plain.key().data());
  return status;
}

sword run(char operation, KZCITnsParseParams &params) {
  switch (operation) {
    case 'b':
      return KZCITnsCheckBuffer(&params);
    case 'w':
      return KZCITnsParseBlank(&params);
    case 'k':
      return KZCITnsParseKey(&params);
    case 's':
      return KZCITnsServiceSkip(&params);
    default:
      return KZCITnsParse(&params, type_of(operation));
  }
}

sword run(char operation, PlainTokenizer &plain) {
  switch (operation) {
    case 'b':
      return plain.check_buffer();
    case 'w':
      return plain.parse_blank();
    case 'k':
      return plain.parse_key();
    case 's':
      return plain.service_skip();
    default:
      return plain.parse(type_of(operation));
  }
}

void run_beside(char operation, KZCITnsParseParams &params, PlainTokenizer &plain) {
  const std::size_t before = plain.position();
  const bool looks_up = operation == 't';
  const sword status = looks_up ? check_key_type(params, plain) : run(operation, params);
  const sword expected = looks_up ? 0 : run(operation, plain);
  check(status == expected, "operation %c at position %zu: status %d, should be %d", operation,
        before, status, expected);
  plain.check_state(params);
}

// Gives what stands for the log records.
std::uint64_t run_all(std::string_view chosen, KZCITnsParseParams &params, std::string_view text) {
  PlainTokenizer plain(text);
  fuzz::take_log_fingerprint();
  std::size_t done = 0;
  for (bool has_moved = true; has_moved && done < most_operations; done += chosen.size()) {
    const std::size_t before = plain.position();
    for (const char c : chosen) run_beside(operation_of(c), params, plain);
    has_moved = plain.position() > before;
  }
  return fuzz::take_log_fingerprint();
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  fuzz::Input input(data, size);
  const std::string_view chosen = input.line().substr(0, longest_row);
  const std::string_view body = input.rest();
  const fuzz::Run run({body});
  support::DescriptorState text(body);
  support::FileState file(body);
  const std::uint64_t log_of_text = run_all(chosen, text.params, body);
  const std::uint64_t log_of_file = run_all(chosen, file.params, body);
  check(log_of_text == log_of_file, "a file is reported otherwise than a text");
  return 0;
}
