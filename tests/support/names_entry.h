// An entry of a names file that is sound, unless its SID is not.
#pragma once

#include <string>

namespace support {

inline std::string entry(const std::string &name, const std::string &sid = "s") {
  return name + " = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1))(CONNECT_DATA = (SID = " + sid +
         ")))\n";
}

}  // namespace support
