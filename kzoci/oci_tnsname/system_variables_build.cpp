// One system variable of the reserved entry.
//
//   variable := SLOWSQL_THRESHOLD|SLOWSQL_BUFFER_SIZE|SLOWSQL_FLUSH_SECOND|LOG_SIZE|LOG_COUNT
//               "=" integer
//             | SESSION_VARIABLE|LOG_LEVEL|LOG_PATH "=" text
//             | any other key "=" value, which is passed over
#include "items.h"
#include "record_fields.h"

using namespace kzoci::tns;

namespace {

sword read_log_size(KZCISystemVariables &vars, KZCITnsParseParams *params) {
  return read_integer(params, [&](sb8 number) { vars.log_size = stored_log_size(number); });
}

sword read_log_count(KZCISystemVariables &vars, KZCITnsParseParams *params) {
  return read_integer(params, [&](sb8 number) { vars.log_count = stored_log_count(number); });
}

sword read_variable(const Key &key, KZCISystemVariables &vars, KZCITnsParseParams *params) {
  switch (key.type) {
    case LB_LOG_SIZE:
      return read_log_size(vars, params);
    case LB_LOG_COUNT:
      return read_log_count(vars, params);
    default:
      return read_value(key, params, &vars);
  }
}

// Logs what the field holds now, also when the value was refused.
void report_variable(const Key &key, const KZCISystemVariables &vars) {
  if (key.report.number != nullptr)
    KZ_LOG(*key.report.number, long_number(number_of(&vars, key.value.field)));
  if (key.report.text != nullptr) {
    const std::span<const char> text = text_of(&vars, key.value.field);
    KZ_LOG(*key.report.text, static_cast<int>(text.size()), text.data());
  }
}

sword pass_over_value(KZCITnsParseParams *params) {
  KZ_LOG(message::unknown_variable, params->key_type);
  expect(params, TNS_KEY);
  return success;
}

}  // namespace

sword KZCISystemVariablesBuild(KZCISystemVariables *sys_vars, KZCITnsParseParams *parse_params) {
  if (sys_vars == nullptr || parse_params == nullptr) return invalid_handle;
  const Key *const key = key_of(Block::system_variables, parse_params->key_type);
  if (key == nullptr) return pass_over_value(parse_params);
  const sword status = read_variable(*key, *sys_vars, parse_params);
  report_variable(*key, *sys_vars);
  return status;
}
