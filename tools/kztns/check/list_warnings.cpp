#include "check/list_warnings.h"

#include <algorithm>

#include "text/spelling.h"

namespace kztns {
namespace {

// What the last items of a block say, whatever block it is.
struct BlockText {
  std::string_view host = {};
  std::string_view port = {};
  bool weightless = false;
  bool balanced = true;
};

struct Address {
  BlockText text;
  int list;  // the frame around it, which need not be that of a list
  bool in_balanced_list;
  Offset at;
};

bool is_zero(std::string_view number) {
  if (number.starts_with('+') || number.starts_with('-')) number.remove_prefix(1);
  return number.find_first_not_of('0') == std::string_view::npos;
}

bool is_off(std::string_view word) {
  return word.size() > 1 &&
         equal_but_for_case(word, std::string_view("OFF").substr(0, word.size()));
}

// By host and port. Names of hosts do not depend on case.
bool sorts_before(const BlockText &left, const BlockText &right) {
  if (equal_but_for_case(left.host, right.host)) return left.port < right.port;
  return std::lexicographical_compare(left.host.begin(), left.host.end(), right.host.begin(),
                                      right.host.end(),
                                      [](char a, char b) { return lower_case(a) < lower_case(b); });
}

// Most entries have one address without a weight.
bool may_have_any(const Trace &trace) {
  const auto is_address = [](const Frame &frame) { return frame.block == Block::address; };
  const std::vector<Frame> &frames = trace.frames();
  return std::count_if(frames.begin(), frames.end(), is_address) > 1 ||
         std::any_of(frames.begin(), frames.end(),
                     [](const Frame &frame) { return frame.keys.has(LB_WEIGHT); });
}

class ListWarnings {
 public:
  ListWarnings(const Trace &trace, std::string_view name, Findings &findings)
      : trace_(trace), name_(name), findings_(findings) {}

  void report() {
    collect();
    for (std::size_t first = 0, end = 0; first < addresses_.size(); first = end) {
      end = first;
      while (end < addresses_.size() && addresses_[end].list == addresses_[first].list) ++end;
      check_weights(first, end);
      check_equal(first, end);
    }
  }

 private:
  // The addresses list by list.
  void collect() {
    const std::vector<Frame> &frames = trace_.frames();
    std::vector<BlockText> texts(frames.size());
    for (const Item &item : trace_.items()) take(item, texts[static_cast<std::size_t>(item.frame)]);
    for (std::size_t i = 1; i < frames.size(); ++i) {
      if (frames[i].block != Block::address) continue;
      const auto list = static_cast<std::size_t>(frames[i].parent);
      const bool balanced = frames[list].block != Block::address_list || texts[list].balanced;
      addresses_.push_back({.text = texts[i],
                            .list = frames[i].parent,
                            .in_balanced_list = balanced,
                            .at = opener(frames[i]).key.begin});
    }
    std::stable_sort(
        addresses_.begin(), addresses_.end(),
        [](const Address &left, const Address &right) { return left.list < right.list; });
  }

  void take(const Item &item, BlockText &text) const {
    if (!item.has_value || item.dropped) return;
    const std::string_view value = trace_.value_of(item);
    if (item.type == LB_HOST) text.host = value;
    if (item.type == LB_PORT) text.port = value;
    if (item.type == LB_WEIGHT) text.weightless = is_zero(value);
    if (item.type == LB_KZLB) text.balanced = !is_off(value);
  }

  const Item &opener(const Frame &frame) const {
    return trace_.items()[static_cast<std::size_t>(frame.item)];
  }

  void check_weights(std::size_t first, std::size_t end) {
    for (std::size_t i = first; i < end; ++i)
      if (!addresses_[i].text.weightless || !addresses_[i].in_balanced_list) return;
    const int list = addresses_[first].list;
    const Frame &frame = trace_.frames()[static_cast<std::size_t>(list)];
    add(Rule::zero_weights, opener(frame).key.begin, list, "every WEIGHT is 0");
  }

  void check_equal(std::size_t first, std::size_t end) {
    const auto from = addresses_.begin() + static_cast<std::ptrdiff_t>(first);
    const auto to = addresses_.begin() + static_cast<std::ptrdiff_t>(end);
    const auto is_before = [](const Address &left, const Address &right) {
      return sorts_before(left.text, right.text);
    };
    std::stable_sort(from, to, is_before);
    for (auto next = from; next != to; ++next) {
      if (next == from || next->text.host.empty() || is_before(*std::prev(next), *next)) continue;
      add(Rule::equal_addresses, next->at, next->list,
          "this address equals that at " + findings_.place(std::prev(next)->at),
          std::prev(next)->at);
    }
  }

  void add(Rule rule, Offset at, int frame, const std::string &text,
           std::optional<Offset> related = std::nullopt) {
    findings_.add(rule,
                  [&] { return NewFinding{at, name_, trace_.path(frame), text, {}, {}, related}; });
  }

  const Trace &trace_;
  std::string_view name_;
  Findings &findings_;
  std::vector<Address> addresses_;
};

}  // namespace

void report_list_warnings(const Trace &trace, std::string_view name, Findings &findings) {
  if (may_have_any(trace)) ListWarnings(trace, name, findings).report();
}

}  // namespace kztns
