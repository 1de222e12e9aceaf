// Every setting is an object {"value": ..., "default": true|false}, with a
// "length" for a text and a "name" for a strategy. "default" tells whether the
// setting is as the record's Init leaves it. Counts and arrays stand bare: a
// count is the length of the array behind it.
#include "report/tree_json.h"

#include <string_view>

#include <nlohmann/json.hpp>

#include "report/tree_walk.h"
#include "text/escape.h"

namespace kztns {
namespace {

using Json = nlohmann::ordered_json;

Json number(sb8 value, sb8 by_default) {
  return {{"value", value}, {"default", value == by_default}};
}

Json flag(boolean value, boolean by_default) {
  return {{"value", value != 0}, {"default", value == by_default}};
}

// The length is that of the bytes in the record, before any is escaped.
Json text(std::string_view value, std::string_view by_default) {
  return {{"value", valid_utf8(value)}, {"length", value.size()}, {"default", value == by_default}};
}

Json strategy(KZCILBOption value, KZCILBOption by_default) {
  return {{"name", strategy_word(value)},
          {"value", static_cast<int>(value)},
          {"default", value == by_default}};
}

template <typename Record>
Json array_of(Record *first, ub4 count, Record *(*next)(Record *), Json (*render)(const Record &)) {
  Json array = Json::array();
  for_each_record(first, count, next,
                  [&](const Record &record, ub4) { array.push_back(render(record)); });
  return array;
}

Json address_json(const KZCIAddress &address) {
  const auto by_default = defaults_of(KZCIAddressInit);
  return {{"protocol", text(text_of(address.protocol, address.protocol_len),
                            text_of(by_default.protocol, by_default.protocol_len))},
          {"host", text(text_of(address.host, address.host_len),
                        text_of(by_default.host, by_default.host_len))},
          {"port", text(text_of(address.port, address.port_len),
                        text_of(by_default.port, by_default.port_len))},
          {"weight", number(address.weight, by_default.weight)}};
}

Json address_list_json(const KZCIAddressList &list) {
  const auto by_default = defaults_of(KZCIAddressListInit);
  return {{"kzlb", flag(list.kzlb, by_default.kzlb)},
          {"kzlb_strategy", strategy(list.kzlb_strategy, by_default.kzlb_strategy)},
          {"address_count", list.address_count},
          {"addresses", array_of(list.address, list.address_count, KZCIAddressNext, address_json)}};
}

Json connect_data_json(const KZCIConnectData *data) {
  if (data == nullptr) return nullptr;
  const auto by_default = defaults_of(KZCIConnectDataInit);
  return {{"service_name", text(text_of(data->service_name, data->service_name_len),
                                text_of(by_default.service_name, by_default.service_name_len))},
          {"user_extra_info",
           text(text_of(data->user_extra_info, data->user_extra_info_len),
                text_of(by_default.user_extra_info, by_default.user_extra_info_len))},
          {"session_variable",
           text(text_of(data->session_variable, data->session_variable_len),
                text_of(by_default.session_variable, by_default.session_variable_len))},
          {"kz_mode", number(data->kz_mode, by_default.kz_mode)},
          {"use_default_sid", number(data->use_default_sid, by_default.use_default_sid)}};
}

Json blacklist_json(const KZCIBlacklistConf &conf) {
  const auto by_default = defaults_of(KZCIBlacklistConfInit);
  return {{"remove_strategy", strategy(conf.remove_strategy, by_default.remove_strategy)},
          {"remove_timeout", number(conf.remove_timeout, by_default.remove_timeout)},
          {"append_strategy", strategy(conf.append_strategy, by_default.append_strategy)},
          {"retry_times", number(conf.retry_times, by_default.retry_times)},
          {"duration", number(conf.duration, by_default.duration)}};
}

Json description_json(const KZCIDescription &des) {
  const auto by_default = defaults_of(KZCIDescriptionInit);
  return {
      {"kzlb", flag(des.kzlb, by_default.kzlb)},
      {"kzlb_group_strategy", strategy(des.kzlb_group_strategy, by_default.kzlb_group_strategy)},
      {"retry_all_downs", number(des.retry_all_downs, by_default.retry_all_downs)},
      {"retry_timeout", number(des.retry_timeout, by_default.retry_timeout)},
      {"connect_timeout", number(des.connect_timout, by_default.connect_timout)},
      {"read_timeout", number(des.read_timout, by_default.read_timout)},
      {"write_timeout", number(des.write_timout, by_default.write_timout)},
      {"blacklist", blacklist_json(des.black_list_conf)},
      {"address_list_count", des.address_list_count},
      {"address_lists",
       array_of(des.address_list, des.address_list_count, KZCIAddressListNext, address_list_json)},
      {"connect_data", connect_data_json(des.connect_data)}};
}

Json system_variables_json(const KZCISystemVariables &vars) {
  const auto by_default = defaults_of(KZCISystemVariablesInit);
  return {
      {"slowsql_threshold", number(vars.slowsql_threshold, by_default.slowsql_threshold)},
      {"slowsql_buffer_size", number(vars.slowsql_buffer_size, by_default.slowsql_buffer_size)},
      {"slowsql_flush_second", number(vars.slowsql_flush_second, by_default.slowsql_flush_second)},
      {"session_variable",
       text(text_of(vars.session_variable, vars.session_variable_len),
            text_of(by_default.session_variable, by_default.session_variable_len))},
      {"log_level", text(text_of(vars.log_level, vars.log_level_len),
                         text_of(by_default.log_level, by_default.log_level_len))},
      {"log_size", number(vars.log_size, by_default.log_size)},
      {"log_count", number(vars.log_count, by_default.log_count)},
      {"log_path", text(text_of(vars.log_path, vars.log_path_len),
                        text_of(by_default.log_path, by_default.log_path_len))}};
}

// A service's Init is given its name: the default is a service without one.
Json service_json(const KZCITnsService &service) {
  const std::string_view name = text_of(service.net_service_name, service.net_service_name_len);
  return {{"net_service_name", text(name, {})},
          {"description_count", service.description_count},
          {"descriptions", array_of(service.description, service.description_count,
                                    KZCIDescriptionNext, description_json)},
          {"system_variables", system_variables_json(service.sys_vars)}};
}

}  // namespace

std::string tree_json(const KZCITns &tns) {
  const Json tree = {{"service_count", tns.tns_service_count},
                     {"services", array_of(tns.tns_service, tns.tns_service_count,
                                           KZCITnsServiceNext, service_json)}};
  return visible_json(tree.dump(2)) + "\n";
}

}  // namespace kztns
