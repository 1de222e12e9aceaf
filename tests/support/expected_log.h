// The log lines of single tokens, blocks and refills, for tests that write down
// a whole sequence of records by hand.
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

// "(DESCRIPTION =" up to the call of its builder.
inline Lines description_begins() {
  return key_word("DESCRIPTION", LB_DESCRIPTION) +
         Lines{"DEBUG bulid_tns_service get key_type 1",
               "DEBUG call KZCIDescriptionBuild with params [tns_service:PTR], "
               "[parse_params:PTR]"};
}

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

// "(HOST = value)" of an address.
inline Lines host(const std::string &value) {
  return key_word("HOST", LB_HOST) + Lines{"DEBUG KZCIAddressBuild get key_type 20"} + key(value);
}

// "(SID = value)" of the connect data.
inline Lines sid(const std::string &value) {
  return key_word("SID", LB_SID) + Lines{"DEBUG KZCIConnectDataBuild get key_type 25"} + key(value);
}

// "(DESCRIPTION=(ADDRESS=(HOST=value)))" from its key to its good end; the
// closing parenthesis of the block is still to come.
inline Lines small_description(const std::string &host_value) {
  return description_begins() + description_key("ADDRESS", LB_ADDRESS) + address_call() +
         host(host_value) + block_end() + block_end() +
         Lines{"DEBUG success to build description, address count:1"};
}

// The lines that report a description which failed, below a service.
inline Lines description_failed() {
  return {"ERROR something error in build description",
          "ERROR fail to build description, status:-1"};
}

inline Lines service_built(unsigned descriptions) {
  return {"DEBUG success to build tns_service, description count:" + std::to_string(descriptions)};
}

inline Lines service_failed(int status) {
  return {"ERROR something error in build tns service, status:" + std::to_string(status)};
}

}  // namespace expected_log
