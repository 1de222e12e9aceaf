// KZLB_BLACKLIST, written straight into the description's record.
//
//   blacklist := one or more of
//                  "(" REMOVE_STRATEGY "=" remove ")"
//                  "(" APPEND_STRATEGY "=" append ")"
//   remove    := one or more of
//                  "(" NAME "=" TIMEOUT ")"
//                  "(" TIMEOUT "=" integer ")"
//   append    := one or more of
//                  "(" NAME "=" RETRYDURATION ")"
//                  "(" RETRY_TIMES|RETRYTIMES|DURATION "=" integer ")"
#include "items.h"

using namespace kzoci::tns;

namespace {

sword read_remove_value(KZCIBlacklistConf &black, KZCITnsParseParams *params) {
  return read_by_grammar(Block::remove_strategy, message::strategy_key_refused, params, &black);
}

sword read_append_value(KZCIBlacklistConf &black, KZCITnsParseParams *params) {
  return read_by_grammar(Block::append_strategy, message::strategy_key_refused, params, &black);
}

sword read_blacklist_value(KZCIBlacklistConf &conf, KZCITnsParseParams *params) {
  switch (params->key_type) {
    case LB_REMOVE_STRATEGY:
      return reported(KZCIRemoveStrategyBuild(&conf, params), message::remove_strategy_failed);
    case LB_APPEND_STRATEGY:
      return reported(KZCIAppendStrategyBuild(&conf, params), message::append_strategy_failed);
    default:
      return read_by_grammar(Block::blacklist, message::blacklist_key_refused, params, &conf);
  }
}

// What differs between the three blocks.
struct BlacklistBlock {
  sword (*read_item_value)(KZCIBlacklistConf &, KZCITnsParseParams *);
  Message<int> key_met;
  Message<> not_built;
  Message<> built;
};

constexpr BlacklistBlock remove_block = {read_remove_value, message::remove_strategy_key,
                                         message::remove_strategy_not_built,
                                         message::remove_strategy_built};

constexpr BlacklistBlock append_block = {read_append_value, message::append_strategy_key,
                                         message::append_strategy_not_built,
                                         message::append_strategy_built};

// The key type is logged by the address list's message; log readers rely on it.
constexpr BlacklistBlock blacklist_block = {read_blacklist_value, message::address_list_key,
                                            message::blacklist_not_built, message::blacklist_built};

sword build_block(KZCIBlacklistConf *conf, KZCITnsParseParams *params,
                  const BlacklistBlock &block) {
  if (conf == nullptr || params == nullptr) return refuse_null_handle();
  const sword status = read_block(params, block.key_met, block.not_built,
                                  [&] { return block.read_item_value(*conf, params); });
  if (status == success) KZ_LOG(block.built);
  return status;
}

}  // namespace

sword KZCIRemoveStrategyBuild(KZCIBlacklistConf *black, KZCITnsParseParams *parse_params) {
  KZ_LOG(message::strategy_called, black, parse_params);
  return build_block(black, parse_params, remove_block);
}

sword KZCIAppendStrategyBuild(KZCIBlacklistConf *black, KZCITnsParseParams *parse_params) {
  KZ_LOG(message::strategy_called, black, parse_params);
  return build_block(black, parse_params, append_block);
}

sword KZCIBlacklistConfBuild(KZCIBlacklistConf *black_list_conf, KZCITnsParseParams *parse_params) {
  KZ_LOG(message::blacklist_called, black_list_conf, parse_params);
  return build_block(black_list_conf, parse_params, blacklist_block);
}
