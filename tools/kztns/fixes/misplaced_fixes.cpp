#include "fixes/misplaced_fixes.h"

#include <algorithm>

#include "fixes/block_fixes.h"
#include "fixes/file_fixes.h"
#include "text/characters.h"

namespace kztns {
namespace {

// DESCRIPTION, ADDRESS_LIST, ADDRESS: blocks are not nested deeper.
constexpr int deepest = 3;

std::string text_of(const FaultPlace &place, const WrittenItem &item) {
  return std::string(place.slice({item.open, item.end}));
}

// The written blocks within an item that take a key.
void collect_takers(const FaultPlace &place, const WrittenItem &item, Block block,
                    KZCILBKeyType type, int depth, std::vector<WrittenItem> &takers) {
  if (kzoci::tns::key_of(block, type) != nullptr) takers.push_back(item);
  if (depth == deepest) return;
  for (const WrittenItem &child : place.children(item)) {
    const Key *const key = key_named(block, place.key_of(child));
    if (key != nullptr && key->value.kind == ValueKind::block)
      collect_takers(place, child, key->value.opens, type, depth + 1, takers);
  }
}

// The block that an item was meant for: the nearest one around it that takes its key, or
// the only one of its description.
std::optional<WrittenItem> taker(const FaultPlace &place, KZCILBKeyType type) {
  const std::vector<Frame> &frames = place.trace().frames();
  int top = place.fault().frame;
  for (int frame = top; frame > 0; frame = frames[static_cast<std::size_t>(frame)].parent) {
    top = frame;
    const Frame &around = frames[static_cast<std::size_t>(frame)];
    if (kzoci::tns::key_of(around.block, type) != nullptr) return place.opener(around);
  }
  const Frame &outermost = frames[static_cast<std::size_t>(top)];
  const std::optional<WrittenItem> description = top > 0 ? place.opener(outermost) : std::nullopt;
  if (!description) return std::nullopt;
  std::vector<WrittenItem> takers;
  collect_takers(place, *description, outermost.block, type, 1, takers);
  if (takers.size() != 1) return std::nullopt;
  return takers[0];
}

// After the item of a block in which a place is; before the block's ")" for any other place.
Offset end_after(const FaultPlace &place, const WrittenItem &block, Offset at) {
  for (const WrittenItem &child : place.children(block))
    if (child.open < at && at < child.end) return child.end;
  return block.end - 1;
}

// Removes an item, and puts it at another place, with something before and after it.
Fix moved_to(const FaultPlace &place, const WrittenItem &item, Offset to,
             const std::string &before = {}, const std::string &after = {}) {
  Fix fix = place.removal(item.open);
  if (!fix || (fix.edits[0].begin < to && to < fix.edits[0].end)) return {};
  fix.edits[0].text.clear();  // its comments go with it
  fix.edits.push_back({to, to, before + text_of(place, item) + after});
  sort_edits(fix.edits);
  return fix;
}

Fix moved_into(const FaultPlace &place, const WrittenItem &item, const WrittenItem &target) {
  const bool is_address = place.has_key(item, "ADDRESS") || place.has_key(item, "ADDRESS_LIST");
  if (is_address) return moved_to(place, item, end_after(place, target, item.open));
  if (place.is_set(place.children(target), place.key_of(item))) return {};
  if (place.text().find_first_not_of(blanks, target.end) == item.open)
    return unsafe_fix({{target.end - 1, target.end, {}}, {item.end, item.end, ")"}});
  return moved_to(place, item, target.end - 1);
}

bool is_of(Block block, KZCILBKeyType type) { return kzoci::tns::key_of(block, type) != nullptr; }

// An item of CONNECT_DATA in a description that has none.
Fix in_connect_data(const FaultPlace &place, const WrittenItem &item) {
  const std::string before = "(CONNECT_DATA = ";
  const std::vector<Frame> &frames = place.trace().frames();
  int frame = place.fault().frame;
  while (frame > 0 && frames[static_cast<std::size_t>(frame)].block != Block::description)
    frame = frames[static_cast<std::size_t>(frame)].parent;
  const auto description = place.opener(frames[static_cast<std::size_t>(frame)]);
  if (!description || place.is_set(place.children(*description), "CONNECT_DATA")) return {};
  if (frame == place.fault().frame)
    return unsafe_fix({{item.open, item.open, before}, {item.end, item.end, ")"}});
  return moved_to(place, item, description->end - 1, before, ")");
}

// HOST, PORT and the like that follow each other where an address may stand.
Fix in_address(const FaultPlace &place, const WrittenItem &item) {
  if (key_named(place.block(), "ADDRESS") == nullptr) return {};
  std::vector<WrittenItem> run;
  for (const WrittenItem &other : place.items_of(place.frame())) {
    if (other.open < item.open) continue;
    const bool fits = key_named(Block::address, place.key_of(other)) != nullptr;
    if (!fits || place.is_set(run, place.key_of(other))) break;  // another one begins
    run.push_back(other);
  }
  if (!place.is_set(run, "HOST")) return {};
  return unsafe_fix({{item.open, item.open, "(ADDRESS = "}, {run.back().end, run.back().end, ")"}});
}

// Whether the items of a description tell what is served.
bool have_service(const FaultPlace &place, const std::vector<WrittenItem> &items) {
  return std::any_of(items.begin(), items.end(), [&](const WrittenItem &item) {
    return place.has_key(item, "CONNECT_DATA") &&
           place.is_set(place.children(item), "SERVICE_NAME");  // or SID
  });
}

// An item of the entry itself: its blocks belong in a DESCRIPTION.
Fix in_description(const FaultPlace &place, const WrittenItem &item) {
  const std::vector<WrittenItem> items = place.items_of(place.frame());
  if (items.empty() || key_named(Block::description, place.key_of(item)) == nullptr) return {};
  std::optional<WrittenItem> description;
  for (const WrittenItem &other : items) {
    if (!place.has_key(other, "DESCRIPTION")) continue;
    if (description) return {};
    description = other;
  }
  if (description) return moved_into(place, item, *description);
  std::vector<Edit> edits = {{items.front().open, items.front().open, "(DESCRIPTION = "}};
  // Comments that are in the block now must not lead lookups astray.
  for (std::size_t i = 1; i < items.size(); ++i)
    for (Edit &edit : fix_of_comments(place.text(), items[i - 1].end, items[i].open).edits)
      edits.push_back(std::move(edit));
  edits.push_back({items.back().end, items.back().end, ")"});
  return have_service(place, items) ? safe_fix(std::move(edits)) : unsafe_fix(std::move(edits));
}

// "(ADDRESS = (HOST = h)(PORT = 1) (ADDRESS = (HOST = i)) (PORT = 2))": the inner one begins where
// the outer one was to end, and was to end where that does. Absent for others.
std::optional<Fix> with_moved_close(const FaultPlace &place, const WrittenItem &item) {
  if (place.block() != Block::address || !place.has_key(item, "ADDRESS")) return std::nullopt;
  const std::vector<WrittenItem> inner = place.children(item);
  std::vector<WrittenItem> before;
  bool repeats = false;
  for (const WrittenItem &other : place.items_of(place.frame())) {
    if (other.open < item.open) before.push_back(other);
    if (other.open <= item.open) continue;
    if (place.is_set(inner, place.key_of(other))) return std::nullopt;
    repeats = repeats || place.is_set(before, place.key_of(other));
  }
  if (!repeats || !place.is_set(before, "HOST")) return std::nullopt;
  const Offset end = before.back().end;
  return unsafe_fix({{end, end, ")"}, {item.end - 1, item.end, {}}});
}

// In the block that it was meant for.
Fix moved_to_taker(const FaultPlace &place, const WrittenItem &item) {
  const KZCILBKeyType type = place.item()->type;
  Fix fix;
  if (const auto target = taker(place, type))
    fix = moved_into(place, item, *target);
  else if (is_of(Block::connect_data, type))
    fix = in_connect_data(place, item);
  // Where the block has an address already, this is another one.
  return !fix && is_of(Block::address, type) ? in_address(place, item) : fix;
}

}  // namespace

Mending mend_misplaced_key(const FaultPlace &place) {
  const std::optional<WrittenItem> item = place.written_item();
  if (!item) return {};
  if (place.block() == Block::entry) return {in_description(place, *item)};
  if (Fix fix = without_inner_block(place, *item)) return {std::move(fix), "remove one of the two"};
  if (auto fix = with_moved_close(place, *item))
    return {*std::move(fix), "put the \")\" of the address before it, and not after it"};
  return {moved_to_taker(place, *item)};
}

Mending mend_late_close(const FaultPlace &place) {
  const std::optional<WrittenItem> item = place.written_item();
  if (!item || place.fault().kind != FaultKind::value_goes_on) return {};
  const std::vector<WrittenItem> inner = items_from(place.text(), place.fault().at);
  const auto fits = [&](const WrittenItem &other) {
    return placement_of(key_word(place.text(), other), content_of(place.block())).fit == Fit::good;
  };
  if (inner.empty() || place.after_blanks(inner.back().end) + 1 != item->end ||
      !std::all_of(inner.begin(), inner.end(), fits))
    return {};
  const auto value_end =
      static_cast<Offset>(place.text().substr(0, inner.front().open).find_last_not_of(blanks) + 1);
  return {unsafe_fix({{value_end, value_end, ")"}, {item->end - 1, item->end, {}}}),
          "put \")\" before it, and not after it"};
}

}  // namespace kztns
