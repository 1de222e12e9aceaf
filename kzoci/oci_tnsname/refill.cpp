// Refilling the parse state's buffer from the file or the descriptor text.
#include <algorithm>
#include <cstdio>
#include <cstring>

#include "kzoci/oci_tnsname.h"
#include "log.h"
#include "status.h"

using namespace kzoci::tns;

namespace {

constexpr std::size_t slice = sizeof(KZCITnsParseParams::tns_buffer);

// A text whose length or offset makes no sense counts as read to its end.
ub4 read_description(KZCITnsParseParams &params) {
  const sb8 left = sb8{params.description_len} - params.description_offset;
  const auto count = static_cast<ub4>(std::clamp<sb8>(left, 0, slice));
  if (count > 0)
    std::memcpy(params.tns_buffer, params.description + params.description_offset, count);
  params.description_offset += static_cast<int>(count);
  return count;
}

ub4 read_file(KZCITnsParseParams &params) {
  return static_cast<ub4>(std::fread(params.tns_buffer, 1, slice, params.tns_file));
}

}  // namespace

sword KZCITnsCheckBuffer(KZCITnsParseParams *parse_params) {
  if (parse_params == nullptr) return invalid_handle;
  if (parse_params->buffer_pos < parse_params->buffer_len) return success;
  if (parse_params->is_eof == 1) return failure;
  KZ_LOG(message::reading, parse_params->mode);
  parse_params->buffer_len = parse_params->mode == TNS_MODE_DESCRIPTION
                                 ? read_description(*parse_params)
                                 : read_file(*parse_params);
  parse_params->buffer_pos = 0;
  if (parse_params->buffer_len > 0) return success;
  parse_params->is_eof = 1;
  return failure;
}
