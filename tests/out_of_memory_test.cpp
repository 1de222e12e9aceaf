// A build in which every allocation fails in turn: the status, every record of
// the log, every allocation and release, and what stays allocated.
#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include "kzoci/oci_tnsname.h"
#include "support/expected_log.h"
#include "support/parsing.h"

namespace {

using namespace expected_log;
using support::Block;
using support::build;
using support::Outcome;

constexpr std::size_t service_size = sizeof(KZCITnsService);  // Without the name.

// One allocation: what the log says since the allocation before it, the block,
// and what follows when there is no memory for it.
struct Step {
  Lines before;
  Block block;
  Lines failure;
  std::vector<Block> left;
};

std::string size_and_tag(const Block &block) {
  return std::to_string(block.size) + " " + block.tag;
}

Lines release(const std::string &tag) { return {"FREE " + tag}; }

Lines no_memory(const std::string &what, std::size_t size) {
  return {"ERROR malloc " + what + " error, malloc size:" + std::to_string(size)};
}

Block description_block() { return {"KZCIDescription", sizeof(KZCIDescription)}; }
Block list_block() { return {"address_list", sizeof(KZCIAddressList)}; }
Block address_block() { return {"address", sizeof(KZCIAddress)}; }
Block data_block() { return {"KZCIConnectData", sizeof(KZCIConnectData)}; }

// The ways in which a failure travels up from each block. Each begins with the
// message about the memory; `service` is what the service's level adds.
Lines no_description(const Lines &service) {
  // The size in this message is that of a service.
  return no_memory("description", service_size) +
         Lines{"ERROR fail to build description, status:-1"} + service;
}

Lines description_lost(const Lines &service) {
  return Lines{"ERROR something error in build description"} + release("KZCIDescription") +
         Lines{"ERROR fail to build description, status:-1"} + service;
}

Lines no_list(const Lines &service) {
  return no_memory("address_list", sizeof(KZCIAddressList)) +
         Lines{"ERROR fail to call KZCIAddressListBuild, status:-1"} + description_lost(service);
}

Lines no_implied_list(const Lines &service) {
  return no_memory("address_list", sizeof(KZCIAddressList)) + description_lost(service);
}

Lines no_address(const Lines &service) {
  return no_memory("address", sizeof(KZCIAddress)) +
         Lines{"ERROR fail to call buil_address_list, status:-1",
               "ERROR something error in KZCIAddressListBuild"} +
         release("address_list") + Lines{"ERROR fail to call KZCIAddressListBuild, status:-1"} +
         description_lost(service);
}

// The implied list is released before the message.
Lines no_bare_address(const Lines &service) {
  return no_memory("address", sizeof(KZCIAddress)) + release("address_list") +
         Lines{"ERROR fail to call KZCIAddressBuild"} + description_lost(service);
}

Lines no_connect_data(const Lines &service) {
  return no_memory("connect_data", sizeof(KZCIConnectData)) +
         Lines{"ERROR fail to call KZCIConnectDataBuild, status:-1"} + description_lost(service);
}

// "(ADDRESS =" inside an address list.
Lines listed_address_begins() {
  return key_word("ADDRESS", LB_ADDRESS) + Lines{"DEBUG KZCIAddressListBuild get key_type 18"} +
         address_call();
}

Lines list_begins() {
  return description_key("ADDRESS_LIST", LB_ADDRESS_LIST) + address_list_call();
}

Lines list_ends(unsigned addresses) {
  return block_end() + Lines{"DEBUG success to call KZCIAddressListBuild, address count:" +
                             std::to_string(addresses)};
}

Lines data_begins() {
  return description_key("CONNECT_DATA", LB_CONNECT_DATA) + connect_data_call();
}

Lines data_ends(const std::string &name) {
  return block_end() + Lines{"DEBUG success to call KZCIConnectDataBuild, service_name:" + name};
}

Lines description_ends(unsigned lists) {
  return block_end() +
         Lines{"DEBUG success to build description, address count:" + std::to_string(lists)};
}

class OutOfMemory : public testing::Test {
 protected:
  void SetUp() override {
    support::reset_platform();
    start_ = std::filesystem::current_path();
    std::filesystem::current_path(folder_.path());
    environment_.set("KZCI_TNS_FILE", "names.ora");
  }

