#include "trace/key_words.h"

#include <algorithm>

#include "text/spelling.h"

namespace kztns {
namespace {

std::string join(const std::vector<std::string> &words) {
  std::string text;
  for (std::size_t i = 0; i < words.size(); ++i) {
    if (i > 0) text += i + 1 == words.size() ? " or " : ", ";
    text += words[i];
  }
  return text;
}

std::string name_of(Block block) {
  if (block == Block::settings) return "KZCISYSTEMVARIABLES";
  if (block == Block::entry) return "an entry itself";
  return std::string(word_of(block));
}

}  // namespace

std::string_view word_of(Block block) {
  constexpr std::string_view words[] = {"",
                                        "",
                                        "DESCRIPTION",
                                        "ADDRESS_LIST",
                                        "ADDRESS",
                                        "CONNECT_DATA",
                                        "KZLB_BLACKLIST",
                                        "REMOVE_STRATEGY",
                                        "APPEND_STRATEGY"};
  return words[static_cast<std::size_t>(block)];
}

const std::vector<KeyWord> &key_words() {
  using enum Block;
  static const std::vector<KeyWord> table = {
      {"DESCRIPTION", LB_DESCRIPTION, {entry}},
      {"ADDRESS_LIST", LB_ADDRESS_LIST, {description}},
      {"ADDRESS", LB_ADDRESS, {description, address_list}},
      {"CONNECT_DATA", LB_CONNECT_DATA, {description}},
      {"KZLB_BLACKLIST", LB_KZLB_BLACKLIST, {description}},
      {"KZLB", LB_KZLB, {description, address_list}},
      {"KZLB_GROUP_STRATEGY", LB_KZLB_GROUP_STRATEGY, {description}},
      {"KZLB_RETRY_ALL_DOWNS", LB_KZLB_RETRY_ALL_DOWNS, {description}},
      {"KZLB_RETRY_TIMEOUT", LB_KZLB_RETRY_TIMEOUT, {description}},
      {"KZLB_CONNECT_TIMEOUT", LB_CONNECT_TIMEOUT, {description}},
      {"KZLB_READ_TIMEOUT", LB_READ_TIMEOUT, {description}},
      {"KZLB_WRITE_TIMEOUT", LB_WRITE_TIMEOUT, {description}},
      {"RETRY_DELAY", LB_RETRY_DELAY, {description}},
      {"KZLB_STRATEGY", LB_KZLB_STRATEGY, {address_list}},
      {"PROTOCOL", LB_PROTOCOL, {address}},
      {"HOST", LB_HOST, {address}},
      {"PORT", LB_PORT, {address}},
      {"WEIGHT", LB_WEIGHT, {address}},
      {"SERVICE_NAME", LB_SERVICE_NAME, {connect_data}},
      {"SID", LB_SID, {connect_data}},
      {"KZ_USER_EXTRA_INFO", LB_EXTRA_INFO, {connect_data}},
      {"SESSION_VARIABLE", LB_SESSION_VARIABLE, {connect_data, settings}},
      {"KZ_MODE", LB_KZ_MODE, {connect_data}},
      {"USE_DEFAULT_SID", LB_USE_DEFAULT_SID, {connect_data}},
      {"REMOVE_STRATEGY", LB_REMOVE_STRATEGY, {blacklist}},
      {"APPEND_STRATEGY", LB_APPEND_STRATEGY, {blacklist}},
      {"NAME", LB_NAME, {remove_strategy, append_strategy}},
      {"TIMEOUT", LB_TIMEOUT, {remove_strategy}},
      {"RETRY_TIMES", LB_RETRY_TIMES, {append_strategy}},
      {"RETRYTIMES", LB_RETRY_TIMES, {append_strategy}},
      {"DURATION", LB_DRUATION, {append_strategy}},
      {"SLOWSQL_THRESHOLD", LB_SLOWSQL_THRESHOLD, {settings}},
      {"SLOWSQL_BUFFER_SIZE", LB_SLOWSQL_BUFFER_SIZE, {settings}},
      {"SLOWSQL_FLUSH_SECOND", LB_SLOWSQL_FLUSH_SECOND, {settings}},
      {"LOG_SIZE", LB_LOG_SIZE, {settings}},
      {"LOG_COUNT", LB_LOG_COUNT, {settings}},
      {"LOG_LEVEL", LB_LOG_LEVEL, {settings}},
      {"LOG_PATH", LB_LOG_PATH, {settings}}};
  return table;
}

const KeyWord *key_word(KZCILBKeyType type) {
  for (const KeyWord &key : key_words())
    if (key.type == type) return &key;
  return nullptr;
}

std::string places_of(KZCILBKeyType type) {
  const KeyWord *const key = key_word(type);
  std::vector<std::string> names;
  if (key != nullptr)
    for (const Block block : key->places) names.push_back(name_of(block));
  return join(names);
}

std::vector<std::string_view> words_for(KZCILBKeyType type, Block in) {
  switch (type) {
    case LB_KZLB:
      return {"ON", "OFF"};
    case LB_KZLB_GROUP_STRATEGY:
      return {"ROTATION"};
    case LB_KZLB_STRATEGY:
      return {"RANDOM", "SERVERAFFINITY", "ROTATION"};
    case LB_NAME:
      return {in == Block::remove_strategy ? "TIMEOUT" : "RETRYDURATION"};
    default:
      return {};
  }
}

std::string one_of(const std::vector<std::string_view> &words) {
  return join({words.begin(), words.end()});
}

std::size_t longest_text(KZCILBKeyType type, Block in) {
  switch (type) {
    case LB_PROTOCOL:
    case LB_PORT:
      return 6;
    case LB_HOST:
    case LB_SERVICE_NAME:
    case LB_SID:
    case LB_EXTRA_INFO:
    case LB_SESSION_VARIABLE:
      return 256;
    case LB_LOG_LEVEL:
    case LB_LOG_PATH:
      return in == Block::settings ? 1025 : 0;
    default:
      return 0;
  }
}

bool is_integer(KZCILBKeyType type) {
  switch (type) {
    case LB_CONNECT_TIMEOUT:
    case LB_READ_TIMEOUT:
    case LB_WRITE_TIMEOUT:
    case LB_KZLB_RETRY_ALL_DOWNS:
    case LB_KZLB_RETRY_TIMEOUT:
    case LB_RETRY_DELAY:
    case LB_WEIGHT:
    case LB_KZ_MODE:
    case LB_USE_DEFAULT_SID:
    case LB_TIMEOUT:
    case LB_RETRY_TIMES:
    case LB_DRUATION:
    case LB_SLOWSQL_THRESHOLD:
    case LB_SLOWSQL_BUFFER_SIZE:
    case LB_SLOWSQL_FLUSH_SECOND:
    case LB_LOG_SIZE:
    case LB_LOG_COUNT:
      return true;
    default:
      return false;
  }
}

std::string_view near_key(std::string_view word, Block block) {
  std::vector<std::string_view> here;
  std::vector<std::string_view> elsewhere;
  for (const KeyWord &key : key_words()) {
    const bool belongs = std::find(key.places.begin(), key.places.end(), block) != key.places.end();
    (belongs ? here : elsewhere).push_back(key.word);
  }
  const std::string_view found = near_word(word, here);
  return found.empty() ? near_word(word, elsewhere) : found;
}

}  // namespace kztns
