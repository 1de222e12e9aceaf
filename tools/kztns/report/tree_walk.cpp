#include "report/tree_walk.h"

namespace kztns {

std::string_view strategy_word(KZCILBOption strategy) {
  switch (strategy) {
    case LB_OPTION_GROUP_ROTATION:
    case LB_OPTION_ROTATION:
      return "ROTATION";
    case LB_OPTION_RANDOM:
      return "RANDOM";
    case LB_OPTION_SERVERAFFINITY:
      return "SERVERAFFINITY";
    case LB_OPTION_TIMEOUT:
      return "TIMEOUT";
    case LB_OPTION_RETRY_DERUATION:
      return "RETRYDURATION";
    case LB_OPTION_NORMAL:
      return "NORMAL";
    case LB_OPTION_MAX:
      break;
  }
  return "UNKNOWN";
}

}  // namespace kztns
