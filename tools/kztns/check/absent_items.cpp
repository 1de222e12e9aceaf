#include "check/absent_items.h"

#include "scan/commented_items.h"

namespace kztns {
namespace {

class AbsentItems {
 public:
  AbsentItems(const Trace &trace, std::string_view name, Findings &findings)
      : trace_(trace), name_(name), findings_(findings) {}

  void report() {
    for (std::size_t i = 1; i < trace_.frames().size(); ++i) {
      const Frame &frame = trace_.frames()[i];
      const int index = static_cast<int>(i);
#define RULE(...)
#define VALUE_RULE(...)
#define BLOCK_RULE(rule, ...) check_##rule(index, frame);
#include "rules/rules.def"
    }
  }

 private:
  void check_no_host(int index, const Frame &frame) {
    if (frame.block == Block::address && !frame.keys.has(LB_HOST))
      add(Rule::no_host, index, "no HOST", {LB_HOST});
  }

  void check_no_port(int index, const Frame &frame) {
    if (frame.block == Block::address && !frame.keys.has(LB_PORT))
      add(Rule::no_port, index, "no PORT", {LB_PORT});
  }

  void check_no_address(int index, const Frame &frame) {
    if (frame.keys.has(LB_ADDRESS)) return;
    if (frame.block == Block::address_list)
      add(Rule::no_address, index, "no ADDRESS in this list", {LB_ADDRESS});
    else if (frame.block == Block::description && !frame.keys.has(LB_ADDRESS_LIST))
      add(Rule::no_address, index, "no ADDRESS: the tree cannot be displayed",
          {LB_ADDRESS, LB_ADDRESS_LIST});
  }

  // A link string may be meant to go without.
  void check_no_service(int index, const Frame &frame) {
    if (frame.block == Block::description && !frame.inner_keys.has(LB_SERVICE_NAME) &&
        !frame.inner_keys.has(LB_SID) && !frame.inner_keys.has(LB_USE_DEFAULT_SID))
      add(Rule::no_service, index, "neither SERVICE_NAME nor SID", {LB_SERVICE_NAME, LB_SID});
  }

  // keys are those of the items of which there is none.
  void add(Rule rule, int index, const char *text, std::initializer_list<KZCILBKeyType> keys) {
    findings_.add(rule, [&] {
      const Frame &frame = trace_.frames()[static_cast<std::size_t>(index)];
      const Item &opener = trace_.items()[static_cast<std::size_t>(frame.item)];
      NewFinding found = {opener.key.begin, name_, trace_.path(index), text};
      found.related = commented_item(trace_.text(), opener.open, keys);
      if (found.related)
        found.remedy = "uncomment " + excerpt(key_text(trace_.text(), *found.related)) + " at " +
                       findings_.place(*found.related);
      return found;
    });
  }

  const Trace &trace_;
  std::string_view name_;
  Findings &findings_;
};

}  // namespace

void report_absent_items(const Trace &trace, std::string_view name, Findings &findings) {
  AbsentItems(trace, name, findings).report();
}

}  // namespace kztns
