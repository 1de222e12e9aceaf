// One builder on the body of its block, once read as a text and once as a file:
// both give the same.
//
//   input   := builder failing-allocation variant body
//   builder := S service | D description | L address list | A address
//            | C connect data | B blacklist | R remove strategy
//            | P append strategy | V system variable
//
// The variant chooses the name of a service, the key type of a system variable,
// and for the others whether the parent has a child already.
#include <algorithm>
#include <cstring>
#include <memory>
#include <string>

#include "fuzz/support/check.h"
#include "fuzz/support/fuzz_platform.h"
#include "fuzz/support/input.h"
#include "fuzz/support/target.h"
#include "fuzz/support/tree_checks.h"
#include "tests/support/key_values.h"
#include "tests/support/parsing.h"

namespace {

using fuzz::check;
using support::Place;

constexpr std::string_view letters = "SDLACBRPV";
// The names and children that parents have stand here, beside the input, when it
// is asked where a text comes from.
constexpr std::string_view own_text = "sales (ADDRESS=(HOST=first))(SID=first)";
constexpr std::string_view service_names[] = {"sales", "KZCISYSTEMVARIABLES", "kzci", "", "KZCI7"};

struct Choices {
  char builder;
  std::size_t failing_allocation;
  unsigned variant;
  std::string_view body;

  bool has_child() const { return variant % 2 == 1; }
  std::string_view name() const { return service_names[variant % std::size(service_names)]; }
  KZCILBKeyType key_type() const { return static_cast<KZCILBKeyType>(variant % LB_MAX_KEY_TYPE); }
};

Choices choices_of(fuzz::Input &input) {
  const auto letter = static_cast<char>(input.byte());
  const bool is_known = letters.find(letter) != std::string_view::npos;
  const char builder =
      is_known ? letter : letters[static_cast<unsigned char>(letter) % letters.size()];
  const std::size_t failing_allocation = input.failing_allocation();
  const unsigned variant = input.choice(128);
  return {builder, failing_allocation, variant, input.rest()};
}

// How the end of the block decides the builder's status.
enum class Verdict {
  last_token,    // success when the last token is ")", and only then
  more_needed,   // no success without
  single_value,  // the builder reads one value and no block
};

// A builder with its parent. take_back() checks the one change that it may make to
// the parent and undoes it in a copy.
template <class Parent>
struct Builder {
  sword (*build)(Parent *parent, KZCITnsParseParams *params);
  sword (*clear)(Parent *parent);
  void (*take_back)(Parent &after, const Parent &before, const KZCITnsParseParams &params,
                    sword status);
  Verdict verdict;
  const char *child = nullptr;  // body of a child for the parent to have already
};

// The parent gains a child at a success and is left alone otherwise.
template <auto first, auto count, class Parent>
void take_back_child(Parent &after, const Parent &before, const KZCITnsParseParams &,
                     sword status) {
  check(after.*count == before.*count + (status == 0 ? 1 : 0), "status %d, %u children after %u",
        status, after.*count, before.*count);
  check(after.*first == before.*first || (before.*first == nullptr && status == 0),
        "status %d, another first child", status);
  after.*first = before.*first;
  after.*count = before.*count;
}

void take_back_connect_data(KZCIDescription &after, const KZCIDescription &before,
                            const KZCITnsParseParams &params, sword status) {
  if (before.connect_data != nullptr) {
    check(after.connect_data == before.connect_data && status == -1,
          "connect data are replaced, status %d", status);
    return;
  }
  const bool closed = params.tns_token_type == TNS_RIGHT_PARENTHESES;
  check((status == 0) == closed && (after.connect_data != nullptr) == closed,
        "connect data at %p, status %d", static_cast<void *>(after.connect_data), status);
  after.connect_data = nullptr;
}

void take_back_bytes(void *after, const void *before, std::size_t at, std::size_t size) {
  std::memcpy(static_cast<char *>(after) + at, static_cast<const char *>(before) + at, size);
}

void take_back_value(const support::Key &key, void *after, const void *before) {
  take_back_bytes(after, before, key.field.at, key.field.size);
  if (key.takes == support::Takes::text)
    take_back_bytes(after, before, key.field.length_at, sizeof(ub4));
}

template <Place... places>
void take_back_strategies(KZCIBlacklistConf &after, const KZCIBlacklistConf &before,
                          const KZCITnsParseParams &, sword) {
  for (const Place place : {places...})
    for (const support::Key &key : support::keys_of(place)) take_back_value(key, &after, &before);
}

void take_back_variable(KZCISystemVariables &after, const KZCISystemVariables &before,
                        const KZCITnsParseParams &params, sword status) {
  const auto variables = support::keys_of(Place::system_variables);
  const auto key =
      std::find_if(variables.begin(), variables.end(),
                   [&params](const support::Key &row) { return row.type == params.key_type; });
  if (key == variables.end()) {
    check(status == 0, "status %d for a key that is no variable", status);
    return;
  }
  if (key->takes == support::Takes::text) {
    const std::size_t length = support::text_in(&after, key->field).size();
    check(status == 0 || length == support::text_in(&before, key->field).size(),
          "a text of %zu is stored, status %d", length, status);
  } else {
    const sb8 number = support::number_in(&after, key->field);
    check(key->type != LB_LOG_SIZE || number >= 0x100000, "log size %lld",
          static_cast<long long>(number));
    check(status == 0 || status == -1, "status %d for a number", status);
  }
  take_back_value(*key, &after, &before);
}

// What a builder shows to its caller and leaves in the parse state.
struct Outcome {
  sword status;
  KZCITnsTokenType last_token;
  KZCILBKeyType key_type;
  std::string key;
  ub4 position;
  ub4 at_hand;
  int is_eof;
  int is_comment;
  std::size_t live_blocks;
  std::uint64_t log;

