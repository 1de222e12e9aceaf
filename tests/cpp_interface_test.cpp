// The C++ interface. Compiled as C++17 and as C++20, on a platform of its own that counts.
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <new>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "kzoci/oci_tnsname.hpp"
#include "kzoci/platform/memory.h"
#include "support/parsing.h"

static_assert(__cplusplus == KZOCI_TEST_STANDARD, "built by the standard that is meant");

namespace {

struct Counts {
  std::size_t allocations = 0;
  std::size_t releases = 0;
  std::size_t cpp_allocations = 0;
  std::size_t variables_read = 0;
  std::size_t failing = 0;  // number of the allocation that fails; 0 for none
};

Counts counts;

// What is allocated now, or null; more than any test has at once.
void *blocks[1000];

}  // namespace

void *operator new(std::size_t size) {
  ++counts.cpp_allocations;
  void *const block = std::malloc(size == 0 ? 1 : size);
  if (block == nullptr) std::abort();
  return block;
}
void operator delete(void *block) noexcept { std::free(block); }
void operator delete(void *block, std::size_t) noexcept { std::free(block); }

extern "C" {

void kzoci_log_inner(log_level, const char *, int, const char *, ...) {}

void *kzci_malloc(size_t size, const char *) {
  if (++counts.allocations == counts.failing) return nullptr;
  return *std::find(std::begin(blocks), std::end(blocks) - 1, nullptr) = std::malloc(size);
}

void kzci_free(void *pointer) {
  ++counts.releases;
  void **const block = std::find(std::begin(blocks), std::end(blocks), pointer);
  if (block == std::end(blocks)) std::abort();
  *block = nullptr;
  std::free(pointer);
}

char *__real_getenv(const char *name);

char *__wrap_getenv(const char *name) {
  ++counts.variables_read;
  return __real_getenv(name);
}
}

namespace {

using kzoci::Outcome;
using kzoci::Result;
using kzoci::Tns;
using support::TemporaryFolder;

// Service, description, two lists of two and one addresses, connect data.
constexpr std::size_t records_of_pair = 8;

constexpr std::string_view names =
    "solo = (DESCRIPTION = (ADDRESS = (PROTOCOL = TCP)(HOST = one)(PORT = 1521))\n"
    "  (CONNECT_DATA = (SERVICE_NAME = first)(KZ_USER_EXTRA_INFO = web)(KZ_MODE = 3)\n"
    "  (SESSION_VARIABLE = \"a=1\")))\n"
    "pair = (DESCRIPTION =\n"
    "  (ADDRESS_LIST = (KZLB_STRATEGY = ROTATION)\n"
    "    (ADDRESS = (HOST = a)(PORT = 1)(WEIGHT = 5)) (ADDRESS = (HOST = bb)(PORT = 22)))\n"
    "  (ADDRESS_LIST = (ADDRESS = (HOST = ccc)(PORT = 333)))\n"
    "  (CONNECT_DATA = (SID = s)))\n"
    "bad = (DESCRIPTION = (NONSENSE = 1))\n"
    "KZCISYSTEMVARIABLES = (SESSION_VARIABLE = v)(LOG_LEVEL = WARN)(LOG_PATH = \"x.log\")\n"
    "late = (DESCRIPTION = (ADDRESS = (HOST = never)))\n";

constexpr char descriptor[] =
    "(DESCRIPTION = (ADDRESS = (HOST = lit)(PORT = 9)) (CONNECT_DATA = (SID = x)))";

class CppInterface : public testing::Test {
 protected:
  void SetUp() override {
    counts = {};
    path_ = folder_.write("names.ora", names);
    environment_.set("KZCI_TNS_FILE", path_);
  }

  void TearDown() override {
    tns_.clear();
    std::size_t left = 0;
    for (void *&block : blocks) {
      left += block != nullptr ? 1u : 0u;
      std::free(std::exchange(block, nullptr));
    }
    EXPECT_TRUE(left == 0 || leaves_records_) << left;
  }

  KZCITnsService &found(const kzoci::Identifier &identifier) {
    const Result result = tns_.look_up(identifier);
    if (!result) std::abort();
    return *result.service;
  }

  support::Environment environment_;
  TemporaryFolder folder_;
  std::string path_;
  bool leaves_records_ = false;  // A build that fails keeps what was attached, by contract.
  Tns tns_;
};

// What can be compared of a result: where the service stands is another matter.
struct Told {
  Outcome outcome;
  sword status;
  bool has_service;
  int file_error;

