// The tests' own table of keys against the module's grammar, row by row, and whoever
// makes or reads inputs by it: a key that one of them lacks is a key that is not tested.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "kzoci/oci_tnsname/grammar.h"
#include "kzoci/oci_tnsname/items.h"
#include "support/key_inputs.h"
#include "support/memory_file.h"
#include "support/model_reader.h"
#include "support/parsing.h"
#include "support/random_input.h"
#include "support/random_mutation.h"

namespace {

namespace tns = kzoci::tns;

using support::Key;
using support::keys;
using support::Place;
using support::Random;
using support::Takes;
using support::TokenKind;
using support::Tokens;

Place place_of(tns::Block block) {
  switch (block) {
    case tns::Block::entry:
      return Place::entry;
    case tns::Block::system_variables:
      return Place::system_variables;
    case tns::Block::description:
      return Place::description;
    case tns::Block::address_list:
      return Place::address_list;
    case tns::Block::address:
      return Place::address;
    case tns::Block::connect_data:
      return Place::connect_data;
    case tns::Block::blacklist:
      return Place::blacklist;
    case tns::Block::remove_strategy:
      return Place::remove_strategy;
    default:
      return Place::append_strategy;
  }
}

Takes takes_of(tns::ValueKind kind) {
  switch (kind) {
    case tns::ValueKind::block:
      return Takes::block;
    case tns::ValueKind::word:
      return Takes::word;
    case tns::ValueKind::integer:
      return Takes::integer;
    default:
      return Takes::text;
  }
}

// ------------------------------------------------------------------- the module's rows

const tns::Key *module_row(const Key &key) {
  for (const tns::Key &row : tns::grammar)
    if (row.word == key.word && place_of(row.block) == key.place) return &row;
  return nullptr;
}

std::string text_or_empty(const char *text) { return text == nullptr ? "" : text; }

void expect_same_words(const Key &key, const tns::Words &words) {
  ASSERT_EQ(words.words.size(), key.words.size());
  for (std::size_t i = 0; i < key.words.size(); ++i) {
    EXPECT_EQ(words.words[i].text, key.words[i].text);
    EXPECT_EQ(words.words[i].value, key.words[i].value);
  }
  EXPECT_EQ(words.refused.format, std::string(key.complaint) + "%.*s");
}

std::size_t size_of(tns::Storage storage) {
  switch (storage) {
    case tns::Storage::number:
      return sizeof(sb8);
    case tns::Storage::seconds:
      return sizeof(time_t);
    case tns::Storage::count:
      return sizeof(ub4);
    default:
      return sizeof(int);
  }
}

void expect_same_field(const Key &key, const tns::Value &value) {
  EXPECT_EQ(value.field.at, key.field.at);
  if (key.takes == Takes::text) {
    EXPECT_EQ(value.field.length_at, key.field.length_at);
    EXPECT_EQ(value.field.capacity, key.field.size);
    EXPECT_EQ(value.copy == tns::TextCopy::string, key.place == Place::system_variables);
  } else {
    EXPECT_EQ(size_of(value.field.storage), key.field.size);
  }
}

TEST(Keys, EachHasItsRowInTheModule) {
  for (const Key &key : keys) {
    SCOPED_TRACE(key.word);
    const tns::Key *const row = module_row(key);
    ASSERT_NE(row, nullptr);
    EXPECT_EQ(row->type, key.type);
    EXPECT_EQ(takes_of(row->value.kind), key.takes);
    EXPECT_EQ(row->value.by_default, key.by_default);
    EXPECT_EQ(row->value.limit, key.limit);
    EXPECT_EQ(text_or_empty(row->label), key.label);
    EXPECT_EQ(row->value.words != nullptr, key.takes == Takes::word);
    if (key.takes == Takes::word) expect_same_words(key, *row->value.words);
    if (key.takes == Takes::block) {
      EXPECT_EQ(place_of(row->value.opens), key.opens);
    }
    if (key.field.size != 0) expect_same_field(key, row->value);
  }
}

TEST(Keys, EachRowOfTheModuleIsHere) {
  for (const tns::Key &row : tns::grammar)
    EXPECT_NE(support::key_in(place_of(row.block), row.word), nullptr) << row.word;
  EXPECT_EQ(std::size(tns::grammar), std::size(keys));
}

TEST(Keys, RowsOfAPlaceStandTogether) {
  std::size_t rows = 0;
  std::set<Place> places;
  for (const Key &key : keys)
    if (places.insert(key.place).second) rows += support::keys_of(key.place).size();
  EXPECT_EQ(rows, std::size(keys));
}

// A word is looked up without its block.
TEST(Keys, RowsOfOneWordHaveOneIdentifier) {
  for (const tns::Key &row : tns::grammar) {
    for (const tns::Key &other : tns::grammar) {
      if (std::string_view(row.word) == other.word) {
        EXPECT_EQ(row.type, other.type) << row.word;
      }
    }
  }
}

// Its builder passes over it; any other number is stored somewhere.
TEST(Keys, OnlyRetryDelayIsNotKept) {
  for (const tns::Key &row : tns::grammar) {
    const bool is_kept = row.value.field.storage != tns::Storage::nowhere;
    const bool is_passed_over =
        row.value.kind == tns::ValueKind::block || row.type == LB_RETRY_DELAY;
    EXPECT_NE(is_kept, is_passed_over) << row.word;
  }
}

struct NamedField {
  Place place;
  std::string_view word;
  std::string_view name;
};

// As the command shows them. A second word for a field, SID and RETRYTIMES, has no name.
constexpr NamedField named_fields[] = {
    {Place::address, "HOST", "host"},
    {Place::address, "PORT", "port"},
    {Place::address, "PROTOCOL", "protocol"},
    {Place::address, "WEIGHT", "weight"},
    {Place::address_list, "KZLB", "kzlb"},
    {Place::address_list, "KZLB_STRATEGY", "kzlb_strategy"},
    {Place::connect_data, "SERVICE_NAME", "service_name"},
    {Place::connect_data, "KZ_USER_EXTRA_INFO", "user_extra_info"},
    {Place::connect_data, "KZ_MODE", "kz_mode"},
    {Place::connect_data, "USE_DEFAULT_SID", "use_default_sid"},
    {Place::connect_data, "SESSION_VARIABLE", "session_variable"},
    {Place::description, "KZLB", "kzlb"},
    {Place::description, "KZLB_GROUP_STRATEGY", "kzlb_group_strategy"},
    {Place::description, "KZLB_RETRY_ALL_DOWNS", "retry_all_downs"},
    {Place::description, "KZLB_RETRY_TIMEOUT", "retry_timeout"},
    {Place::description, "KZLB_CONNECT_TIMEOUT", "connect_timeout"},
    {Place::description, "KZLB_READ_TIMEOUT", "read_timeout"},
    {Place::description, "KZLB_WRITE_TIMEOUT", "write_timeout"},
    {Place::append_strategy, "NAME", "append_strategy"},
    {Place::append_strategy, "DURATION", "duration"},
    {Place::append_strategy, "RETRY_TIMES", "retry_times"},
    {Place::remove_strategy, "NAME", "remove_strategy"},
    {Place::remove_strategy, "TIMEOUT", "remove_timeout"},
    {Place::system_variables, "SLOWSQL_THRESHOLD", "slowsql_threshold"},
    {Place::system_variables, "SLOWSQL_BUFFER_SIZE", "slowsql_buffer_size"},
    {Place::system_variables, "SLOWSQL_FLUSH_SECOND", "slowsql_flush_second"},
    {Place::system_variables, "SESSION_VARIABLE", "session_variable"},
    {Place::system_variables, "LOG_LEVEL", "log_level"},
    {Place::system_variables, "LOG_SIZE", "log_size"},
    {Place::system_variables, "LOG_COUNT", "log_count"},
    {Place::system_variables, "LOG_PATH", "log_path"},
};

TEST(Keys, EachFieldHasItsName) {
  std::size_t names = 0;
  for (const tns::Key &row : tns::grammar) {
    const auto named = std::find_if(
        std::begin(named_fields), std::end(named_fields), [&](const NamedField &field) {
          return field.place == place_of(row.block) && field.word == row.word;
        });
    const bool has_name = named != std::end(named_fields);
    EXPECT_EQ(text_or_empty(row.name), has_name ? named->name : std::string_view()) << row.word;
    names += has_name ? 1 : 0;
  }
  EXPECT_EQ(names, std::size(named_fields));
}

// ----------------------------------------------------------- whoever goes by the table

// How often each key stands in each of the places.
class Census {
 public:
  void count(const Tokens &tokens, Place outermost) {
    std::vector<Place> open = {outermost};
    for (std::size_t i = 0; i < tokens.size(); ++i) {
      if (tokens[i].kind == TokenKind::open) open.push_back(enter(open.back(), tokens[i + 1].text));
      if (tokens[i].kind == TokenKind::close) open.pop_back();
    }
  }

