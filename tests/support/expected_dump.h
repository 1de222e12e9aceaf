// The lines that the dump writes for records with their defaults, by hand.
#pragma once

#include <string>

namespace expected_dump {

inline std::string container(unsigned services = 1) {
  return "Tns:\n--tns_serivce_count:" + std::to_string(services) + "\n";
}

inline std::string service(const std::string &name) {
  return "--TnsService:" + name + "\n----description_count:1\n";
}

inline std::string description(unsigned lists = 1) {
  return "----Discription:\n"
         "------kzlb:0\n"
         "------kzlb_group_strategy:0\n"
         "------retry_all_downs:120\n"
         "------retry_timeout:10000\n"
         "------connect_timeout:0\n"
         "------read_timeout:0\n"
         "------write_timeout:0\n"
         "------append_strategy:3002\n"
         "------remove_strategy:2001\n"
         "------remove_timeout:50\n"
         "------duration:10\n"
         "------retry_times:1\n"
         "------address_list_count:" +
         std::to_string(lists) + "\n";
}

inline std::string address_list(unsigned addresses) {
  return "------AddressList:\n"
         "--------address_count:" +
         std::to_string(addresses) +
         "\n"
         "--------kzlb_strategy:1001\n";
}

inline std::string address(const std::string &host, const std::string &port = "") {
  return "--------Address:\n"
         "----------host:" +
         host +
         "\n"
         "----------port:" +
         port +
         "\n"
         "----------weight:1\n";
}

inline std::string connect_data(const std::string &name) {
  return "--------ConnectData:\n"
         "----------dbname:" +
         name + "\n";
}

inline std::string variables() {
  return "--------SYSTEMVARIABLE:\n"
         "----------SLOWSQL_THRESHOLD:100\n"
         "----------SLOWSQL_BUFFER_SIZE:0\n"
         "----------SLOWSQL_FLUSH_SECOND:60\n"
         "----------SESSION_VARIABLE:\n"
         "----------LOG_LEVEL:\n"
         "----------LOG_SIZE:0\n"
         "----------LOG_COUNT:0\n"
         "----------LOG_PATH:\n";
}

}  // namespace expected_dump