  void TearDown() override {
    EXPECT_EQ(support::bad_releases(), 0u);
    support::reset_platform();
    std::filesystem::current_path(start_);
  }

  // A container that already holds a service, so that a change would show.
  void begin() {
    support::reset_platform();
    KZCITnsInit(&tns_);
    ASSERT_EQ(build(tns_, "(DESCRIPTION=(ADDRESS=(HOST=earlier)))"), (Outcome{0, 1}));
    earlier_ = tns_.tns_service;
    earlier_tree_ = support::full_tree(tns_);
    earlier_blocks_ = support::live_blocks();
    earlier_events_ = support::events().size();
  }

  // What happened since begin().
  Lines happened() const {
    const Lines all = support::events();
    return Lines(all.begin() + static_cast<std::ptrdiff_t>(earlier_events_), all.end());
  }

  std::vector<Block> with_earlier(const std::vector<Block> &more) const {
    std::vector<Block> blocks = earlier_blocks_;
    blocks.insert(blocks.end(), more.begin(), more.end());
    return blocks;
  }

  void expect_unchanged() {
    EXPECT_EQ(tns_.tns_service, earlier_);
    EXPECT_EQ(earlier_->le.next, &earlier_->le);
    EXPECT_EQ(earlier_->le.prev, &earlier_->le);
    EXPECT_EQ(support::full_tree(tns_), earlier_tree_);
  }

  // Fails the allocation at the end of the first `count` steps.
  void run_failing(const std::string &identifier, const std::vector<Step> &steps, std::size_t count,
                   bool for_ever) {
    SCOPED_TRACE("allocation " + std::to_string(count) + (for_ever ? " and all that follow" : ""));
    begin();
    Lines expected;
    for (std::size_t i = 0; i < count; ++i) {
      const std::string fails = i + 1 == count ? "MALLOC FAILS " : "MALLOC ";
      expected = expected + steps[i].before + Lines{fails + size_and_tag(steps[i].block)};
    }
    support::fail_allocation(count, for_ever);
    EXPECT_EQ(build(tns_, identifier), (Outcome{-1, 0}));
    EXPECT_EQ(happened(), expected + steps[count - 1].failure);
    expect_unchanged();
    EXPECT_EQ(support::live_blocks(), with_earlier(steps[count - 1].left));
    EXPECT_EQ(KZCITnsClear(&tns_), 0);
    EXPECT_EQ(support::live_blocks(), steps[count - 1].left);
    EXPECT_EQ(support::bad_releases(), 0u);
  }

  // Lets every allocation succeed; `last` follows the last of them.
  void run_good(const std::string &identifier, const std::vector<Step> &steps, const Lines &last) {
    begin();
    Lines expected;
    std::vector<Block> blocks;
    for (const Step &step : steps) {
      expected = expected + step.before + Lines{"MALLOC " + size_and_tag(step.block)};
      blocks.push_back(step.block);
    }
    support::fail_allocation(steps.size() + 1);
    EXPECT_EQ(build(tns_, identifier), (Outcome{0, 1}));
    EXPECT_EQ(happened(), expected + last);
    EXPECT_EQ(tns_.tns_service_count, 2u);
    EXPECT_EQ(support::live_blocks(), with_earlier(blocks));
    EXPECT_EQ(KZCITnsClear(&tns_), 0);
    EXPECT_EQ(support::live_blocks(), std::vector<Block>{});
    EXPECT_EQ(support::bad_releases(), 0u);
  }

  void run_all(const std::string &identifier, const std::vector<Step> &steps, const Lines &last) {
    for (const bool for_ever : {false, true})
      for (std::size_t count = 1; count <= steps.size(); ++count)
        run_failing(identifier, steps, count, for_ever);
    run_good(identifier, steps, last);
  }

