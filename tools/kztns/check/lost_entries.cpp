#include "check/lost_entries.h"

#include <algorithm>

#include "text/escape.h"

namespace kztns {
namespace {

constexpr std::size_t most_named = 3;

}  // namespace

void Lost::add(const Entry &entry) {
  if (++count_ <= most_named + 1) named_.push_back(&entry);
}

std::string Lost::names(const FileScan &scan, std::size_t from) const {
  const std::size_t end = std::min(named_.size(), from + most_named);
  std::string text;
  for (std::size_t i = from; i < end; ++i)
    text += (i > from ? ", " : "") + excerpt(scan.name(*named_[i]));
  if (count_ > end) text += " and " + std::to_string(count_ - end) + " more";
  return text;
}

std::string Lost::sentence(const FileScan &scan) const {
  if (count_ == 0) return "no lookup gets past it";
  if (count_ == 1) return "the entry after it is lost: " + names(scan);
  return "the " + std::to_string(count_) + " entries after it are lost: " + names(scan);
}

LostEntries::LostEntries(const FileScan &scan) {
  const Stop &stop = scan.stop();
  const Entry *const last = scan.last_reached();
  const Entry *before = nullptr;
  const bool reserved = stop.kind == StopKind::reserved && last != nullptr;
  const Offset end = reserved ? last->at : stop.name;
  const Lost list = names_of_list(scan, stop.name);
  const auto is_in_list = [&](const Entry &entry) {
    return list.first() != nullptr && list.first()->body == entry.body;
  };
  for (const Entry &entry : scan.entries()) {
    if (entry.reached) {
      before = &entry;
      continue;
    }
    if (entry.verdict != Verdict::unreachable) continue;
    if (before == nullptr || (stop.kind != StopKind::end && entry.at >= end)) {
      if (!is_in_list(entry)) after_stop_.add(entry);
    } else {
      if (swallowed_.empty() || swallowed_.back().by != before) swallowed_.push_back({before, {}});
      swallowed_.back().entries.add(entry);
    }
  }
}

Lost names_of_list(const FileScan &scan, Offset at) {
  const std::vector<Entry> &entries = scan.entries();
  auto entry = std::lower_bound(entries.begin(), entries.end(), at,
                                [](const Entry &one, Offset place) { return one.at < place; });
  Lost names;
  if (entry == entries.end() || entry->at != at || !entry->in_list) return names;
  for (const Offset body = entry->body; entry != entries.end() && entry->body == body; ++entry)
    names.add(*entry);
  return names;
}

}  // namespace kztns
