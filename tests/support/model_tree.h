// The tree of a service as plain values, and its text.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "kzoci/oci_tnsname.h"

namespace model {

struct Address {
  std::string host;
  std::string port;
  std::string protocol;
  sb8 weight = 1;
};

struct AddressList {
  int balanced = 1;
  int strategy = 1001;  // random
  std::vector<Address> addresses;
};

struct ConnectData {
  std::string service;
  std::string extra;
  std::string session;
  sb8 mode = 0;
  sb8 default_sid = 0;
};

struct Blacklist {
  int remove = 2001;  // after a time-out
  sb8 remove_timeout = 50;
  int append = 3002;  // normal
  sb8 retry_times = 1;
  sb8 duration = 10;
};

struct Description {
  int balanced = 0;
  int group = 0;  // rotation
  sb8 all_downs = 120;
  sb8 retry = 10000;
  sb8 connect = 0;
  sb8 read = 0;
  sb8 write = 0;
  Blacklist black;
  std::vector<AddressList> lists;
  std::optional<ConnectData> data;
};

struct Variables {
  sb8 threshold = 100;
  sb8 buffer = 0;
  ub4 flush = 60;
  std::string session;
  sb8 log_size = 0;
  ub4 log_count = 0;
  std::string log_level;
  std::string log_path;
};

struct Service {
  std::string name;
  std::vector<Description> descriptions;
  Variables variables;
};

// The text that support::full_tree gives for a container of this one service.
std::string text_of(const Service &service);
std::string text_of_nothing();

// Tags of the blocks below a record, and of the record too.
using Tags = std::vector<std::string>;
void append_tags_below(const AddressList &list, Tags &tags);
void append_tags_below(const Description &description, Tags &tags);
void append_tags_below(const Service &service, Tags &tags);

}  // namespace model