  std::size_t of(const Key &key) const {
    const auto found = seen_.find(&key);
    return found == seen_.end() ? 0 : found->second;
  }

 private:
  Place enter(Place place, const std::string &word) {
    const Key *const key = support::key_in(place, word);
    if (key == nullptr) return place;
    ++seen_[key];
    return key->opens;
  }

  std::map<const Key *, std::size_t> seen_;
};

constexpr std::size_t seeds = 4000;
constexpr std::size_t often = seeds / 400;

TEST(Keys, RandomInputHasEachInItsPlace) {
  Census census;
  for (std::size_t seed = 1; seed <= seeds; ++seed) {
    Random random(seed);
    census.count(support::random_description(random), Place::entry);
    census.count(support::random_reserved_entry(random, "k").tokens, Place::system_variables);
  }
  for (const Key &key : keys) EXPECT_GT(census.of(key), often) << key.word;
}

TEST(Keys, RandomDamageBringsEachIn) {
  std::map<std::string, std::size_t> seen;
  for (std::size_t seed = 1; seed <= seeds; ++seed) {
    Random random(seed);
    for (const support::Token &token : support::random_tokens(random, 24))
      if (token.kind == TokenKind::key_word) ++seen[token.text];
  }
  for (const Key &key : keys) EXPECT_GT(seen[std::string(key.word)], often) << key.word;
}

void expect_kept(const Key &key, const KZCITnsService &service) {
  if (key.field.size == 0) return;
  const std::string value = support::sample_value(key);
  const void *const record = support::record_of(service, key.place);
  if (key.takes == Takes::text) {
    EXPECT_EQ(support::text_in(record, key.field), value);
    return;
  }
  sb8 number = key.takes == Takes::integer ? key.kept(std::stoll(value)) : 0;
  for (const support::Word &word : key.words)
    if (word.text == value) number = word.value;
  EXPECT_EQ(support::number_in(record, key.field), number);
}

// Each key, in each block that may hold it, is built, and just as the model says.
TEST(Keys, ModuleAndModelKeepEach) {
  support::MemoryFile file;
  for (const Key &key : keys) {
    for (const support::BlockPath &path : support::paths_to(key)) {
      const std::string text =
          path.before + std::string(key.word) + '=' + support::sample_value(key) + path.after;
      SCOPED_TRACE(text);
      const bool variable = key.place == Place::system_variables;
      const std::string identifier = variable ? "KZCISYSTEMVARIABLES" : text;
      ASSERT_TRUE(file.write(variable ? identifier + '=' + text : ""));
      support::reset_platform();
      KZCITns tns;
      KZCITnsInit(&tns);
      EXPECT_EQ(support::build(tns, identifier), (support::Outcome{0, 1}));
      const model::Prediction expected = model::predict(identifier, identifier + '=' + text);
      EXPECT_EQ(expected.find, 1);
      EXPECT_EQ(support::full_tree(tns), expected.tree);
      expect_kept(key, *tns.tns_service);
      KZCITnsClear(&tns);
    }
  }
}

// The words of a dictionary of the fuzzer, one a line in quotes.
std::set<std::string> words_of_dictionary() {
  std::ifstream file(KZOCI_SOURCE_DIR "/fuzz/names_file.dict");
  std::set<std::string> words;
  for (std::string line; std::getline(file, line);)
    if (line.size() > 2 && line.front() == '"') words.insert(line.substr(1, line.size() - 2));
  return words;
}

TEST(Keys, DictionaryOfTheFuzzerHasEachWithItsWords) {
  const std::set<std::string> words = words_of_dictionary();
  for (const Key &key : keys) {
    EXPECT_EQ(words.count(std::string(key.word)), 1u) << key.word;
    for (const support::Word &word : key.words)
      EXPECT_EQ(words.count(std::string(word.text)), 1u) << word.text;
  }
}

// A builder that forgets one of its blocks refuses the key instead of reading a value.
TEST(Keys, ABlockIsNeverReadAsAValue) {
  support::reset_platform();
  KZCITnsParseParams params = {};
  params.key_type = LB_CONNECT_DATA;
  KZCIDescription des;
  KZCIDescriptionInit(&des);
  EXPECT_EQ(read_by_grammar(kzoci::tns::Block::description,
                            kzoci::tns::message::description_key_refused, &params, &des),
            -1);
  EXPECT_EQ(support::log_records(),
            (support::Lines{"ERROR KZCIDescriptionBuild get error key_type"}));
  support::reset_platform();
}

}  // namespace
