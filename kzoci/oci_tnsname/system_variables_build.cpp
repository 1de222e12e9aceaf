// One system variable of the reserved entry.
//
//   variable := SLOWSQL_THRESHOLD|SLOWSQL_BUFFER_SIZE|SLOWSQL_FLUSH_SECOND|LOG_SIZE|LOG_COUNT
//               "=" integer
//             | SESSION_VARIABLE|LOG_LEVEL|LOG_PATH "=" text
//             | any other key "=" value, which is passed over
#include <algorithm>

#include "items.h"

using namespace kzoci::tns;

namespace {

constexpr sb8 smallest_log_size = 0x100000;
constexpr sb8 largest_log_count = 4294967295;
constexpr ub4 max_log_text = 1025;

sword read_number(KZCITnsParseParams *params, const char *message, sb8 *field) {
  const sword status = read_integer(params, field);
  KZ_LOG_DEBUG(message, long_number(*field));
  return status;
}

sword read_flush_second(KZCISystemVariables &vars, KZCITnsParseParams *params) {
  sb8 number = 0;
  const sword status = read_integer(params, &number);
  vars.slowsql_flush_second = static_cast<ub4>(number);
  KZ_LOG_DEBUG("parse system variables get slowsql flush second:%" KZ_LD,
               long_number(vars.slowsql_flush_second));
  return status;
}

sword read_log_size(KZCISystemVariables &vars, KZCITnsParseParams *params) {
  const sword status = read_integer(params, &vars.log_size);
  vars.log_size = std::max(vars.log_size, smallest_log_size);
  KZ_LOG_DEBUG("parse system variables get log size:%" KZ_LD, long_number(vars.log_size));
  return status;
}

sword read_log_count(KZCISystemVariables &vars, KZCITnsParseParams *params) {
  sb8 number = 0;
  const sword status = read_integer(params, &number);
  vars.log_count = number <= largest_log_count ? static_cast<ub4>(number) : 0;
  // The count goes by the level's name; log readers know it so.
  KZ_LOG_DEBUG("parse system variables get log level:%" KZ_LD, long_number(vars.log_count));
  return status;
}

template <std::size_t capacity>
sword read_variable_text(KZCITnsParseParams *params, ub4 limit, const char *message,
                         char (&field)[capacity], ub4 *length) {
  const sword status = read_text(params, field, length, limit, TextCopy::string);
  KZ_LOG_DEBUG(message, precision(*length, capacity), field);
  return status;
}

sword pass_over_value(KZCITnsParseParams *params) {
  KZ_LOG_WARN("parse system variables get error key type:%d", params->key_type);
  expect(params, TNS_KEY);
  return success;
}

}  // namespace

sword KZCISystemVariablesBuild(KZCISystemVariables *sys_vars, KZCITnsParseParams *parse_params) {
  if (sys_vars == nullptr || parse_params == nullptr) return invalid_handle;
  switch (parse_params->key_type) {
    case LB_SLOWSQL_THRESHOLD:
      return read_number(parse_params, "parse system variables get slowsql threshold:%" KZ_LD,
                         &sys_vars->slowsql_threshold);
    case LB_SLOWSQL_BUFFER_SIZE:
      return read_number(parse_params, "parse system variables get slowsql buffer size:%" KZ_LD,
                         &sys_vars->slowsql_buffer_size);
    case LB_SLOWSQL_FLUSH_SECOND:
      return read_flush_second(*sys_vars, parse_params);
    case LB_SESSION_VARIABLE:
      return read_variable_text(parse_params, max_text,
                                "parse system variables get session variable:%.*s",
                                sys_vars->session_variable, &sys_vars->session_variable_len);
    case LB_LOG_SIZE:
      return read_log_size(*sys_vars, parse_params);
    case LB_LOG_LEVEL:
      return read_variable_text(parse_params, max_log_text,
                                "parse system variables get log level:%.*s", sys_vars->log_level,
                                &sys_vars->log_level_len);
    case LB_LOG_COUNT:
      return read_log_count(*sys_vars, parse_params);
    case LB_LOG_PATH:
      return read_variable_text(parse_params, max_log_text,
                                "parse system variables get log path:%.*s", sys_vars->log_path,
                                &sys_vars->log_path_len);
    default:
      return pass_over_value(parse_params);
  }
}