  bool operator==(const Outcome &other) const = default;
};

template <class Parent>
void check_status(const Builder<Parent> &builder, const KZCITnsParseParams &params, sword status) {
  const bool closed = params.tns_token_type == TNS_RIGHT_PARENTHESES;
  const bool may_run_out = builder.verdict == Verdict::single_value;
  check(status == 0 || status == -1 || (may_run_out && status == 100), "status %d", status);
  if (builder.verdict == Verdict::last_token)
    check((status == 0) == closed, "status %d, last token %d", status, params.tns_token_type);
  if (builder.verdict == Verdict::more_needed)
    check(status != 0 || closed, "status 0, last token %d", params.tns_token_type);
}

template <class Parent>
std::size_t blocks_below(const Parent &parent, std::string_view input) {
  fuzz::TreeChecker checker(input);
  checker.walk(parent);
  return checker.blocks();
}

// A copy of every byte, padding included.
template <class Record>
std::unique_ptr<Record> copy_of(const Record &record) {
  auto copy = std::make_unique<Record>();
  std::memcpy(copy.get(), &record, sizeof record);
  return copy;
}

// Builds once and checks what has changed.
template <class Parent>
sword build(const Builder<Parent> &builder, Parent &parent, KZCITnsParseParams &params,
            std::string_view input) {
  const auto before = copy_of(parent);
  const std::size_t blocks_before = blocks_below(parent, input);
  const std::size_t live_before = fuzz::live_blocks();
  const sword status = builder.build(&parent, &params);
  check_status(builder, params, status);
  if (status == 0)
    check(fuzz::live_blocks() - live_before == blocks_below(parent, input) - blocks_before,
          "blocks of a good build are lost");
  const auto after = copy_of(parent);
  builder.take_back(*after, *before, params, status);
  check(std::memcmp(after.get(), before.get(), sizeof(Parent)) == 0,
        "status %d, the parent changes elsewhere", status);
  return status;
}

template <class Parent>
void release(const Builder<Parent> &builder, Parent &parent, std::string_view input) {
  const std::size_t live_after = fuzz::live_blocks() - blocks_below(parent, input);
  check(builder.clear(&parent) == 0, "the parent is not cleared");
  check(fuzz::live_blocks() == live_after, "%zu blocks are left for %zu", fuzz::live_blocks(),
        live_after);
}

// From a fresh parent to its release, reading from this parse state.
template <class Parent>
Outcome exercise(const Builder<Parent> &builder, Parent &parent, KZCITnsParseParams &params,
                 const Choices &choices) {
  std::string input(choices.body);
  input.append(choices.name()).append(own_text);
  if (choices.has_child() && builder.child != nullptr) {
    support::DescriptorState child(builder.child);
    check(builder.build(&parent, &child.params) == 0, "no child for the parent");
  }
  const std::size_t live_before = fuzz::live_blocks();
  fuzz::take_log_fingerprint();
  fuzz::fail_allocation(choices.failing_allocation);
  const sword status = build(builder, parent, params, input);
  const Outcome outcome = {status,
                           params.tns_token_type,
                           params.key_type,
                           std::string(params.tns_key, params.tns_key_len),
                           params.buffer_pos,
                           params.buffer_len,
                           params.is_eof,
                           params.is_comment,
                           fuzz::live_blocks() - live_before,
                           fuzz::take_log_fingerprint()};
  release(builder, parent, input);
  return outcome;
}

template <class Parent>
sword nothing_to_clear(Parent *) {
  return 0;
}

// A service that can be a parent: allocated, and not of the reserved name.
KZCITnsService *allocate_service() {
  constexpr std::string_view name = "sales";
  void *const block = kzci_malloc(sizeof(KZCITnsService) + name.size(), "KZCITnsServiceBuild");
  auto *const service = static_cast<KZCITnsService *>(block);
  check(KZCITnsServiceInit(service, static_cast<ub4>(name.size()), name.data()) == 0, "no service");
  return service;
}

template <class Parent>
std::unique_ptr<Parent> initialised(sword (*init)(Parent *)) {
  auto parent = std::make_unique<Parent>();
  check(init(parent.get()) == 0, "the parent is not initialised");
  return parent;
}

Outcome build_service(KZCITnsParseParams &params, const Choices &choices) {
  constexpr Builder<KZCITns> builder = {
      KZCITnsServiceBuild, KZCITnsClear,
      take_back_child<&KZCITns::tns_service, &KZCITns::tns_service_count>, Verdict::more_needed};
  params.tns_key_len = static_cast<ub4>(choices.name().copy(params.tns_key, sizeof params.tns_key));
  return exercise(builder, *initialised(KZCITnsInit), params, choices);
}

Outcome build_description(KZCITnsParseParams &params, const Choices &choices) {
  constexpr Builder<KZCITnsService> builder = {
      KZCIDescriptionBuild, KZCITnsServiceClear,
      take_back_child<&KZCITnsService::description, &KZCITnsService::description_count>,
      Verdict::last_token, "(ADDRESS=(HOST=first))"};
  KZCITnsService *const parent = allocate_service();
  Outcome outcome = exercise(builder, *parent, params, choices);
  kzci_free(parent);
  return outcome;
}

Outcome build_address_list(KZCITnsParseParams &params, const Choices &choices) {
  constexpr Builder<KZCIDescription> builder = {
      KZCIAddressListBuild, KZCIDescriptionClear,
      take_back_child<&KZCIDescription::address_list, &KZCIDescription::address_list_count>,
      Verdict::last_token, "(ADDRESS=(HOST=first))"};
  return exercise(builder, *initialised(KZCIDescriptionInit), params, choices);
}

Outcome build_address(KZCITnsParseParams &params, const Choices &choices) {
  constexpr Builder<KZCIAddressList> builder = {
      KZCIAddressBuild, KZCIAddressListClear,
      take_back_child<&KZCIAddressList::address, &KZCIAddressList::address_count>,
      Verdict::last_token, "(HOST=first)"};
  return exercise(builder, *initialised(KZCIAddressListInit), params, choices);
}

Outcome build_connect_data(KZCITnsParseParams &params, const Choices &choices) {
  constexpr Builder<KZCIDescription> builder = {KZCIConnectDataBuild, KZCIDescriptionClear,
                                                take_back_connect_data, Verdict::more_needed,
                                                "(SID=first)"};
  return exercise(builder, *initialised(KZCIDescriptionInit), params, choices);
}

using BlacklistBuilder = Builder<KZCIBlacklistConf>;

Outcome build_blacklist(KZCITnsParseParams &params, const Choices &choices) {
  constexpr auto no_clear = nothing_to_clear<KZCIBlacklistConf>;
  constexpr BlacklistBuilder whole = {
      KZCIBlacklistConfBuild, no_clear,
      take_back_strategies<Place::remove_strategy, Place::append_strategy>, Verdict::last_token};
  constexpr BlacklistBuilder removal = {KZCIRemoveStrategyBuild, no_clear,
                                        take_back_strategies<Place::remove_strategy>,
                                        Verdict::last_token};
  constexpr BlacklistBuilder append = {KZCIAppendStrategyBuild, no_clear,
                                       take_back_strategies<Place::append_strategy>,
                                       Verdict::last_token};
  const BlacklistBuilder &builder = choices.builder == 'B'   ? whole
                                    : choices.builder == 'R' ? removal
                                                             : append;
  return exercise(builder, *initialised(KZCIBlacklistConfInit), params, choices);
}

Outcome build_system_variable(KZCITnsParseParams &params, const Choices &choices) {
  constexpr Builder<KZCISystemVariables> builder = {KZCISystemVariablesBuild,
                                                    KZCISystemVariablesClear, take_back_variable,
                                                    Verdict::single_value};
  params.key_type = choices.key_type();
  return exercise(builder, *initialised(KZCISystemVariablesInit), params, choices);
}

Outcome build(KZCITnsParseParams &params, const Choices &choices) {
  fuzz::fail_allocation(0);
  switch (choices.builder) {
    case 'S':
      return build_service(params, choices);
    case 'D':
      return build_description(params, choices);
    case 'L':
      return build_address_list(params, choices);
    case 'A':
      return build_address(params, choices);
    case 'C':
      return build_connect_data(params, choices);
    case 'V':
      return build_system_variable(params, choices);
    default:
      return build_blacklist(params, choices);
  }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  fuzz::Input input(data, size);
  const Choices choices = choices_of(input);
  const fuzz::Run run({choices.body, choices.name(), own_text});
  support::DescriptorState text(choices.body);
  support::FileState file(choices.body);
  const Outcome from_text = build(text.params, choices);
  const Outcome from_file = build(file.params, choices);
  check(from_text == from_file, "status %d from a text, %d from a file", from_text.status,
        from_file.status);
  return 0;
}