  bool operator==(const Told &other) const {
    return outcome == other.outcome && status == other.status && has_service == other.has_service &&
           file_error == other.file_error;
  }
};

void PrintTo(const Told &told, std::ostream *out) {
  *out << "{outcome " << static_cast<int>(told.outcome) << ", status " << told.status
       << ", service " << told.has_service << ", file_error " << told.file_error << "}";
}

Told told(const Result &result) {
  return {result.outcome, result.status, result.service != nullptr, result.file_error};
}

constexpr Told is_found = {Outcome::found, 0, true, 0};
constexpr Told is_not_found = {Outcome::not_found, 0, false, 0};
constexpr Told is_malformed = {Outcome::failed, -1, false, 0};
constexpr Told is_null = {Outcome::failed, -2, false, 0};

// The services as the C interface prints them.
std::string dump(const Tns &tns) {
  char *text = nullptr;
  std::size_t size = 0;
  std::FILE *const stream = open_memstream(&text, &size);
  for (const KZCITnsService &service : tns.services())
    KZCITnsServiceDisplay(const_cast<KZCITnsService *>(&service), stream);
  std::fclose(stream);
  std::string out(text, size);
  std::free(text);
  return out;
}

using Texts = std::vector<std::string>;

template <class Range>
Texts hosts(const Range &addresses) {
  Texts out;
  for (const KZCIAddress &address : addresses) out.emplace_back(kzoci::host(address));
  return out;
}

// ---- Lookups

TEST_F(CppInterface, FoundGivesTheService) {
  const Result result = tns_.look_up("pair");
  EXPECT_EQ(told(result), is_found);
  EXPECT_TRUE(result);
  EXPECT_EQ(kzoci::name(*result.service), "pair");
  EXPECT_EQ(tns_.record().tns_service, result.service);
  EXPECT_EQ(tns_.size(), 1u);
}

TEST_F(CppInterface, ServicesStandInTheOrderOfTheLookups) {
  KZCITnsService &pair = found("pair");
  KZCITnsService &solo = found(std::string("solo"));
  KZCITnsService &literal = found(descriptor);
  Texts order;
  for (const KZCITnsService &service : tns_.services()) order.emplace_back(kzoci::name(service));
  EXPECT_EQ(order, (Texts{"pair", "solo", "DESCRIPTION"}));
  EXPECT_EQ(&tns_.services().front(), &pair);
  EXPECT_EQ(&*std::next(tns_.services().begin()), &solo);
  EXPECT_EQ(&tns_.services().back(), &literal);
}

TEST_F(CppInterface, NotFoundIsNoFailure) {
  const Result result = tns_.look_up("nosuch");
  EXPECT_EQ(told(result), is_not_found);
  EXPECT_FALSE(result);
  EXPECT_TRUE(tns_.empty());
}

TEST_F(CppInterface, MalformedAndNullFailWithTheStatus) {
  EXPECT_EQ(told(tns_.look_up("bad")), is_malformed);
  EXPECT_EQ(told(tns_.look_up(static_cast<const char *>(nullptr))), is_null);
  EXPECT_EQ(told(tns_.build_literal(static_cast<const char *>(nullptr))), is_null);
  EXPECT_TRUE(tns_.empty());
}

TEST_F(CppInterface, LiteralIsFoundNotFoundOrMalformed) {
  EXPECT_EQ(told(tns_.build_literal(descriptor)), is_found);
  EXPECT_EQ(kzoci::host(kzoci::address_lists(kzoci::descriptions(tns_.services().back()).front())
                            .front()
                            .address[0]),
            "lit");
  EXPECT_EQ(told(tns_.build_literal("(DESCRIPTION")), is_not_found);
  EXPECT_EQ(told(tns_.build_literal("(DESCRIPTION=(ADDRESS=))")), is_malformed);
  EXPECT_EQ(told(tns_.build_literal("sales")), is_malformed);
  EXPECT_EQ(tns_.size(), 1u);
}

TEST_F(CppInterface, IdentifierIsExactlyItsText) {
  static_assert(!std::is_convertible_v<std::string_view, kzoci::Identifier>,
                "a text without a zero byte is named as such");
  const std::string longer = "pairs";
  EXPECT_EQ(
      told(tns_.look_up(kzoci::Identifier::unterminated(std::string_view(longer).substr(0, 4)))),
      is_found);
  EXPECT_EQ(told(tns_.look_up(kzoci::Identifier::unterminated({}))), is_not_found);
  EXPECT_EQ(kzoci::Identifier(std::string("a\0b", 3)).size(), 3u);
  EXPECT_TRUE(kzoci::Identifier(descriptor).is_literal());
  EXPECT_FALSE(kzoci::Identifier("pair").is_literal());
  EXPECT_FALSE(kzoci::Identifier(static_cast<const char *>(nullptr)).is_literal());
}

TEST_F(CppInterface, IdentifierTooLongForALengthIsNoPartOfIt) {
  if constexpr (sizeof(std::size_t) > sizeof(ub4)) {
    // Only the length is looked at.
    const std::string_view text("pair", static_cast<std::size_t>(UINT32_MAX) + 5);
    EXPECT_EQ(kzoci::Identifier::unterminated(text).size(), UINT32_MAX);
  }
}

// ---- Ownership

TEST_F(CppInterface, ContainerClearsItself) {
  {
    Tns tns;
    ASSERT_TRUE(tns.look_up("pair"));
    EXPECT_EQ(counts.allocations, records_of_pair);
    EXPECT_EQ(counts.releases, 0u);
  }
  EXPECT_EQ(counts.releases, records_of_pair);
}

TEST_F(CppInterface, MovedFromIsEmptyAndUsable) {
  const KZCITnsService *const service = &found("pair");
  Tns other = std::move(tns_);
  EXPECT_EQ(other.size(), 1u);
  EXPECT_EQ(&other.services().front(), service);
  EXPECT_TRUE(tns_.empty());
  EXPECT_EQ(tns_.record().tns_service, nullptr);
  EXPECT_EQ(tns_.services().begin(), tns_.services().end());
  found("solo");
  EXPECT_EQ(tns_.size(), 1u);
  EXPECT_EQ(kzoci::name(other.services().front()), "pair");
}

TEST_F(CppInterface, MoveLeavesIteratorsAndTextsGood) {
  const KZCITnsService &service = found("pair");
  const std::string_view name = kzoci::name(service);
  const auto lists = kzoci::address_lists(kzoci::descriptions(service).front());
  const Tns other = std::move(tns_);
  found("solo");
  EXPECT_EQ(name, "pair");
  EXPECT_EQ(hosts(kzoci::addresses(lists.front())), (Texts{"a", "bb"}));
}

TEST_F(CppInterface, AssignmentReleasesTheOldTree) {
  found("pair");
  Tns other;
  ASSERT_TRUE(other.look_up("solo"));
  tns_ = std::move(other);
  EXPECT_EQ(counts.releases, records_of_pair);
  EXPECT_EQ(kzoci::name(tns_.services().front()), "solo");
  EXPECT_TRUE(other.empty());
}

TEST_F(CppInterface, AssignmentToItselfKeepsTheTree) {
  found("pair");
  Tns &same = tns_;
  tns_ = std::move(same);
  EXPECT_EQ(counts.releases, 0u);
  EXPECT_EQ(kzoci::name(tns_.services().front()), "pair");
}

TEST_F(CppInterface, CanBeMovedAndNotCopied) {
  static_assert(!std::is_copy_constructible_v<Tns> && !std::is_copy_assignable_v<Tns>, "");
  static_assert(std::is_nothrow_move_constructible_v<Tns> && std::is_nothrow_move_assignable_v<Tns>,
                "");
  std::vector<Tns> many(3);
  ASSERT_TRUE(many[1].look_up("solo"));
  many.reserve(100);
  EXPECT_EQ(kzoci::name(many[1].services().front()), "solo");
}

TEST_F(CppInterface, TreeGoesToTheCInterfaceAndBack) {
  const KZCITnsService *const service = &found("solo");
  KZCITns tree = tns_.release();
  EXPECT_TRUE(tns_.empty());
  EXPECT_EQ(tree.tns_service, service);
  EXPECT_EQ(tree.tns_service_count, 1u);
  Tns other(tree);
  EXPECT_EQ(&other.services().front(), service);
  EXPECT_EQ(counts.releases, 0u);
}

TEST_F(CppInterface, ClearEmptiesForTheNextUse) {
  found("pair");
  EXPECT_EQ(tns_.clear(), 0);
  EXPECT_TRUE(tns_.empty());
  EXPECT_EQ(counts.releases, records_of_pair);
  found("solo");
  EXPECT_EQ(tns_.size(), 1u);
}

TEST_F(CppInterface, ClearTellsWhatTheCFunctionTells) {
  found("pair");
  tns_.record().tns_service_count = 2;  // of a ring of one
  EXPECT_EQ(tns_.clear(), -1);
  KZCITnsInit(&tns_.record());  // Its records are gone.
}

TEST_F(CppInterface, DisplayPrintsTheTree) {
  EXPECT_EQ(tns_.display(), -1);
  found(descriptor);
  testing::internal::CaptureStdout();
  EXPECT_EQ(tns_.display(), 0);
  const std::string printed = testing::internal::GetCapturedStdout();
  EXPECT_EQ(printed.substr(0, printed.find("----")),
            "Tns:\n--tns_serivce_count:1\n--TnsService:DESCRIPTION\n");
}

// ---- Ranges

TEST_F(CppInterface, RangesWalkInTheOrderOfTheFile) {
  Texts out;
  for (KZCIDescription &des : kzoci::descriptions(found("pair")))
    for (KZCIAddressList &list : kzoci::address_lists(des))
      for (KZCIAddress &address : kzoci::addresses(list))
        out.push_back(std::string(kzoci::host(address)) + ":" + std::string(kzoci::port(address)));
  EXPECT_EQ(out, (Texts{"a:1", "bb:22", "ccc:333"}));
}

TEST_F(CppInterface, RangesKnowTheirSize) {
  const KZCITnsService &service = found("pair");
  const auto lists = kzoci::address_lists(kzoci::descriptions(service).front());
  EXPECT_EQ(lists.size(), 2u);
  EXPECT_FALSE(lists.empty());
  EXPECT_EQ(std::distance(lists.begin(), lists.end()), 2);
  EXPECT_EQ(std::distance(lists.cbegin(), lists.cend()), 2);
  EXPECT_EQ(kzoci::addresses(lists.back()).size(), 1u);
  EXPECT_EQ(kzoci::host(kzoci::addresses(lists.front()).back()), "bb");
  const KZCIAddressList none = {};
  EXPECT_TRUE(kzoci::addresses(none).empty());
  EXPECT_EQ(kzoci::addresses(none).begin(), kzoci::addresses(none).end());
  EXPECT_EQ(kzoci::Records<KZCIAddress>().size(), 0u);
}

TEST_F(CppInterface, CountWithoutAFirstRecordIsEmpty) {
  KZCIAddressList list = {};
  list.address_count = 3;
  EXPECT_TRUE(kzoci::addresses(list).empty());
}

TEST_F(CppInterface, AlgorithmsTakeTheIterators) {
  KZCIDescription &des = *found("pair").description;
  const auto list = kzoci::addresses(kzoci::address_lists(des).front());
  const auto by_host = [](const KZCIAddress &address) { return kzoci::host(address) == "bb"; };
  const auto found_at = std::find_if(list.begin(), list.end(), by_host);
  ASSERT_NE(found_at, list.end());
  EXPECT_EQ(kzoci::port(*found_at), "22");
  EXPECT_EQ(std::count_if(list.begin(), list.end(), by_host), 1);
  EXPECT_EQ(std::max_element(
                list.begin(), list.end(),
                [](const KZCIAddress &a, const KZCIAddress &b) { return a.weight < b.weight; })
                ->weight,
            5);
  Texts backwards;
  std::transform(std::make_reverse_iterator(list.end()), std::make_reverse_iterator(list.begin()),
                 std::back_inserter(backwards),
                 [](const KZCIAddress &address) { return std::string(kzoci::host(address)); });
  EXPECT_EQ(backwards, (Texts{"bb", "a"}));
}

TEST_F(CppInterface, IteratorsStepBothWays) {
  const auto list = kzoci::addresses(kzoci::address_lists(*found("pair").description).front());
  auto at = list.begin();
  EXPECT_EQ(kzoci::host(*at++), "a");
  EXPECT_EQ(at->weight, 1);
  EXPECT_EQ(kzoci::host(*at--), "bb");
  EXPECT_EQ(at, list.begin());
  EXPECT_EQ(++at, --list.end());
  EXPECT_NE(at, list.begin());
  EXPECT_EQ(decltype(at)(), decltype(at)());
  // In a ring of two both ways lead to the same record.
  const KZCIDescription &three = *found(
                                      "(DESCRIPTION=(ADDRESS_LIST=(ADDRESS=(HOST=x))"
                                      "(ADDRESS=(HOST=y))(ADDRESS=(HOST=z))))")
                                      .description;
  auto back = kzoci::addresses(*three.address_list).end();
  EXPECT_EQ(kzoci::host(*--back), "z");
  EXPECT_EQ(kzoci::host(*--back), "y");
  EXPECT_EQ(kzoci::host(*--back), "x");
}

TEST_F(CppInterface, RecordsCanBeChangedAndConstOnesNot) {
  KZCITnsService &service = found("pair");
  for (KZCIAddressList &list : kzoci::address_lists(*service.description))
    for (KZCIAddress &address : kzoci::addresses(list)) address.weight = 7;
  EXPECT_EQ(service.description->address_list->address->weight, 7);
  const Tns &constant = tns_;
  using Changing = decltype(tns_.services().begin());
  using Constant = decltype(constant.services().begin());
  static_assert(std::is_same_v<std::iterator_traits<Changing>::reference, KZCITnsService &>, "");
  static_assert(std::is_same_v<std::iterator_traits<Constant>::reference, const KZCITnsService &>,
                "");
  static_assert(std::is_convertible_v<Changing, Constant>, "");
  static_assert(!std::is_convertible_v<Constant, Changing>, "");
  const Constant first = tns_.services().begin();
  EXPECT_EQ(first, constant.services().begin());
}

using AddressIterator = kzoci::Records<const KZCIAddress>::iterator;
using AddressTraits = std::iterator_traits<AddressIterator>;
static_assert(std::is_base_of_v<std::forward_iterator_tag, AddressTraits::iterator_category>, "");
static_assert(std::is_same_v<AddressTraits::value_type, KZCIAddress>, "");
static_assert(std::is_same_v<AddressTraits::pointer, const KZCIAddress *>, "");
static_assert(std::is_same_v<AddressTraits::difference_type, std::ptrdiff_t>, "");
static_assert(std::is_nothrow_copy_constructible_v<AddressIterator>, "");

#if __cplusplus >= 202002L
template <class Record>
constexpr bool is_good_range =
    std::ranges::forward_range<kzoci::Records<Record>> &&std::ranges::bidirectional_range<
        kzoci::Records<Record>> &&std::ranges::sized_range<kzoci::Records<Record>>
        &&std::ranges::common_range<kzoci::Records<Record>> &&std::ranges::borrowed_range<
            kzoci::Records<Record>> &&std::ranges::view<kzoci::Records<Record>>;
static_assert(is_good_range<KZCITnsService> && is_good_range<const KZCITnsService>);
static_assert(is_good_range<KZCIDescription> && is_good_range<const KZCIDescription>);
static_assert(is_good_range<KZCIAddressList> && is_good_range<const KZCIAddressList>);
static_assert(is_good_range<KZCIAddress> && is_good_range<const KZCIAddress>);

TEST_F(CppInterface, RangeAlgorithmsGiveIteratorsThatLast) {
  KZCIAddressList &list = kzoci::address_lists(*found("pair").description).front();
  const auto at = std::ranges::find(kzoci::addresses(list), "bb", kzoci::host);
  EXPECT_EQ(at->weight, 1);
  EXPECT_EQ(std::ranges::distance(kzoci::addresses(list)), 2);
}
#endif

// ---- Texts

TEST_F(CppInterface, TextsHaveTheirLengths) {
  const KZCIDescription &des = *found("solo").description;
  const KZCIAddress &address = *des.address_list->address;
  EXPECT_EQ(kzoci::host(address), "one");
  EXPECT_EQ(kzoci::port(address), "1521");
  EXPECT_EQ(kzoci::protocol(address), "TCP");
  EXPECT_EQ(kzoci::service_name(*des.connect_data), "first");
  EXPECT_EQ(kzoci::user_extra_info(*des.connect_data), "web");
  EXPECT_EQ(kzoci::session_variable(*des.connect_data), "a=1");
  const KZCISystemVariables &variables = found("KZCISYSTEMVARIABLES").sys_vars;
  EXPECT_EQ(kzoci::session_variable(variables), "v");
  EXPECT_EQ(kzoci::log_level_text(variables), "WARN");
  EXPECT_EQ(kzoci::log_path_text(variables), "x.log");
}

TEST_F(CppInterface, TextsEndWithTheArray) {
  KZCIAddress address = {};
  EXPECT_TRUE(kzoci::port(address).empty());
  std::fill(std::begin(address.port), std::end(address.port), '7');
  address.port_len = 6;
  EXPECT_EQ(kzoci::port(address), "777777");
  address.port_len = 7;
  EXPECT_EQ(kzoci::port(address), "7777777");
  address.port_len = 8;
  EXPECT_EQ(kzoci::port(address), "7777777");
  address.port_len = UINT32_MAX;
  EXPECT_EQ(kzoci::port(address), "7777777");
  EXPECT_EQ(kzoci::port(address).data(), address.port);
}

TEST_F(CppInterface, TextMayFillItsArray) {
  const std::string info(KZCI_EXTRA_INFO_SIZE, 'i');
  KZCITnsService &service = found("(DESCRIPTION=(CONNECT_DATA=(KZ_USER_EXTRA_INFO=" + info + ")))");
  EXPECT_EQ(kzoci::user_extra_info(*service.description->connect_data), info);
  EXPECT_EQ(kzoci::SessionData(service).extra_info(), info);
}

// ---- What a session is opened with

TEST_F(CppInterface, SessionDataOutlivesTheTree) {
  const kzoci::SessionData data(found("solo"));
  tns_.clear();
  EXPECT_TRUE(data);
  EXPECT_EQ(data.status(), 0);
  EXPECT_EQ(data.extra_info(), "web");
  EXPECT_EQ(data.kz_mode(), 3);
  EXPECT_EQ(data.session_variable(), "a=1");
  const kzoci::SessionData copy = data;
  EXPECT_EQ(copy.extra_info(), "web");
  EXPECT_NE(copy.extra_info().data(), data.extra_info().data());
}

TEST_F(CppInterface, SessionDataOfAbsentValues) {
  const kzoci::SessionData none(found("pair"));
  EXPECT_TRUE(none);
  EXPECT_TRUE(none.extra_info().empty());
  EXPECT_EQ(none.kz_mode(), 0);
  EXPECT_TRUE(none.session_variable().empty());
  const kzoci::SessionData failed(found("(DESCRIPTION=(KZLB=ON))"));
  EXPECT_FALSE(failed);
  EXPECT_EQ(failed.status(), -1);
  EXPECT_TRUE(failed.extra_info().empty());
}

TEST_F(CppInterface, DblinkIsTerminatedText) {
  const kzoci::Dblink link(found("solo"));
  EXPECT_TRUE(link);
  EXPECT_EQ(link.status(), 0);
  EXPECT_EQ(link.text(), "one:1521/first");
  EXPECT_STREQ(link.c_str(), "one:1521/first");
  EXPECT_EQ(link.full_length(), 14);
  EXPECT_FALSE(link.is_cut());
}

TEST_F(CppInterface, DblinkFailsWithoutAnAddress) {
  const kzoci::Dblink link(found("(DESCRIPTION=(CONNECT_DATA=(SID=s)))"));
  EXPECT_FALSE(link);
  EXPECT_EQ(link.status(), -1);
  EXPECT_TRUE(link.text().empty());
  EXPECT_EQ(link.full_length(), 0);
  EXPECT_FALSE(link.is_cut());
}

// "HOST:1/s" of 255 characters fits, of 256 is cut.
TEST_F(CppInterface, DblinkSaysWhetherItIsCut) {
  const auto of_length = [this](std::size_t length) {
    return kzoci::Dblink(found("(DESCRIPTION=(ADDRESS=(HOST=" + std::string(length - 4, 'h') +
                               ")(PORT=1))(CONNECT_DATA=(SID=s)))"));
  };
  const kzoci::Dblink whole = of_length(255);
  EXPECT_FALSE(whole.is_cut());
  EXPECT_EQ(whole.text(), std::string(251, 'h') + ":1/s");
  const kzoci::Dblink cut = of_length(256);
  EXPECT_TRUE(cut.is_cut());
  EXPECT_EQ(cut.full_length(), 256);
  EXPECT_EQ(cut.text(), std::string(252, 'h') + ":1/");
}

// ---- Lookup by path

// What the environment's lookup tells and builds with this file.
void expect_as_by_environment(const std::string &path, const std::string &name) {
  SCOPED_TRACE(name);
  setenv("KZCI_TNS_FILE", path.c_str(), 1);
  Tns by_environment;
  const Told expected = told(by_environment.look_up(name));
  unsetenv("KZCI_TNS_FILE");
  Tns by_path;
  Tns by_stream;
  EXPECT_EQ(told(by_path.look_up_in(path.c_str(), name)), expected);
  EXPECT_EQ(dump(by_path), dump(by_environment));
  std::FILE *const stream = std::fopen(path.c_str(), "r");
  EXPECT_EQ(told(by_stream.look_up_in(stream, name)), expected);
  EXPECT_EQ(dump(by_stream), dump(by_environment));
  std::fclose(stream);
}

TEST_F(CppInterface, PathGivesFoundNotFoundOrFailed) {
  EXPECT_EQ(told(tns_.look_up_in(path_.c_str(), "pair")), is_found);
  EXPECT_EQ(kzoci::name(tns_.services().back()), "pair");
  EXPECT_EQ(told(tns_.look_up_in(path_.c_str(), "KZCISYSTEMVARIABLES")), is_found);
  EXPECT_EQ(told(tns_.look_up_in(path_.c_str(), "Pair")), is_not_found);
  EXPECT_EQ(told(tns_.look_up_in(path_.c_str(), "late")), is_not_found);
  EXPECT_EQ(told(tns_.look_up_in(path_.c_str(), "bad")), is_malformed);
  EXPECT_EQ(tns_.size(), 2u);
}

TEST_F(CppInterface, PathIsAsTheEnvironment) {
  for (const char *name : {"solo", "pair", "bad", "KZCISYSTEMVARIABLES", "late", "nosuch", "",
                           "sol", "solos", descriptor, "(DESCRIPTION=)"})
    expect_as_by_environment(path_, name);
  // Comparison ends at a zero byte, as the environment's does.
  folder_.write("odd.ora", std::string_view("a\0b = (DESCRIPTION = (ADDRESS = (HOST = z)))", 44));
  expect_as_by_environment(folder_.path() + "/odd.ora", std::string("a\0c", 3));
  expect_as_by_environment(folder_.path() + "/odd.ora", "a");
}

TEST_F(CppInterface, PathIsAsTheEnvironmentForOddFiles) {
  leaves_records_ = true;
  const std::string good = "x = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1)))\n";
  const std::string texts[] = {
      "",
      "x",
      "x =",
      "x x",
      "x = y\n" + good,
      "other = y\n" + good,
      "other = (A = (B)\n" + good,
      "other = (A)) " + good,
      "( = " + good,
      "# only a comment",
      "# (\n" + good,
      "other = (# (\n) " + good,
      "KZCI = (LOG_COUNT = 1)\n" + good,
      "kz = (LOG_COUNT = 1)\n" + good,
      "x = (DESCRIPTION = (ADDRESS = (HOST = h)",
      "x = (DESCRIPTION = (KZLB = ON)) (DESCRIPTION = (KZLB = OFF)) y = (DESCRIPTION = (KZLB = "
      "ON))",
      std::string(300, 'n') + " = (A) " + good,
      std::string(1023, ' ') + good,
      std::string(1020, ' ') + good,
      good + good,
  };
  for (const std::string &text : texts) {
    SCOPED_TRACE(text);
    const std::string path = folder_.write("odd.ora", text);
    for (const char *name : {"x", "y", "other", "kz", "KZCI"}) expect_as_by_environment(path, name);
  }
}

TEST_F(CppInterface, PathIsAsTheEnvironmentWithoutMemory) {
  leaves_records_ = true;
  for (std::size_t n = 1; n <= records_of_pair + 1; ++n) {
    SCOPED_TRACE(n);
    Tns by_environment;
    Tns by_path;
    counts = {};
    counts.failing = n;
    const Told expected = told(by_environment.look_up("pair"));
    const Counts of_environment = counts;
    counts = {};
    counts.failing = n;
    EXPECT_EQ(told(by_path.look_up_in(path_.c_str(), "pair")), expected);
    EXPECT_EQ(expected, n <= records_of_pair ? is_malformed : is_found);
    EXPECT_EQ(counts.allocations, of_environment.allocations);
    EXPECT_EQ(counts.releases, of_environment.releases);
  }
  counts = {};
}

TEST_F(CppInterface, PathReadsNoEnvironment) {
  const std::string other = folder_.write("other.ora", "pair = (DESCRIPTION = (KZLB = ON))");
  for (const char *variable : {"KZCI_TNS_FILE", "TNS_ADMIN", "ORACLE_HOME"})
    environment_.set(variable, other);
  counts.variables_read = 0;
  EXPECT_TRUE(tns_.look_up_in(path_.c_str(), "pair"));
  EXPECT_EQ(counts.variables_read, 0u);
  EXPECT_EQ(tns_.services().front().description->address_list_count, 2u);
  EXPECT_STREQ(std::getenv("KZCI_TNS_FILE"), other.c_str());
  EXPECT_TRUE(tns_.look_up("pair"));
  EXPECT_EQ(tns_.services().back().description->address_list_count, 0u);
}

TEST_F(CppInterface, FileThatCannotBeOpenedIsNotFoundWithTheReason) {
  const Told missing = {Outcome::not_found, 0, false, ENOENT};
  EXPECT_EQ(told(tns_.look_up_in((path_ + ".none").c_str(), "pair")), missing);
  const Told no_folder = {Outcome::not_found, 0, false, ENOTDIR};
  EXPECT_EQ(told(tns_.look_up_in((path_ + "/x").c_str(), "pair")), no_folder);
}

TEST_F(CppInterface, DirectoryIsNotFoundWithTheReason) {
  const Told directory = {Outcome::not_found, 0, false, EISDIR};
  EXPECT_EQ(told(tns_.look_up_in(folder_.path().c_str(), "pair")), directory);
  errno = EACCES;
  EXPECT_EQ(told(tns_.look_up_in(path_.c_str(), "none")), is_not_found);
}

TEST_F(CppInterface, PathIsNotCut) {
  const std::string path =
      folder_.write(std::string(200, 'd') + "/" + std::string(200, 'e'), names);
  EXPECT_EQ(told(tns_.look_up_in(path.c_str(), "pair")), is_found);
}

TEST_F(CppInterface, NullArgumentsOfAPathFail) {
  EXPECT_EQ(told(tns_.look_up_in(static_cast<const char *>(nullptr), "pair")), is_null);
  EXPECT_EQ(told(tns_.look_up_in(path_.c_str(), static_cast<const char *>(nullptr))), is_null);
  EXPECT_EQ(told(tns_.look_up_in("/nonexistent", static_cast<const char *>(nullptr))), is_null);
  EXPECT_EQ(told(tns_.look_up_in(static_cast<std::FILE *>(nullptr), "pair")), is_null);
  std::FILE *const stream = std::fopen(path_.c_str(), "r");
  EXPECT_EQ(told(tns_.look_up_in(stream, static_cast<const char *>(nullptr))), is_null);
  std::fclose(stream);
}

TEST_F(CppInterface, LiteralLeavesTheFileAlone) {
  EXPECT_EQ(told(tns_.look_up_in("/nonexistent/names.ora", descriptor)), is_found);
  std::FILE *const stream = std::fopen(path_.c_str(), "r");
  EXPECT_EQ(told(tns_.look_up_in(stream, descriptor)), is_found);
  EXPECT_EQ(std::ftell(stream), 0);
  std::fclose(stream);
}

TEST_F(CppInterface, StreamIsReadFromWhereItStandsAndStaysOpen) {
  std::FILE *const stream = std::fopen(path_.c_str(), "r");
  std::fseek(stream, static_cast<long>(names.find("pair")), SEEK_SET);
  EXPECT_EQ(told(tns_.look_up_in(stream, "solo")), is_not_found);
  std::rewind(stream);
  EXPECT_EQ(told(tns_.look_up_in(stream, "solo")), is_found);
  EXPECT_EQ(std::fclose(stream), 0);
}

TEST_F(CppInterface, FilesAreClosed) {
  const auto lowest = [] {
    std::FILE *const file = std::fopen("/dev/null", "r");
    const int descriptor_number = fileno(file);
    std::fclose(file);
    return descriptor_number;
  };
  const int before = lowest();
  for (const char *name : {"pair", "nosuch", "bad", descriptor})
    static_cast<void>(tns_.look_up_in(path_.c_str(), name));
  EXPECT_EQ(lowest(), before);
}

// ---- Costs

TEST_F(CppInterface, AllocatesWhatTheCFunctionsAllocate) {
  KZCITns by_c;
  boolean find = 0;
  KZCITnsInit(&by_c);
  KZCITnsBuild(&by_c, reinterpret_cast<const OraText *>("pair"), 4, &find);
  KZCITnsClear(&by_c);
  const std::size_t of_c = counts.allocations;
  EXPECT_EQ(of_c, records_of_pair);

  const std::string terminated = "pair";
  std::size_t characters = 0;
  counts = {};
  {
    Tns tns;
    const bool all_found = tns.look_up("pair") && tns.look_up(terminated) &&
                           tns.look_up_in(path_.c_str(), "pair") && tns.build_literal(descriptor);
    const Tns moved = std::move(tns);
    for (const KZCITnsService &service : moved.services()) {
      characters += kzoci::name(service).size() + kzoci::Dblink(service).text().size() +
                    kzoci::SessionData(service).extra_info().size();
      for (const KZCIDescription &des : kzoci::descriptions(service))
        for (const KZCIAddressList &list : kzoci::address_lists(des))
          for (const KZCIAddress &address : kzoci::addresses(list))
            characters += kzoci::host(address).size();
    }
    if (!all_found) characters = 0;
  }
  const Counts spent = counts;
  // Three services of "pair", and service, description, list, address and connect data.
  EXPECT_EQ(spent.allocations, 3 * of_c + 5);
  EXPECT_EQ(spent.releases, 3 * of_c + 5);
  EXPECT_EQ(spent.cpp_allocations, 0u);
  // "pair", "a:1/s", "a", "bb", "ccc" three times; "DESCRIPTION", "lit:9/x", "lit".
  EXPECT_EQ(characters, 3 * 15u + 21u);
}

}  // namespace
