#include "report/unified_diff.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <vector>

#include "text/escape.h"

namespace kztns {
namespace {

using Kept = EditedText::Kept;

constexpr int context_lines = 3;

// A part that the texts do not share: whole lines of either.
struct Change {
  std::size_t old_begin, old_end;
  std::size_t new_begin, new_end;
};

bool at_line_start(std::string_view text, std::size_t at) {
  return at == 0 || text[at - 1] == '\n';
}

// The whole lines of a part that was kept; absent for none.
std::optional<Kept> whole_lines(const Kept &part, std::string_view before, std::string_view after) {
  const std::string_view text = before.substr(part.origin, part.length);
  const bool begins_line = at_line_start(before, part.origin) && at_line_start(after, part.at);
  const bool ends_both =
      part.origin + text.size() == before.size() && part.at + text.size() == after.size();
  const std::size_t begin = begins_line ? 0 : text.find('\n') + 1;
  const std::size_t end = ends_both ? text.size() : text.rfind('\n') + 1;
  if (begin >= end || (!begins_line && begin == 0)) return std::nullopt;
  const auto skipped = static_cast<Offset>(begin);
  return Kept{part.at + skipped, part.origin + skipped, static_cast<Offset>(end - begin)};
}

// Of the parts that were kept, those that stand in one order in both texts, as many bytes of
// them as possible: what was moved is not shared.
class InOrder {
 public:
  explicit InOrder(const std::vector<Kept> &parts) : parts_(parts), before_(parts.size(), none) {
    for (const Kept &part : parts) origins_.push_back(part.origin);
    std::sort(origins_.begin(), origins_.end());
    best_.resize(origins_.size() + 1);
  }

  std::vector<Kept> take() {
    Best longest;
    for (std::size_t i = 0; i < parts_.size(); ++i) {
      const Best best = best_before(rank(parts_[i].origin));
      before_[i] = best.last;
      const Best with = {best.bytes + parts_[i].length, i};
      note(rank(parts_[i].origin + parts_[i].length), with);
      if (with.bytes > longest.bytes) longest = with;
    }
    std::vector<Kept> taken;
    for (std::size_t i = longest.last; i != none; i = before_[i]) taken.push_back(parts_[i]);
    std::reverse(taken.begin(), taken.end());
    return taken;
  }

 private:
  static constexpr std::size_t none = std::numeric_limits<std::size_t>::max();

  // The most bytes that parts up to one have, and the last of those.
  struct Best {
    std::size_t bytes = 0;
    std::size_t last = none;
  };

  // How many origins are before a place.
  std::size_t rank(std::size_t origin) const {
    return static_cast<std::size_t>(std::lower_bound(origins_.begin(), origins_.end(), origin) -
                                    origins_.begin());
  }

  // best_ is a binary indexed tree of maxima, by the rank of a part's end.
  Best best_before(std::size_t rank) const {
    Best best;
    for (std::size_t i = rank + 1; i > 0; i &= i - 1)
      if (best_[i - 1].bytes > best.bytes) best = best_[i - 1];
    return best;
  }

  void note(std::size_t rank, const Best &best) {
    for (std::size_t i = rank + 1; i <= best_.size(); i += i & (~i + 1))
      if (best.bytes > best_[i - 1].bytes) best_[i - 1] = best;
  }

