// KZLB_BLACKLIST, written straight into the description's record.
//
//   blacklist := { "(" REMOVE_STRATEGY "=" remove ")" | "(" APPEND_STRATEGY "=" append ")" }
//   remove    := { "(" NAME "=" TIMEOUT ")" | "(" TIMEOUT "=" integer ")" }
//   append    := { "(" NAME "=" RETRYDURATION ")" | "(" RETRY_TIMES|RETRYTIMES "=" integer ")"
//                | "(" DURATION "=" integer ")" }
#include "items.h"

using namespace kzoci::tns;

namespace {

constexpr Word<KZCILBOption> remove_strategies[] = {{"TIMEOUT", LB_OPTION_TIMEOUT}};
constexpr Word<KZCILBOption> append_strategies[] = {{"RETRYDURATION", LB_OPTION_RETRY_DERUATION}};
constexpr char wrong_strategy[] = "parse LB_NAME get wrong key:%.*s";

sword read_remove_value(KZCIBlacklistConf &black, KZCITnsParseParams *params) {
  switch (params->key_type) {
    case LB_NAME:
      return read_word(params, remove_strategies, wrong_strategy, &black.remove_strategy);
    case LB_TIMEOUT:
      return read_integer(params, &black.remove_timeout);
    default:
      return refuse_key("get error key_type");
  }
}

sword read_append_value(KZCIBlacklistConf &black, KZCITnsParseParams *params) {
  switch (params->key_type) {
    case LB_NAME:
      return read_word(params, append_strategies, wrong_strategy, &black.append_strategy);
    case LB_RETRY_TIMES:
      return read_integer(params, &black.retry_times);
    case LB_DRUATION:
      return read_integer(params, &black.duration);
    default:
      return refuse_key("get error key_type");
  }
}

sword read_remove_strategy(KZCIBlacklistConf &conf, KZCITnsParseParams *params) {
  const sword status = KZCIRemoveStrategyBuild(&conf, params);
  if (status != success) KZ_LOG_ERROR("fail to call KZCIRemoveStrategyBuild, status:%d", status);
  return status;
}

sword read_append_strategy(KZCIBlacklistConf &conf, KZCITnsParseParams *params) {
  const sword status = KZCIAppendStrategyBuild(&conf, params);
  if (status != success) KZ_LOG_ERROR("fail to call KZCIAppendStrategyBuild, status:%d", status);
  return status;
}

sword read_blacklist_value(KZCIBlacklistConf &conf, KZCITnsParseParams *params) {
  switch (params->key_type) {
    case LB_REMOVE_STRATEGY:
      return read_remove_strategy(conf, params);
    case LB_APPEND_STRATEGY:
      return read_append_strategy(conf, params);
    default:
      return refuse_key("build_black_list_conf get error key_type");
  }
}

using ValueReader = sword (*)(KZCIBlacklistConf &, KZCITnsParseParams *);

// What the three blocks differ in.
struct Block {
  const char *key_type_format;
  ValueReader read_value;
  const char *failure_message;
  const char *success_message;
};

sword build_block(KZCIBlacklistConf *conf, KZCITnsParseParams *params, const Block &block) {
  if (conf == nullptr || params == nullptr) return refuse_null_handle();
  read_items(params, block.key_type_format, [&] { return block.read_value(*conf, params); });
  if (!block_closed(params)) {
    KZ_LOG_ERROR("%s", block.failure_message);
    return failure;
  }
  KZ_LOG_DEBUG("%s", block.success_message);
  return success;
}

// Both strategies announce themselves by the address list's name; log readers
// know them so.
sword build_strategy(KZCIBlacklistConf *black, KZCITnsParseParams *params, const Block &block) {
  KZ_LOG_DEBUG("call KZCIAddressListBuild with params [black:%p], [parse_params:%p]",
               pointer(black), pointer(params));
  return build_block(black, params, block);
}

}  // namespace

sword KZCIRemoveStrategyBuild(KZCIBlacklistConf *black, KZCITnsParseParams *parse_params) {
  return build_strategy(
      black, parse_params,
      {"KZCIRemoveStrategyBuild get key_type %d", read_remove_value,
       "something error in KZCIRemoveStrategyBuild", "success to call KZCIRemoveStrategyBuild"});
}

sword KZCIAppendStrategyBuild(KZCIBlacklistConf *black, KZCITnsParseParams *parse_params) {
  return build_strategy(
      black, parse_params,
      {"get key_type %d", read_append_value, "something error in KZCIAppendStrategyBuild",
       "success to call KZCIAppendStrategyBuild"});
}

sword KZCIBlacklistConfBuild(KZCIBlacklistConf *black_list_conf, KZCITnsParseParams *parse_params) {
  KZ_LOG_DEBUG("call KZCIBlacklistConfBuild with params [black_list_conf:%p], [parse_params:%p]",
               pointer(black_list_conf), pointer(parse_params));
  // The key type is logged in the address list's words, as for the strategies.
  return build_block(
      black_list_conf, parse_params,
      {"KZCIAddressListBuild get key_type %d", read_blacklist_value,
       "something error in build_black_list_conf", "success to call build_black_list_conf"});
}
