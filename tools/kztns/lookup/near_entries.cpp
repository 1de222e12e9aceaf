#include "lookup/near_entries.h"

#include <algorithm>

#include "rules/diagnosis.h"
#include "text/name_index.h"
#include "text/spelling.h"

namespace kztns {
namespace {

constexpr std::size_t most = 4;

// How an entry's name comes near the one sought; the closest first.
enum class Nearness { same, other_case, odd_bytes, in_list, domain, misspelt, far };

std::string without_odd_characters(std::string_view name) {
  std::string rest(name);
  for (std::string_view odd = odd_character(rest); !odd.empty(); odd = odd_character(rest))
    rest.erase(static_cast<std::size_t>(odd.data() - rest.data()), odd.size());
  return rest;
}

bool has_part(std::string_view list, std::string_view name) {
  while (!list.empty()) {
    const std::size_t comma = std::min(list.find(','), list.size());
    if (equal_but_for_case(list.substr(0, comma), name)) return true;
    list.remove_prefix(std::min(comma + 1, list.size()));
  }
  return false;
}

// Whether one name is the other with a domain after it.
bool differ_by_domain(std::string_view left, std::string_view right) {
  if (left.size() > right.size()) std::swap(left, right);
  return !left.empty() && left.size() < right.size() && right[left.size()] == '.' &&
         equal_but_for_case(left, right.substr(0, left.size()));
}

Nearness nearness(std::string_view entry, std::string_view name) {
  if (same_name(entry, name)) return Nearness::same;
  if (equal_but_for_case(entry, name)) return Nearness::other_case;
  if (differ_by_domain(entry, name)) return Nearness::domain;
  if (entry.find(',') != std::string_view::npos && has_part(entry, name)) return Nearness::in_list;
  if (!odd_character(entry).empty() && equal_but_for_case(without_odd_characters(entry), name))
    return Nearness::odd_bytes;
  const std::size_t slips = name.size() <= 4 ? 1 : 2;
  if (name.size() > 2 && edit_distance(entry, name, slips) <= slips) return Nearness::misspelt;
  return Nearness::far;
}

std::string how(Nearness nearness) {
  switch (nearness) {
    case Nearness::other_case:
      return ", which differs only in case";
    case Nearness::odd_bytes:
      return ", which has an invisible character in its name";
    case Nearness::in_list:
      return ", a list of names, which is read as one name";
    case Nearness::domain:
      return ", which differs only by a domain";
    case Nearness::misspelt:
      return ", which is spelled similarly";
    default:
      return "";
  }
}

std::string why_hidden(const FileScan &scan, const Entry &entry) {
  if (entry.reached) return "";
  const Entry *const last = scan.last_reached();
  if (scan.stop().kind == StopKind::reserved && entry.at > last->at)
    return ", after the entry " + quoted(excerpt(scan.name(*last))) + ", where every lookup ends";
  return ", which no lookup reaches";
}

}  // namespace

std::vector<NearEntry> near_entries(const NamesText &text, const FileScan &scan,
                                    std::string_view name, bool with_itself) {
  struct Found {
    Nearness nearness;
    const Entry *entry;
  };
  std::vector<Found> found;
  for (const Entry &entry : scan.entries()) {
    const Nearness near = nearness(scan.name(entry), name);
    const bool is_it = near == Nearness::same &&
                       (entry.verdict == Verdict::shadowed || (entry.reached && !with_itself));
    if (near == Nearness::far || is_it) continue;
    const auto place =
        std::upper_bound(found.begin(), found.end(), near,
                         [](Nearness left, const Found &right) { return left < right.nearness; });
    found.insert(place, {near, &entry});
    if (found.size() > most) found.pop_back();
  }
  std::vector<NearEntry> entries;
  for (const Found &near : found) {
    // A misspelling is worth telling only where nothing is closer.
    if (near.nearness == Nearness::misspelt && found[0].nearness != Nearness::misspelt) break;
    const std::string_view entry = scan.name(*near.entry);
    entries.push_back({std::string(entry), text.position(near.entry->at),
                       "there is an entry " + quoted(excerpt(entry)) + " at " +
                           text.place(near.entry->at) + how(near.nearness) +
                           why_hidden(scan, *near.entry)});
  }
  return entries;
}

}  // namespace kztns