  const std::vector<Kept> &parts_;
  std::vector<std::size_t> before_;  // the part before each one, in the best choice
  std::vector<std::size_t> origins_;
  std::vector<Best> best_;
};

// Parts that are next to each other in both texts are one.
std::vector<Kept> joined(const std::vector<Kept> &parts) {
  std::vector<Kept> result;
  for (const Kept &part : InOrder(parts).take()) {
    Kept *const last = result.empty() ? nullptr : &result.back();
    if (last != nullptr && last->at + last->length == part.at &&
        last->origin + last->length == part.origin)
      last->length += part.length;
    else
      result.push_back(part);
  }
  return result;
}

std::vector<Change> changes_of(std::string_view before, const EditedText &after) {
  std::vector<Change> changes;
  std::size_t old_at = 0;
  std::size_t new_at = 0;
  const auto add = [&](std::size_t old_to, std::size_t new_to) {
    if (old_at < old_to || new_at < new_to) changes.push_back({old_at, old_to, new_at, new_to});
  };
  for (const Kept &part : joined(after.kept())) {
    const auto shared = whole_lines(part, before, after.text());
    if (!shared) continue;
    add(shared->origin, shared->at);
    old_at = shared->origin + shared->length;
    new_at = shared->at + shared->length;
  }
  add(before.size(), after.text().size());
  return changes;
}

std::size_t lines_before(std::string_view text, std::size_t at, int lines) {
  for (; lines > 0 && at > 0; --lines) at = at < 2 ? 0 : text.rfind('\n', at - 2) + 1;
  return at;
}

std::size_t lines_after(std::string_view text, std::size_t at, int lines) {
  for (; lines > 0 && at < text.size(); --lines)
    at = std::min(text.find('\n', at), text.size() - 1) + 1;
  return at;
}

std::size_t count_lines(std::string_view text) {
  const auto feeds = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
  return feeds + (!text.empty() && text.back() != '\n' ? 1 : 0);
}

class DiffWriter {
 public:
  DiffWriter(std::string_view before, std::string_view after) : before_(before), after_(after) {}

  // Changes so near to each other that their contexts meet.
  void add_hunk(const Change *first, const Change *last) {
    const std::size_t old_begin = lines_before(before_, first->old_begin, context_lines);
    const std::size_t old_end = lines_after(before_, last->old_end, context_lines);
    const std::size_t new_begin = first->new_begin - (first->old_begin - old_begin);
    const std::size_t new_end = last->new_end + (old_end - last->old_end);
    text_ += "@@ -" + range(before_, old_begin, old_end, old_counted_, old_line_) + " +" +
             range(after_, new_begin, new_end, new_counted_, new_line_) + " @@\n";
    std::size_t at = old_begin;
    for (const Change *change = first; change <= last; ++change) {
      add_lines(' ', before_, at, change->old_begin);
      add_lines('-', before_, change->old_begin, change->old_end);
      add_lines('+', after_, change->new_begin, change->new_end);
      at = change->old_end;
    }
    add_lines(' ', before_, at, old_end);
  }

  std::string take() { return std::move(text_); }

 private:
  // "LINE,COUNT"; counted and line are where the last range began.
  static std::string range(std::string_view text, std::size_t begin, std::size_t end,
                           std::size_t &counted, std::size_t &line) {
    line += count_lines(text.substr(counted, begin - counted));
    counted = begin;
    const std::size_t lines = count_lines(text.substr(begin, end - begin));
    return std::to_string(lines > 0 ? line + 1 : line) + "," + std::to_string(lines);
  }

  void add_lines(char mark, std::string_view text, std::size_t begin, std::size_t end) {
    while (begin < end) {
      const std::size_t next = lines_after(text, begin, 1);
      text_ += mark;
      text_ += text.substr(begin, next - begin);
      if (text[next - 1] != '\n') text_ += "\n\\ No newline at end of file\n";
      begin = next;
    }
  }

  std::string_view before_;
  std::string_view after_;
  std::size_t old_counted_ = 0;
  std::size_t old_line_ = 0;
  std::size_t new_counted_ = 0;
  std::size_t new_line_ = 0;
  std::string text_;
};

}  // namespace

std::string unified_diff(const std::string &file, std::string_view before,
                         const EditedText &after) {
  const std::vector<Change> changes = changes_of(before, after);
  if (changes.empty()) return {};
  // A name with a blank in it ends at the tab.
  const std::string name = visible(file) + (file.find(' ') == std::string::npos ? "\n" : "\t\n");
  DiffWriter writer(before, after.text());
  for (std::size_t first = 0; first < changes.size();) {
    std::size_t last = first;
    while (last + 1 < changes.size() &&
           lines_after(before, changes[last].old_end, 2 * context_lines) >=
               changes[last + 1].old_begin)
      ++last;
    writer.add_hunk(&changes[first], &changes[last]);
    first = last + 1;
  }
  return "--- " + name + "+++ " + name + writer.take();
}

}  // namespace kztns
