#include "failing_callee.h"

#include <dlfcn.h>

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <optional>

namespace failing_callee {
namespace {

struct Plan {
  std::size_t failing = 0;  // Number of the call, from 1 on; 0 for none.
  sword status = 0;
  std::size_t calls = 0;
};

std::array<Plan, callee_count> plans;
std::optional<KZCITnsTokenType> token_after_blanks;

bool fails_now(Callee callee) {
  Plan &plan = plans[callee];
  return ++plan.calls == plan.failing;
}

}  // namespace

void fail_call(Callee callee, std::size_t n, sword status) { plans[callee] = {n, status, 0}; }

std::size_t calls_of(Callee callee) { return plans[callee].calls; }

void change_token_after_blanks(KZCITnsTokenType type) { token_after_blanks = type; }

bool all_struck() {
  return std::all_of(plans.begin(), plans.end(),
                     [](const Plan &plan) { return plan.calls >= plan.failing; });
}

void forget_failures() {
  plans = {};
  token_after_blanks.reset();
}

}  // namespace failing_callee

using namespace failing_callee;

namespace {

// The module's own function of this name.
template <class Function>
Function *next(const char *name) {
  return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

}  // namespace

#define KZOCI_STAND_IN(callee, name, parameters, arguments)           \
  sword name parameters {                                             \
    static auto *const real = next<sword parameters>(#name);          \
    return fails_now(callee) ? plans[callee].status : real arguments; \
  }

extern "C" {

KZOCI_STAND_IN(service_init, KZCITnsServiceInit,
               (KZCITnsService * service, ub4 name_size, const char *name),
               (service, name_size, name))
KZOCI_STAND_IN(description_init, KZCIDescriptionInit, (KZCIDescription * des), (des))
KZOCI_STAND_IN(address_list_init, KZCIAddressListInit, (KZCIAddressList * list), (list))
KZOCI_STAND_IN(address_init, KZCIAddressInit, (KZCIAddress * address), (address))
KZOCI_STAND_IN(connect_data_init, KZCIConnectDataInit, (KZCIConnectData * data), (data))
KZOCI_STAND_IN(blacklist_init, KZCIBlacklistConfInit, (KZCIBlacklistConf * black), (black))
KZOCI_STAND_IN(variables_init, KZCISystemVariablesInit, (KZCISystemVariables * vars), (vars))
KZOCI_STAND_IN(get_key_type, KZCITnsGetKeyType, (KZCITnsParseParams * params), (params))
KZOCI_STAND_IN(address_clear, KZCIAddressClear, (KZCIAddress * address), (address))
KZOCI_STAND_IN(connect_data_clear, KZCIConnectDataClear, (KZCIConnectData * data), (data))
KZOCI_STAND_IN(variables_clear, KZCISystemVariablesClear, (KZCISystemVariables * vars), (vars))
KZOCI_STAND_IN(address_display, KZCIAddressDisplay, (KZCIAddress * address, FILE *file),
               (address, file))
KZOCI_STAND_IN(connect_data_display, KZCIConnectDataDisplay, (KZCIConnectData * data, FILE *file),
               (data, file))
KZOCI_STAND_IN(variables_display, KZCISystemVariablesDisplay,
               (KZCISystemVariables * vars, FILE *file), (vars, file))
KZOCI_STAND_IN(slow_sql_flush, KZCISlowSQLBufferFlush, (KZCISLowSQL * slowsql), (slowsql))

// Only refills count: readers need not ask while characters are at hand.
sword KZCITnsCheckBuffer(KZCITnsParseParams *params) {
  static auto *const real = next<sword(KZCITnsParseParams *)>("KZCITnsCheckBuffer");
  if (params->buffer_pos < params->buffer_len || !fails_now(check_buffer)) return real(params);
  return plans[check_buffer].status;
}

sword KZCITnsParseBlank(KZCITnsParseParams *params) {
  static auto *const real = next<sword(KZCITnsParseParams *)>("KZCITnsParseBlank");
  if (fails_now(parse_blank)) return plans[parse_blank].status;
  const sword status = real(params);
  if (token_after_blanks) params->tns_token_type = *token_after_blanks;
  return status;
}

// The shared library's calls of snprintf come here.
int __wrap_snprintf(char *text, std::size_t size, const char *format, ...);
int __wrap_snprintf(char *text, std::size_t size, const char *format, ...) {
  if (fails_now(format_text)) return plans[format_text].status;
  va_list arguments;
  va_start(arguments, format);
  const int length = std::vsnprintf(text, size, format, arguments);
  va_end(arguments);
  return length;
}

}  // extern "C"
