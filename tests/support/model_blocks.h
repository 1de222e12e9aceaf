// The blocks of a service, one item at a time.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "model_input.h"
#include "model_log.h"
#include "model_tree.h"
#include "model_words.h"

namespace model {

// What reading blocks asks of memory.
struct Memory {
  std::size_t failing = 0;      // the allocation that fails; 0 for none
  std::size_t allocations = 0;  // asked for, the failing one too
  Blocks lost = {};             // allocated blocks that nobody can release

  bool allocate() { return ++allocations != failing; }
};

class BlockReader {
 public:
  BlockReader(std::string_view text, Log log, Source source, Memory &memory)
      : input_(text, log, source), log_(log), memory_(memory) {}

  Input &input() { return input_; }

  // Consumes a word that has to be a key word. An unknown one counts as no key; after a
  // missing one the last key holds on.
  Step key_word();

  std::string_view key() const { return key_; }
  int type() const;  // of the key

  // The body of a description, which is added to the service.
  Step description(Service &service);

  // The value of one system variable, or passes over that of another key.
  Step variable(Values &variables);

 private:
  template <class Handle>
  Step items(Place place, Handle handle);
  Step begin_item(Place place);
  Step refused(Place place);
  Step without_memory(std::string_view record, std::size_t size);
  Step reported(Step step, std::string_view failed);

  Step value(const support::Key &key, Values &values);
  Step word(const support::Key &key, Values &values);
  Step number(const support::Key &key, Values &values);
  Step text(const support::Key &key, Values &values);
  Step values_of(Place place, Values &values);

  Step address(AddressList &list);
  Step address_list(Description &description);
  Step list_item(AddressList &list);
  Step bare_address(Description &description);
  Step connect_data(Description &description);
  Step blacklist(Description &description);
  Step strategy(Place place, Values &values);
  Step description_item(Description &description);
  Step description_value(const support::Key &key, Values &values);

  const support::Key *key_at(Place place) const { return support::key_in(place, key_); }

  Input input_;
  Log log_;
  Memory &memory_;
  std::string_view key_ = no_key;
};

}  // namespace model
