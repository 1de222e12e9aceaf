// From a connect identifier to a service: a literal descriptor is built as it is, a
// name is looked up in the names file.
//
//   names file := { NAME "=" entry }
//
// The scan ends at the first entry of the name, at the reserved entry, at the end of
// the file, or, as a failure, at the first text that is no entry.
#include <algorithm>
#include <cstdio>
#include <cstring>

#include "character_class.h"
#include "items.h"
#include "kzoci/platform/letter_case.h"
#include "names_file.h"
#include "tokenizer.h"

using namespace kzoci::tns;

namespace {

constexpr char descriptor_prefix[] = "(DESCRIPTION=";
constexpr std::size_t descriptor_prefix_length = sizeof descriptor_prefix - 1;

// Large enough to make system calls rare, small enough for the stack and for a
// lookup that ends at the first entry.
constexpr std::size_t stream_buffer_size = 12288;

sword KZCITnsBuildGetFile(KZCITnsParseParams *params) {
  const NamesFile file = choose_names_file();
  params->tns_name = file.value;
  if (file.source == nullptr) {
    KZ_LOG(message::no_variable);
    return no_data;
  }
  KZ_LOG(file.source->chosen, file.value);
  KZ_LOG(message::names_file, file.name);
  params->tns_file = std::fopen(file.name, open_mode);
  if (params->tns_file == nullptr) {
    KZ_LOG(message::names_file_not_opened, file.name);
    return failure;
  }
  return success;
}

// The name sought, as it is compared and logged.
struct SoughtName {
  const char *text;
  ub4 length;
  // Whether the last characters may be compared first: not where the name holds a zero byte,
  // at which the comparison ends.
  bool compare_last = length > 0 && std::find(text, text + length, '\0') == text + length;

  int text_precision() const { return precision(length); }
};

// Names of one length that differ usually do so at their ends.
bool is_sought(const SoughtName &sought, const KZCITnsParseParams &params) {
  const ub4 length = sought.length;
  if (params.tns_key_len != length) return false;
  if (sought.compare_last && params.tns_key[length - 1] != sought.text[length - 1]) return false;
  return std::strncmp(sought.text, params.tns_key, length) == 0;
}

sword build_entry(KZCITns *tns, KZCITnsParseParams *params, const SoughtName &sought,
                  boolean *find) {
  KZ_LOG(message::entry_found, sought.text_precision(), sought.text);
  const sword status = reported(KZCITnsServiceBuild(tns, params), message::entry_failed);
  if (status != success) return status;
  *find = 1;
  KZ_LOG(message::entry_built, tns->tns_service_count);
  return success;
}

sword skip_entry(KZCITnsParseParams *params, const SoughtName &sought) {
  // The key is printed over the sought name's length; log readers rely on it.
  KZ_LOG(message::other_entry, sought.text_precision(), sought.text,
         precision(sought.length, sizeof params->tns_key), params->tns_key);
  return reported(KZCITnsServiceSkip(params), message::skip_failed);
}

// Reads entries until the sought one is built or the input ends.
sword scan_entries(KZCITns *tns, KZCITnsParseParams *params, const SoughtName &sought,
                   boolean *find) {
  while (params->is_eof != 1 && *find != 1) {
    sword status = expect_after_blanks(params, TNS_KEY);
    if (status == success) status = expect_after_blanks(params, TNS_EQUAL_SIGN);
    if (status == success)
      status = is_sought(sought, *params) ? build_entry(tns, params, sought, find)
                                          : skip_entry(params, sought);
    if (status != success) return status;
  }
  return success;
}

sword look_up(KZCITns *tns, const SoughtName &sought, boolean *find) {
  char stream_buffer[stream_buffer_size];
  KZCITnsParseParams params;
  begin_parse(&params, TNS_MODE_FILE);

  *find = 0;
  sword status = KZCITnsBuildGetFile(&params);
  if (status != success) {
    KZ_LOG(message::no_names_file, status);
    return success;
  }
  // The stream reads in larger pieces than by default; a stream that refuses the
  // buffer still works.
  std::setvbuf(params.tns_file, stream_buffer, _IOFBF, sizeof stream_buffer);
  status = scan_entries(tns, &params, sought, find);
  if (status == no_data) {
    KZ_LOG(message::not_found, sought.text_precision(), sought.text);
    status = success;
  }
  std::fclose(params.tns_file);
  return status;
}

}  // namespace

boolean IsDescriptionTns(char *description, ub4 description_len) {
  ub4 matched = 0;
  const sb4 length = static_cast<sb4>(description_len);
  for (sb4 i = 0; i < length; ++i) {
    if (is_any_of(description[i], blank)) continue;
    if (kzoci::capital(description[i]) != descriptor_prefix[matched]) return 0;
    if (++matched == descriptor_prefix_length) return 1;
  }
  return 0;
}

sword KZCITnsBuild(KZCITns *tns, const OraText *dbname, ub4 dbname_len, boolean *find) {
  KZ_LOG(message::build_called, tns);
  if (dbname == nullptr || find == nullptr || tns == nullptr) return refuse_null_handle();
  auto *const text = const_cast<char *>(reinterpret_cast<const char *>(dbname));
  if (IsDescriptionTns(text, dbname_len)) return KZCITnsBuildDes(tns, dbname, dbname_len, find);
  return look_up(tns, {text, dbname_len}, find);
}
