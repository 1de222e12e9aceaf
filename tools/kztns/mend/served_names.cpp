#include "mend/served_names.h"

#include <algorithm>
#include <iterator>
#include <tuple>

#include "scan/tree_digest.h"

namespace kztns {
namespace {

bool comes_before(const ServedName &left, const ServedName &right) {
  return std::tie(left.name, left.tree) < std::tie(right.name, right.tree);
}

// Whether a name is one of some sorted ones.
bool holds(const std::vector<ServedName> &names, std::uint64_t name) {
  const auto found = std::lower_bound(
      names.begin(), names.end(), name,
      [](const ServedName &one, std::uint64_t wanted) { return one.name < wanted; });
  return found != names.end() && found->name == name;
}

class Collector : public EntryVisitor {
 public:
  explicit Collector(ServedNames &names) : names_(names) {}

  void visit(const EntryView &view) override { names_.take(view); }
  void progress(Offset) override {}

 private:
  ServedNames &names_;
};

}  // namespace

void ServedNames::take(const EntryView &view) {
  entries_.push_back(view.entry.at);
  if (view.service == nullptr) refused_.push_back(view.entry.at);
  if (view.service == nullptr || view.trace.has_value_over_items()) return;
  const bool served = view.entry.verdict == Verdict::ok || view.entry.verdict == Verdict::reserved;
  if (!served && view.entry.in_list) return;  // words of other text may be taken for its names
  std::vector<ServedName> &names = served ? names_ : unserved_;
  names.push_back({digest_of(view.name), tree_digest(*view.service), view.entry.at,
                   view.entry.verdict == Verdict::reserved});
}

void ServedNames::sort() {
  std::sort(names_.begin(), names_.end(), comes_before);
  std::sort(unserved_.begin(), unserved_.end(), comes_before);
  std::sort(entries_.begin(), entries_.end());
}

bool ServedNames::has(std::uint64_t name) const { return holds(names_, name); }

std::vector<ServedName> ServedNames::gone_in(const ServedNames &others) const {
  std::vector<ServedName> gone;
  for (const ServedName &one : unserved_)
    if (!holds(others.names_, one.name) && !holds(others.unserved_, one.name)) gone.push_back(one);
  return gone;
}

std::vector<ServedName> ServedNames::not_in(const ServedNames &others) const {
  std::vector<ServedName> missing;
  std::set_difference(names_.begin(), names_.end(), others.names_.begin(), others.names_.end(),
                      std::back_inserter(missing), comes_before);
  // The settings of the reserved entry may change: it is built with a wrong word, which a fix
  // corrects, and without what a fault keeps from it.
  std::erase_if(missing,
                [&](const ServedName &one) { return one.reserved && others.has(one.name); });
  return missing;
}

std::size_t ServedNames::entry_around(Offset at) const {
  const auto after = std::upper_bound(entries_.begin(), entries_.end(), at);
  return static_cast<std::size_t>(after - entries_.begin());
}

ServedNames served_names(const NamesText &text) {
  ServedNames names;
  Collector collector(names);
  const FileScan scan(text, collector);
  names.sort();
  return names;
}

std::uint64_t digest_of(std::string_view text) {
  Digest digest;
  digest.add(text);
  return digest.value();
}

}  // namespace kztns
