// A service, from the body of a file's entry or from a literal descriptor.
//
//   ordinary entry := block { block }         block := "(" DESCRIPTION "=" description ")"
//   reserved entry := setting { setting }     setting := "(" KEY "=" value ")"
//   descriptor     := block                   and nothing but blanks after it
//
// The entry's name and its "=" have been consumed by the caller.
#include "children.h"
#include "items.h"
#include "kzoci/platform/memory.h"
#include "reserved_entry.h"
#include "tokenizer.h"

using namespace kzoci::tns;

namespace {

// A service is allocated with room for its name, which is the last key read.
KZCITnsService *allocate_service(const KZCITnsParseParams &params, const char *tag) {
  const std::size_t size = sizeof(KZCITnsService) + key_length(&params);
  auto *const service = static_cast<KZCITnsService *>(kzci_malloc(size, tag));
  if (service == nullptr) KZ_LOG(message::service_not_allocated, size_number(size));
  return service;
}

sword init_service(KZCITnsService *service, const KZCITnsParseParams &params) {
  const sword status = KZCITnsServiceInit(service, key_length(&params), params.tns_key);
  if (status != success) KZ_LOG(message::service_init_failed);
  return status;
}

void append_service(KZCITns &tns, KZCITnsService *service) {
  KZ_LOG(message::service_built, service->description_count);
  link_child(tns.tns_service, tns.tns_service_count, service);
}

sword check_is_description(const KZCITnsParseParams &params) {
  KZ_LOG(message::service_key, params.key_type);
  if (params.key_type == LB_DESCRIPTION) return success;
  KZ_LOG(message::not_description, LB_DESCRIPTION, params.key_type);
  return failure;
}

sword build_description(KZCITnsService *service, KZCITnsParseParams *params) {
  return reported(KZCIDescriptionBuild(service, params), message::description_failed);
}

sword read_key_word(KZCITnsParseParams *params) {
  const sword status = expect(params, TNS_KEY);
  return status == success ? identify_key(params) : status;
}

// "(" DESCRIPTION "=" description
sword read_description_block(KZCITnsService *service, KZCITnsParseParams *params) {
  sword status = read_key_word(params);
  if (status == success) status = expect(params, TNS_EQUAL_SIGN);
  if (status == success) status = check_is_description(*params);
  if (status == success) status = build_description(service, params);
  return status;
}

// "(" KEY "=" value. A word that is no key word does not stop the entry: its value is
// handled under the key type that the parse state holds.
sword read_setting(KZCITnsService *service, KZCITnsParseParams *params) {
  read_key_word(params);
  const sword status = expect(params, TNS_EQUAL_SIGN);
  if (status != success) return status;
  return reported(KZCISystemVariablesBuild(&service->sys_vars, params),
                  message::system_variables_failed);
}

// The result of reading an entry's blocks.
struct Blocks {
  sword status;  // of the step that ended the entry
  bool one_completed;
};

Blocks read_blocks(KZCITnsService *service, KZCITnsParseParams *params) {
  const bool reserved = is_reserved_name(params->tns_key, key_length(params));
  if (reserved) KZ_LOG(message::reserved_entry);
  Blocks blocks = {success, false};
  for (;;) {
    blocks.status = expect(params, TNS_LEFT_PARENTHESES);
    if (blocks.status == success)
      blocks.status =
          reserved ? read_setting(service, params) : read_description_block(service, params);
    if (blocks.status == success) blocks.status = expect(params, TNS_RIGHT_PARENTHESES);
    if (blocks.status != success) return blocks;
    blocks.one_completed = true;
  }
}

}  // namespace

sword KZCITnsServiceBuild(KZCITns *tns, KZCITnsParseParams *parse_params) {
  KZ_LOG(message::service_called, tns, parse_params);
  if (tns == nullptr || parse_params == nullptr) return refuse_null_handle();
  KZCITnsService *const service = allocate_service(*parse_params, "KZCITnsServiceBuild");
  if (service == nullptr) return failure;
  const sword status = init_service(service, *parse_params);
  if (status != success) return status;
  const Blocks blocks = read_blocks(service, parse_params);
  if (!blocks.one_completed || !block_closed(parse_params)) {
    KZ_LOG(message::service_not_built, blocks.status);
    kzci_free(service);
    return failure;
  }
  append_service(*tns, service);
  return success;
}

namespace {

// "(" DESCRIPTION "=", the head that every descriptor has.
sword read_descriptor_head(KZCITnsParseParams *params) {
  sword status = expect(params, TNS_LEFT_PARENTHESES);
  if (status == success) status = read_key_word(params);
  if (status == success) status = expect(params, TNS_EQUAL_SIGN);
  return status;
}

// The description, its ")" and nothing but blanks after it.
sword read_descriptor_body(KZCITnsService *service, KZCITnsParseParams *params) {
  sword status = build_description(service, params);
  if (status == success) status = expect(params, TNS_RIGHT_PARENTHESES);
  if (status != success) return status;
  return KZCITnsParseBlank(params) == no_data ? success : failure;
}

sword build_descriptor_service(KZCITns &tns, KZCITnsParseParams *params) {
  KZCITnsService *const service = allocate_service(*params, "KZCITnsBuildDes");
  sword status = service == nullptr ? failure : init_service(service, *params);
  if (status == success) status = read_descriptor_body(service, params);
  if (status != success || !block_closed(params)) {
    KZ_LOG(message::service_not_built, status);
    kzci_free(service);
    return failure;
  }
  append_service(tns, service);
  return success;
}

}  // namespace

sword KZCITnsBuildDes(KZCITns *tns, const OraText *dbname, ub4 dbname_len, boolean *find) {
  const char *const text = reinterpret_cast<const char *>(dbname);
  KZ_LOG(message::descriptor_called, tns, text == nullptr ? "(null)" : text);
  if (find != nullptr) *find = 0;
  if (dbname == nullptr || find == nullptr || tns == nullptr) return refuse_null_handle();

  KZCITnsParseParams params;
  begin_parse(&params, TNS_MODE_DESCRIPTION);
  params.description = const_cast<char *>(text);
  params.description_len = static_cast<int>(dbname_len);

  sword status = read_descriptor_head(&params);
  if (status == no_data) {
    KZ_LOG(message::not_found, precision(dbname_len), text);
    return success;
  }
  if (status == success) status = check_is_description(params);
  if (status == success) status = build_descriptor_service(*tns, &params);
  if (status != success) return status;
  *find = 1;
  // The message names the other builder; log readers rely on it.
  KZ_LOG(message::entry_built, tns->tns_service_count);
  return success;
}
