// The log lines of tokens, blocks, services and lookups, for tests that write down a whole
// sequence of records by hand.
#pragma once

#include <string>

#include "parsing.h"

namespace expected_log {

using support::operator+;
using support::Lines;

// A refill of the buffer, whether or not it finds more input.
inline Lines refill(int mode) { return {"DEBUG read data mode=" + std::to_string(mode)}; }

// A key that was read: a name, a key word or a value.
inline Lines key(const std::string &text) {
  return {"DEBUG get key size:" + std::to_string(text.size()) + ", key:" + text};
}

// A key that was read and identified as a key word.
inline Lines key_word(const std::string &text, int type) {
  return key(text) + Lines{"DEBUG succ to find key, key is:" + std::to_string(type)};
}

// A key that was read and is no key word, with the message of the builder.
inline Lines unknown_word(const std::string &text) {
  return key(text) + Lines{"DEBUG fail to find key, key size:" + std::to_string(text.size()) +
                               ", key str:" + text,
                           "ERROR get error key type"};
}

// A key of more characters than any key word has.
inline Lines longer_than_any_word(const std::string &text) {
  return key(text) +
         Lines{"ERROR parse_params tns_key_len:" + std::to_string(text.size()) + " > 20",
               "ERROR get error key type"};
}

// Values that could not be taken. "%.*s" prints them up to their first zero byte.
inline Lines not_a_number(const std::string &text) {
  return {std::string("ERROR fail to covert to int, src value:") + text.c_str()};
}

inline Lines no_text() { return {"ERROR fail to parse string value"}; }

// A step that met another token than the expected one, as its caller reports it.
inline Lines mismatch(int expected, int met) {
  return {
      "WARN expect token type is " + std::to_string(expected) + ", but get " + std::to_string(met),
      "WARN fail to call KZCITnsParse, status:-1"};
}

// The end of every block: "(" expected, ")" met.
inline Lines block_end() { return mismatch(TNS_LEFT_PARENTHESES, TNS_RIGHT_PARENTHESES); }

// A step that met the end of the input, which was known before.
inline Lines ended() {
  return {"DEBUG reach eof", "WARN fail to call parse blank, status:100",
          "WARN fail to call KZCITnsParse, status:100"};
}

// A step that found the end of the input by a refill.
inline Lines input_end(int mode) { return refill(mode) + ended(); }

// A key that the end of the input cuts off.
inline Lines key_cut_off(int mode) {
  return refill(mode) + Lines{"DEBUG reach eof", "ERROR fail to call parse key, status:100",
                              "WARN fail to call KZCITnsParse, status:100"};
}

// A key whose 256th character is the last one at hand.
inline Lines key_too_long() {
  return {"ERROR key size:256 bigger than 256", "ERROR fail to call parse key, status:-1",
          "WARN fail to call KZCITnsParse, status:-1"};
}

// ---------------------------------------------------------------- descriptions

inline Lines description_word() {
  return key_word("DESCRIPTION", LB_DESCRIPTION) + Lines{"DEBUG bulid_tns_service get key_type 1"};
}

inline Lines description_call() {
  return {"DEBUG call KZCIDescriptionBuild with params [tns_service:PTR], [parse_params:PTR]"};
}

// "(DESCRIPTION =" up to the call of its builder.
inline Lines description_begins() { return description_word() + description_call(); }

// An item's key and "=" inside a description.
inline Lines description_key(const std::string &word, int type) {
  return key_word(word, type) +
         Lines{"DEBUG bulid_description get key_type " + std::to_string(type)};
}

inline Lines address_call() {
  return {"DEBUG call KZCIAddressBuild with params [address_list:PTR], [parse_params:PTR]"};
}

inline Lines address_list_call() {
  return {"DEBUG call KZCIAddressListBuild with params [des:PTR], [parse_params:PTR]"};
}

inline Lines connect_data_call() {
  return {"DEBUG call KZCIConnectDataBuild with params [des:PTR], [parse_params:PTR]"};
}

inline Lines blacklist_call() {
  return {
      "DEBUG call KZCIBlacklistConfBuild with params [black_list_conf:PTR], [parse_params:PTR]"};
}

// Of either strategy.
inline Lines strategy_call() {
  return {"DEBUG call KZCIAddressListBuild with params [black:PTR], [parse_params:PTR]"};
}

inline Lines list_begins() {
  return description_key("ADDRESS_LIST", LB_ADDRESS_LIST) + address_list_call();
}

// "(ADDRESS =" inside an address list.
inline Lines listed_address_begins() {
  return key_word("ADDRESS", LB_ADDRESS) + Lines{"DEBUG KZCIAddressListBuild get key_type 18"} +
         address_call();
}

inline Lines data_begins() {
  return description_key("CONNECT_DATA", LB_CONNECT_DATA) + connect_data_call();
}

inline Lines list_built(unsigned addresses) {
  return {"DEBUG success to call KZCIAddressListBuild, address count:" + std::to_string(addresses)};
}

inline Lines list_ends(unsigned addresses) { return block_end() + list_built(addresses); }

inline Lines data_built(const std::string &name) {
  return {"DEBUG success to call KZCIConnectDataBuild, service_name:" + name};
}

inline Lines data_ends(const std::string &name) { return block_end() + data_built(name); }

inline Lines description_built(unsigned lists) {
  return {"DEBUG success to build description, address count:" + std::to_string(lists)};
}

inline Lines description_ends(unsigned lists) { return block_end() + description_built(lists); }

inline Lines host_word() {
  return key_word("HOST", LB_HOST) + Lines{"DEBUG KZCIAddressBuild get key_type 20"};
}

// "(HOST = value)" of an address.
inline Lines host(const std::string &value) { return host_word() + key(value); }

// "(SID = value)" of the connect data.
inline Lines sid(const std::string &value) {
  return key_word("SID", LB_SID) + Lines{"DEBUG KZCIConnectDataBuild get key_type 25"} + key(value);
}

// "(DESCRIPTION=(ADDRESS=(HOST=value)))" from its key to its good end; the
// closing parenthesis of the block is still to come.
inline Lines small_description(const std::string &host_value) {
  return description_begins() + description_key("ADDRESS", LB_ADDRESS) + address_call() +
         host(host_value) + block_end() + description_ends(1);
}

// The lines that report a description which failed, below a service.
inline Lines description_failed() {
  return {"ERROR something error in build description",
          "ERROR fail to build description, status:-1"};
}

// ---------------------------------------------------------------- services

inline Lines service_call() {
  return {"DEBUG call KZCITnsServiceBuild with params [tns:PTR], [parse_params:PTR]"};
}

// A block of a service that is no description.
inline Lines other_block(const std::string &word, int type) {
  const std::string number = std::to_string(type);
  return key_word(word, type) + Lines{"DEBUG bulid_tns_service get key_type " + number,
                                      "ERROR expect LB_DESCRIPTION:1 but get " + number};
}

inline Lines variables_begin() { return {"DEBUG parse system variables"}; }

inline Lines log_count_told(const std::string &number) {
  return {"DEBUG parse system variables get log level:" + number};
}

// "(LOG_COUNT = number)" of the reserved entry.
inline Lines log_count(const std::string &number) {
  return key_word("LOG_COUNT", LB_LOG_COUNT) + key(number) + log_count_told(number);
}

// The key of a block of the reserved entry that is no system variable.
inline Lines no_variable(int type) {
  return {"WARN parse system variables get error key type:" + std::to_string(type)};
}

inline Lines service_built(unsigned descriptions) {
  return {"DEBUG success to build tns_service, description count:" + std::to_string(descriptions)};
}

inline Lines service_failed(int status) {
  return {"ERROR something error in build tns service, status:" + std::to_string(status)};
}

// ---------------------------------------------------------------- lookups

inline Lines lookup_call() { return {"DEBUG call KZCITnsBuild with params [tns:PTR]"}; }

// A lookup up to the first refill, when the variable's value leads to this file.
inline Lines lookup_begins(const std::string &variable, const std::string &value,
                           const std::string &file) {
  return lookup_call() +
         Lines{"DEBUG get " + variable + ":" + value, "DEBUG get configure file:" + file};
}

inline Lines lookup_begins(const std::string &file = "names.ora") {
  return lookup_begins("KZCI_TNS_FILE", file, file);
}

inline Lines not_opened(const std::string &file) {
  return {"DEBUG fail to open tns file, tns_name:" + file,
          "DEBUG fail to call KZCITnsBuildGetFile, status:-1"};
}

inline Lines descriptor_call(const std::string &text) {
  return {"DEBUG call KZCITnsBuildDes with params [tns:PTR, " + text + "]"};
}

inline Lines other_name(const std::string &sought, const std::string &shown) {
  return {"DEBUG dbname is not equal to tns_service, dbname:" + sought + ", key:" + shown};
}

inline Lines name_found(const std::string &name) {
  return Lines{"DEBUG find tns service, dbname:" + name} + service_call();
}

inline Lines not_found(const std::string &name) {
  return {"DEBUG fail to find tns service, dbname:" + name};
}

// The service that was sought, with how many there are now.
inline Lines built(unsigned descriptions, unsigned services) {
  return service_built(descriptions) +
         Lines{"DEBUG succ to call KZCITnsServiceBuild, service number:" +
               std::to_string(services)};
}

inline Lines entry_refused() { return {"ERROR fail to call KZCITnsServiceBuild, status:-1"}; }

}  // namespace expected_log