  support::Environment environment_;
  support::TemporaryFolder folder_;
  std::filesystem::path start_;
  KZCITns tns_;
  KZCITnsService *earlier_ = nullptr;
  std::string earlier_tree_;
  std::vector<Block> earlier_blocks_;
  std::size_t earlier_events_ = 0;
};

TEST_F(OutOfMemory, AnEntryOfTheFile) {
  folder_.write("names.ora",
                "mydb = (DESCRIPTION =\n"
                "  (ADDRESS_LIST = (ADDRESS = (HOST = a)) (ADDRESS = (HOST = b)))\n"
                "  (ADDRESS_LIST = (ADDRESS = (HOST = c)))\n"
                "  (CONNECT_DATA = (SID = s)))\n"
                " (DESCRIPTION =\n"
                "  (ADDRESS = (HOST = d))\n"
                "  (CONNECT_DATA = (SID = t)))\n"
                "next = x\n");
  const Lines lookup = {"ERROR fail to call KZCITnsServiceBuild, status:-1"};
  const Lines service = service_failed(-1) + release("KZCITnsServiceBuild") + lookup;
  const Block d = description_block(), l = list_block(), a = address_block(), c = data_block();
  const std::vector<Block> first_description = {d, l, a, a, l, a, c};
  const std::vector<Step> steps = {
      {Lines{"DEBUG call KZCITnsBuild with params [tns:PTR]", "DEBUG get KZCI_TNS_FILE:names.ora",
             "DEBUG get configure file:names.ora"} +
           refill(1) + key("mydb") +
           Lines{"DEBUG find tns service, dbname:mydb",
                 "DEBUG call KZCITnsServiceBuild with params [tns:PTR], [parse_params:PTR]"},
       {"KZCITnsServiceBuild", service_size + 4},
       no_memory("tns_service", service_size + 4) + lookup,
       {}},
      {description_begins(), d, no_description(service), {}},
      {list_begins(), l, no_list(service), {}},
      {listed_address_begins(), a, no_address(service), {}},
      // The first address of a list that is lost stays allocated.
      {host("a") + block_end() + listed_address_begins(), a, no_address(service), {a}},
      {host("b") + block_end() + list_ends(2) + list_begins(), l, no_list(service), {l, a, a}},
      {listed_address_begins(), a, no_address(service), {l, a, a}},
      {host("c") + block_end() + list_ends(1) + data_begins(),
       c,
       no_connect_data(service),
       {l, a, a, l, a}},
      {sid("s") + data_ends("s") + description_ends(2) + description_begins(), d,
       no_description(service), first_description},
      {description_key("ADDRESS", LB_ADDRESS), l, no_implied_list(service), first_description},
      {address_call(), a, no_bare_address(service), first_description},
      {host("d") + block_end() + data_begins(),
       c,
       no_connect_data(service),
       {d, l, a, a, l, a, c, l, a}},
  };
  run_all("mydb", steps,
          sid("t") + data_ends("t") + description_ends(1) + mismatch(1, 3) + service_built(2) +
              Lines{"DEBUG succ to call KZCITnsServiceBuild, service number:2"});
}

TEST_F(OutOfMemory, ALiteralDescriptor) {
  const std::string text =
      "(DESCRIPTION=(ADDRESS=(HOST=a))"
      "(ADDRESS_LIST=(ADDRESS=(HOST=b))(ADDRESS=(HOST=c)))"
      "(CONNECT_DATA=(SID=s)))";
  const Lines service = service_failed(-1) + release("KZCITnsBuildDes");
  const Block d = description_block(), l = list_block(), a = address_block(), c = data_block();
  const std::vector<Step> steps = {
      {Lines{"DEBUG call KZCITnsBuild with params [tns:PTR]",
             "DEBUG call KZCITnsBuildDes with params [tns:PTR, " + text + "]"} +
           refill(2) + key_word("DESCRIPTION", LB_DESCRIPTION) +
           Lines{"DEBUG bulid_tns_service get key_type 1"},
       {"KZCITnsBuildDes", service_size + 11},
       no_memory("tns_service", service_size + 11) + service_failed(-1) + release("null"),
       {}},
      {{"DEBUG call KZCIDescriptionBuild with params [tns_service:PTR], [parse_params:PTR]"},
       d,
       no_description(service),
       {}},
      {description_key("ADDRESS", LB_ADDRESS), l, no_implied_list(service), {}},
      {address_call(), a, no_bare_address(service), {}},
      {host("a") + block_end() + list_begins(), l, no_list(service), {l, a}},
      {listed_address_begins(), a, no_address(service), {l, a}},
      {host("b") + block_end() + listed_address_begins(), a, no_address(service), {l, a, a}},
      {host("c") + block_end() + list_ends(2) + data_begins(),
       c,
       no_connect_data(service),
       {l, a, l, a, a}},
  };
  run_all(text, steps,
          sid("s") + data_ends("s") + description_ends(2) + refill(2) + Lines{"DEBUG reach eof"} +
              service_built(1) + Lines{"DEBUG succ to call KZCITnsServiceBuild, service number:2"});
}

TEST_F(OutOfMemory, TheReservedEntryNeedsOneBlock) {
  folder_.write("names.ora", "KZCISYSTEMVARIABLES = (LOG_COUNT = 3)(LOG_LEVEL = INFO)\n");
  const std::string name = "KZCISYSTEMVARIABLES";
  const std::vector<Step> steps = {
      {Lines{"DEBUG call KZCITnsBuild with params [tns:PTR]", "DEBUG get KZCI_TNS_FILE:names.ora",
             "DEBUG get configure file:names.ora"} +
           refill(1) + key(name) +
           Lines{"DEBUG find tns service, dbname:" + name,
                 "DEBUG call KZCITnsServiceBuild with params [tns:PTR], [parse_params:PTR]"},
       {"KZCITnsServiceBuild", service_size + 19},
       no_memory("tns_service", service_size + 19) +
           Lines{"ERROR fail to call KZCITnsServiceBuild, status:-1"},
       {}},
  };
  run_all(name, steps,
          Lines{"DEBUG parse system variables"} + key_word("LOG_COUNT", LB_LOG_COUNT) + key("3") +
              Lines{"DEBUG parse system variables get log level:3"} +
              key_word("LOG_LEVEL", LB_LOG_LEVEL) + key("INFO") +
              Lines{"DEBUG parse system variables get log level:INFO"} + input_end(1) +
              service_built(0) + Lines{"DEBUG succ to call KZCITnsServiceBuild, service number:2"});
}

// Entries that are passed over, and entries that are absent, need no memory.
TEST_F(OutOfMemory, SkippingNeedsNoMemory) {
  folder_.write("names.ora", "one = (DESCRIPTION = (ADDRESS = (HOST = a)))\ntwo = (x (y))\n");
  begin();
  support::fail_allocation(1, true);
  EXPECT_EQ(build(tns_, "none"), (Outcome{0, 0}));
  expect_unchanged();
  EXPECT_EQ(support::live_blocks(), earlier_blocks_);
}

TEST_F(OutOfMemory, ALaterBuildSucceedsAgain) {
  folder_.write("names.ora", "mydb = (DESCRIPTION = (ADDRESS = (HOST = a)))\n");
  begin();
  support::fail_allocation(4);  // The address, which leaves nothing behind.
  EXPECT_EQ(build(tns_, "mydb"), (Outcome{-1, 0}));
  EXPECT_EQ(support::live_blocks(), earlier_blocks_);
  EXPECT_EQ(build(tns_, "mydb"), (Outcome{0, 1}));
  EXPECT_EQ(tns_.tns_service_count, 2u);
  EXPECT_EQ(KZCITnsClear(&tns_), 0);
  EXPECT_EQ(support::live_blocks(), std::vector<Block>{});
  EXPECT_EQ(support::bad_releases(), 0u);
}

}  // namespace
