#include "fixes/block_fixes.h"

#include <algorithm>
#include <cctype>

#include "fixes/foreign_fixes.h"
#include "text/characters.h"
#include "text/spelling.h"

namespace kztns {
namespace {

// Whether an address, or a list with one, can be served.
bool can_be_served(const FaultPlace &place, const WrittenItem &item) {
  const std::vector<WrittenItem> items = place.children(item);
  if (place.has_key(item, "ADDRESS_LIST"))
    return std::any_of(items.begin(), items.end(), [&](const WrittenItem &address) {
      return place.has_key(address, "ADDRESS") && can_be_served(place, address);
    });
  for (const WrittenItem &part : items) {
    if (!place.has_key(part, "PROTOCOL")) continue;
    const std::optional<Span> word = word_of(place.text(), part);
    if (!word || !equal_but_for_case(unquoted(place.slice(*word)), "TCP")) return false;
  }
  return true;
}

// Whether a block has an address beside the item at a place that can be served.
bool has_another(const FaultPlace &place, const Frame &frame, Offset open) {
  const std::vector<WrittenItem> items = place.items_of(frame);
  return std::any_of(items.begin(), items.end(), [&](const WrittenItem &item) {
    const bool holds = place.has_key(item, "ADDRESS") || place.has_key(item, "ADDRESS_LIST");
    return item.open != open && holds && can_be_served(place, item);
  });
}

bool is_plain(std::string_view name) {
  return !name.empty() && std::all_of(name.begin(), name.end(), [](char c) {
    return std::isalnum(static_cast<unsigned char>(c)) || c == '_' || c == '.' || c == '-';
  });
}

// Removes "(", the key and "=", and the blanks up to what is in the block.
Edit without_opening(const FaultPlace &place, const WrittenItem &item) {
  const std::size_t next = place.text().find_first_not_of(blanks, item.value);
  return {item.open, static_cast<Offset>(next), {}};
}

// Removes the ")", and the blanks before it where nothing but another ")" is before them.
Edit without_closing(const FaultPlace &place, const WrittenItem &item) {
  const std::size_t last = place.text().find_last_not_of(blanks, item.end - 2);
  const bool after_close = place.text()[last] == ')';
  return {after_close ? static_cast<Offset>(last + 1) : item.end - 1, item.end, {}};
}

// Also where its key is misspelt, which is another fault.
bool is_description(const FaultPlace &place, const WrittenItem &item) {
  const std::string_view word = "DESCRIPTION";
  return place.has_key(item, word) || near_key(place.key_of(item), Block::entry) == word;
}

// Whether an item of a list of descriptions says nothing here.
bool may_go(const FaultPlace &place, const WrittenItem &item) {
  if (place.is_remark(item) || place.holds_what_counts({item.open, item.end})) return false;
  const ForeignKey *const key = foreign_key(place.key_of(item));
  if (key == nullptr) return item_word(place.key_of(item)).type == LB_ERROR_KEY;
  const std::optional<Span> word = word_of(place.text(), item);
  switch (key->treatment) {
    case ForeignTreatment::drop:
    case ForeignTreatment::lose:
    case ForeignTreatment::rename_switch:
      return true;
    case ForeignTreatment::drop_off:
      return word && switch_word(unquoted(place.slice(*word))) == "OFF";
    default:
      return false;
  }
}

// "NAME_2", or with the next number that is free, which number becomes.
std::optional<std::string> free_name(const FaultPlace &place, std::size_t &number) {
  // Bounds the work on a file that has them all.
  constexpr std::size_t most_numbers = 10'000;
  while (place.subject().is_free && ++number < most_numbers) {
    std::string own = std::string(place.name()) + "_" + std::to_string(number);
    if (place.subject().is_free(own)) return own;
  }
  return std::nullopt;
}

// "NAME_2 = " and so on before each description but the first; false when no name is free.
bool add_names(const FaultPlace &place, const std::vector<WrittenItem> &descriptions,
               std::vector<Edit> &edits) {
  if (!is_plain(place.name())) return false;
  std::size_t number = 1;
  for (std::size_t i = 1; i < descriptions.size(); ++i) {
    const auto own = free_name(place, number);
    if (!own) return false;
    const Offset open = descriptions[i].open;
    const std::size_t last = place.text().find_last_not_of(blanks, open - 1);
    const bool after_close = place.text()[last] == ')';
    edits.push_back(
        {after_close ? static_cast<Offset>(last + 1) : open, open, "\n" + *own + " =\n  "});
  }
  return true;
}

}  // namespace

Fix with_address_lists(const FaultPlace &place) {
  const std::vector<WrittenItem> items = place.items_of(place.frame());
  std::vector<Edit> edits;
  bool in_run = false;
  for (std::size_t i = 0; i < items.size(); ++i) {
    const bool bare = place.has_key(items[i], "ADDRESS");
    if (bare && !in_run) edits.push_back({items[i].open, items[i].open, "(ADDRESS_LIST = "});
    if (!bare && in_run) edits.push_back({items[i - 1].end, items[i - 1].end, ")"});
    in_run = bare;
  }
  if (in_run) edits.push_back({items.back().end, items.back().end, ")"});
  const bool one_list = edits.size() == 2;
  return {one_list ? Applicability::safe : Applicability::unsafe, std::move(edits)};
}

Fix with_one_connect_data(const FaultPlace &place) {
  const std::vector<WrittenItem> items = place.items_of(place.frame());
  std::optional<WrittenItem> first;
  std::optional<WrittenItem> second;
  for (const WrittenItem &item : items)
    if (place.has_key(item, "CONNECT_DATA")) {
      if (!first)
        first = item;
      else if (!second)
        second = item;
    }
  if (!second) return {};
  const std::vector<WrittenItem> kept = place.children(*first);
  std::string added;
  for (const WrittenItem &item : place.children(*second)) {
    if (place.has_equal(kept, item)) continue;
    if (place.is_set(kept, place.key_of(item))) return {};
    added += place.slice({item.open, item.end});
  }
  Fix fix = place.removal(second->open);
  if (!fix) return {};
  fix.edits[0].text.clear();  // the comments of the items go with them
  if (!added.empty())
    fix.edits.insert(fix.edits.begin(), {first->end - 1, first->end - 1, std::move(added)});
  return fix;
}

Fix without_address(const FaultPlace &place) {
  const Frame &address = place.frame();
  const std::optional<WrittenItem> item = place.opener(address);
  if (address.block != Block::address || !item) return {};
  const std::vector<Frame> &frames = place.trace().frames();
  const Frame &around = frames[static_cast<std::size_t>(address.parent)];
  if (has_another(place, around, item->open)) return place.removal(item->open);
  const std::optional<WrittenItem> list = place.opener(around);
  if (around.block != Block::address_list || !list) return {};
  const Frame &description = frames[static_cast<std::size_t>(around.parent)];
  return has_another(place, description, list->open) ? place.removal(list->open) : Fix();
}

Fix without_inner_block(const FaultPlace &place, const WrittenItem &inner) {
  const std::optional<WrittenItem> outer = place.opener(place.frame());
  const bool same = outer && equal_but_for_case(place.key_of(*outer), place.key_of(inner));
  if (!same || place.children(*outer).size() != 1 || place.children(inner).empty()) return {};
  // Without the blanks before it, so that the items keep their lines.
  const bool alone = trimmed(place.slice({outer->value, inner.open})).empty();
  const Offset begin = alone ? outer->value : inner.open;
  return unsafe_fix({{begin, inner.value, {}}, without_closing(place, *outer)});
}

bool is_list_of_descriptions(const FaultPlace &place) {
  const std::optional<WrittenItem> list = place.written_item();
  if (!list) return false;
  const std::vector<WrittenItem> items = place.children(*list);
  const auto is_description_here = [&](const WrittenItem &item) {
    return is_description(place, item);
  };
  return std::any_of(items.begin(), items.end(), is_description_here) &&
         std::all_of(items.begin(), items.end(), [&](const WrittenItem &item) {
           return is_description(place, item) || may_go(place, item);
         });
}

Fix unwrapped(const FaultPlace &place) {
  const std::optional<WrittenItem> list = place.written_item();
  if (place.block() != Block::entry || !list || !is_list_of_descriptions(place)) return {};
  const std::vector<WrittenItem> items = place.children(*list);
  std::vector<WrittenItem> descriptions;
  std::vector<Edit> edits = {without_opening(place, *list)};
  for (const WrittenItem &item : items) {
    if (is_description(place, item))
      descriptions.push_back(item);
    else
      edits.push_back(place.without({item.open, item.end}));
  }
  if (edits[0].end > items[0].open) return {};
  const bool splits = descriptions.size() > 1 && !place.subject().last;
  if (splits && !add_names(place, descriptions, edits)) return {};
  edits.push_back(without_closing(place, *list));
  sort_edits(edits);
  if (overlap(edits)) return {};
  const Applicability applicability =
      items.size() == 1 ? Applicability::safe : Applicability::unsafe;
  return {applicability, std::move(edits), splits};
}

}  // namespace kztns
