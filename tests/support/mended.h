// What kztns fix --unsafe leaves of a text, and the parts that texts are made of.
#pragma once

#include <string>

#include "mend/mend_file.h"

namespace support {

inline std::string mended(const std::string &content) {
  const kztns::NamesText original(content);
  kztns::Mender mender(original, {.file = "names.ora", .with_unsafe = true});
  mender.apply_fixes();
  return mender.text().text();
}

// Items of an entry that is sound.
namespace sound {
inline const std::string address = "(ADDRESS = (HOST = h)(PORT = 1))";
inline const std::string data = "(CONNECT_DATA = (SID = s))";
inline const std::string block = "(DESCRIPTION = " + address + data + ")";
}  // namespace sound

}  // namespace support
