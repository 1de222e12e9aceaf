#include "items.h"

#include <cstring>

#include "kzoci/platform/my_strtoll10.h"

namespace kzoci::tns {

sword identify_key(KZCITnsParseParams *params) {
  const sword status = KZCITnsGetKeyType(params);
  if (status != success) {
    KZ_LOG_ERROR("fail to get key type, status:%d", status);
    return status;
  }
  if (params->key_type == LB_ERROR_KEY) {
    KZ_LOG_ERROR("get error key type");
    return failure;
  }
  return success;
}

sword begin_item(KZCITnsParseParams *params, const char *key_type_format) {
  sword status = expect(params, TNS_LEFT_PARENTHESES);
  if (status == success) status = expect(params, TNS_KEY);
  if (status == success) status = identify_key(params);
  if (status == success) status = expect(params, TNS_EQUAL_SIGN);
  if (status == success) KZ_LOG_DEBUG(key_type_format, params->key_type);
  return status;
}

sword read_integer(KZCITnsParseParams *params, sb8 *number) {
  // What my_strtoll10 reports for an accepted number, and for a negative one.
  constexpr int converted = 0;
  constexpr int converted_negative = -1;

  const sword status = expect(params, TNS_KEY);
  const ub4 length = key_length(params);
  char *const text_end = params->tns_key + length;
  char *end = text_end;
  int error = converted;
  *number = my_strtoll10(params->tns_key, &end, &error);
  if ((error == converted || error == converted_negative) && end == text_end) return status;
  KZ_LOG_ERROR("fail to covert to int, src value:%.*s", static_cast<int>(length), params->tns_key);
  return failure;
}

sword read_text(KZCITnsParseParams *params, char *field, ub4 *length, ub4 limit, TextCopy copy) {
  const sword status = expect(params, TNS_KEY);
  if (status != success || params->tns_key_len > limit) {
    KZ_LOG_ERROR("fail to parse string value");
    return status;
  }
  *length = params->tns_key_len;
  if (copy == TextCopy::string)
    std::strncpy(field, params->tns_key, params->tns_key_len);
  else
    std::memcpy(field, params->tns_key, params->tns_key_len);
  return success;
}

}  // namespace kzoci::tns
