// Passing over an entry of the file that is not the one looked up.
#include <algorithm>
#include <cstring>

#include "balance.h"
#include "log.h"
#include "reserved_entry.h"
#include "status.h"
#include "tokenizer.h"

using namespace kzoci::tns;

namespace {

// Whether the entry ends the scan: its name is the reserved one, or any leading part of it, an
// empty name too, in capitals. The terminating zero byte is compared as well, so that a longer name
// never counts.
bool ends_scan(const KZCITnsParseParams &params) {
  const std::size_t length = std::min<std::size_t>(params.tns_key_len, sizeof reserved_name);
  if (length > 0 && params.tns_key[0] != reserved_name[0]) return false;  // most names
  return std::memcmp(params.tns_key, reserved_name, length) == 0;
}

// Consumes the "(" that the entry begins with.
sword begin_body(KZCITnsParseParams *params) {
  pass_plain_blanks(*params);
  if (take_sign(params, TNS_LEFT_PARENTHESES)) return success;
  return reported(KZCITnsParse(params, TNS_LEFT_PARENTHESES), message::token_failed);
}

// Consumes characters until the depth is 0 (true) or the buffer's end (false).
bool pass_balanced(KZCITnsParseParams &params, sb8 &depth) {
  const char *const end = params.tns_buffer + params.buffer_len;
  const char *const after_close = find_close(params.tns_buffer + params.buffer_pos, end, depth);
  params.buffer_pos =
      static_cast<ub4>((after_close != nullptr ? after_close : end) - params.tns_buffer);
  return after_close != nullptr;
}

}  // namespace

sword KZCITnsServiceSkip(KZCITnsParseParams *parse_params) {
  if (parse_params == nullptr) {
    KZ_LOG(message::null_parse_state, parse_params);
    return invalid_handle;
  }
  if (ends_scan(*parse_params)) {
    parse_params->is_eof = 1;
    return success;
  }
  sword status = begin_body(parse_params);
  if (status != success) return status;
  sb8 depth = 1;
  do {
    status = need_character(parse_params, message::refill_failed);
    if (status != success) return status;
  } while (!pass_balanced(*parse_params, depth));
  return success;
}
