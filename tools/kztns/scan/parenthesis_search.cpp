#include "scan/parenthesis_search.h"

#include <algorithm>

#include "scan/parenthesis_reading.h"

namespace kztns {
namespace {

using namespace parenthesis_reading;

// Readings that cost this much more than the best one so far are given up, and of the
// others only the best are kept: the time is linear.
constexpr int most_behind = cost::change + cost::change / 2;
constexpr std::size_t most_readings = 32;

class Search {
 public:
  Search(std::string_view text, const std::vector<EntryToken> &tokens, Block root)
      : tokens_(tokens),
        indented_(is_indented(tokens)),
        closed_in_lines_(std::any_of(tokens.begin(), tokens.end(), [](const EntryToken &token) {
          return token.kind == ')' && token.first_of_line;
        })) {
    words_.reserve(tokens.size());
    for (const EntryToken &token : tokens)
      words_.push_back(token.kind == 'w' ? item_word(text.substr(token.at, token.end - token.at))
                                         : ItemWord());
    Reading first;
    first.top.content = content_of(root);
    readings_.push_back(first);
  }

  std::optional<ParenthesisChange> run() {
    for (std::size_t i = 0; i + 1 < tokens_.size(); ++i) {
      add_changes(i, lowest_cost() + most_behind);
      for (const Reading &reading : readings_) step(reading, i);
      prune();
      if (readings_.empty()) return std::nullopt;
    }
    close_all(tokens_.size() - 1);
    const Reading *best = nullptr;
    for (const Reading &reading : readings_)
      if (reading.top.around == none && reading.last_change != none &&
          (best == nullptr || is_better(reading, *best)))
        best = &reading;
    if (best == nullptr) return std::nullopt;
    return described(first_change(best->last_change));
  }

 private:
  // Lines that all begin in one column say nothing.
  static bool is_indented(const std::vector<EntryToken> &tokens) {
    std::uint32_t column = no_column;
    for (const EntryToken &token : tokens) {
      if (!token.first_of_line || token.kind == '\0') continue;
      if (column != no_column && column != token.column) return true;
      column = token.column;
    }
    return false;
  }

  int lowest_cost() const {
    return std::min_element(
               readings_.begin(), readings_.end(),
               [](const Reading &left, const Reading &right) { return left.cost < right.cost; })
        ->cost;
  }

  // The readings in which the token is removed, or follows one that is added.
  void add_changes(std::size_t i, int limit) {
    const char kind = tokens_[i].kind;
    for (std::size_t r = 0; r < readings_.size(); ++r) {
      const Reading reading = readings_[r];
      if (reading.cost + cost::change > limit || reading.changes == most_parenthesis_changes)
        continue;
      if (kind == '(' || kind == ')')
        next_.push_back(
            changed(reading,
                    kind == '(' ? ParenthesisEdit::remove_open : ParenthesisEdit::remove_close, i));
      if (can_close(reading)) {
        readings_.push_back(changed(reading, ParenthesisEdit::add_close, i));
        close(readings_.back());
      }
      if (is_key(i) && reading.phase != Phase::opened && reading.phase != Phase::keyed) {
        readings_.push_back(changed(reading, ParenthesisEdit::add_open, i));
        open(readings_.back(), i);
      }
    }
  }

  // Whether a token may be the key of an item whose "(" is missing.
  bool is_key(std::size_t i) const {
    return tokens_[i].kind == 'w' && (words_[i] || tokens_[i + 1].kind == '=');
  }

  // At the end all that is open is closed, the item that is not written to its end as well.
  void close_all(std::size_t i) {
    for (Reading &reading : readings_) {
      while (reading.top.around != none && reading.changes < most_parenthesis_changes) {
        reading = changed(reading, ParenthesisEdit::add_close, i);
        reading.cost += cost_of_unfinished(reading.phase);
        close(reading);
      }
      if (reading.phase == Phase::valued) reading.cost += cost::wrong_value;  // no block at all
    }
  }

  static bool can_close(const Reading &reading) {
    return reading.top.around != none &&
           (reading.phase == Phase::items || reading.phase == Phase::done);
  }

  Reading changed(Reading reading, ParenthesisEdit edit, std::size_t i) {
    changes_.push_back({reading.last_change, edit, i, reading.top});
    reading.last_change = changes_.size() - 1;
    reading.last_changed = i;
    reading.changed += i;
    reading.cost += cost::change;
    ++reading.changes;
    return reading;
  }

  void step(Reading reading, std::size_t i) {
    switch (tokens_[i].kind) {
      case '(':
        take_open(reading, i);
        break;
      case ')':
        if (reading.top.around == none) return;
        take_close(reading, i);
        break;
      case '=':
        take_equal(reading);
        break;
      default:
        take_word(reading, i);
    }
    next_.push_back(reading);
  }

  void take_open(Reading &reading, std::size_t i) {
    if (reading.phase == Phase::valued && reading.top.content.kind == Content::value)
      reading.cost += cost::wrong_value;
    if (reading.phase != Phase::valued && reading.phase != Phase::items)
      reading.cost += cost::nested;
    open(reading, i);
  }

  void open(Reading &reading, std::size_t i) {
    place_in_lines(reading, tokens_[i]);
    around_.push_back(reading.top);
    reading.top = {around_.size() - 1, i, {}};
    reading.phase = Phase::opened;
  }

  void place_in_lines(Reading &reading, const EntryToken &item) {
    if (!item.first_of_line || reading.top.open == none) return;
    if (indented_ && item.column <= tokens_[reading.top.open].indentation)
      reading.cost += cost::line;
    if (reading.top.child_column == no_column)
      reading.top.child_column = item.column;
    else if (reading.top.child_column != item.column)
      reading.cost += cost::sibling;
  }

  void take_close(Reading &reading, std::size_t i) {
    reading.cost += cost_of_unfinished(reading.phase);
    reading.cost += cost_of_layout(reading.top, tokens_[i]);
    close(reading);
  }

  // Of an item that is closed in this phase.
  static int cost_of_unfinished(Phase phase) {
    if (phase == Phase::opened || phase == Phase::keyed) return cost::empty;
    return phase == Phase::valued ? cost::missing_word : 0;
  }

  int cost_of_layout(const Opened &block, const EntryToken &close) const {
    const bool of_lines = block.child_column != no_column;
    const int hanging = closed_in_lines_ && of_lines != close.first_of_line ? cost::hanging : 0;
    if (!indented_ || !close.first_of_line) return hanging;
    const EntryToken &begin = tokens_[block.open];
    const bool below = close.column == begin.column || close.column == begin.indentation;
    return hanging + (below ? 0 : cost::closing);
  }

  void close(Reading &reading) const {
    reading.top = around_[reading.top.around];
    reading.phase = Phase::items;
  }

  static void take_equal(Reading &reading) {
    if (reading.phase == Phase::keyed) {
      reading.phase = Phase::valued;
      return;
    }
    reading.cost += reading.phase == Phase::items ? cost::stray_word : cost::goes_on;
    if (reading.phase == Phase::opened) reading.phase = Phase::valued;
  }

  void take_word(Reading &reading, std::size_t i) {
    switch (reading.phase) {
      case Phase::opened:
        reading.phase = Phase::keyed;
        return take_key(reading, i);
      case Phase::keyed:
        reading.cost += cost::missing_word;
        break;
      case Phase::valued:
        if (reading.top.content.kind == Content::block ||
            reading.top.content.kind == Content::description_list)
          reading.cost += cost::wrong_value;
        break;
      case Phase::items:
        reading.cost += cost::stray_word;
        return;
      case Phase::done:
        reading.cost += cost::goes_on;
    }
    reading.phase = Phase::done;
  }

  void take_key(Reading &reading, std::size_t i) {
    const ItemWord word = words_[i];
    Opened &around = around_[reading.top.around];
    const Placement placement = placement_of(word, around.content);
    reading.top.content = placement.content;
    switch (placement.fit) {
      case Fit::good:
        break;
      case Fit::unknown:
        reading.cost += cost::unknown;
        break;
      case Fit::odd:
        reading.cost += cost::odd_block;
        break;
      case Fit::bad:
        reading.cost += cost::misplaced;
    }
    note_key(reading, around, word, placement.content);
  }

  static std::uint64_t bit_of(KZCILBKeyType type) { return std::uint64_t{1} << type; }

  // The blocks around are shared by readings: a reading that changes one copies it.
  void note_key(Reading &reading, const Opened &around, ItemWord word, Content content) {
    if (word.type == LB_ERROR_KEY) return;
    const bool again = (around.keys & bit_of(word.type)) != 0;
    if (again && (content.kind == Content::value || word.type == LB_CONNECT_DATA))
      reading.cost += cost::repeated;
    const std::uint64_t addresses = bit_of(LB_ADDRESS) | bit_of(LB_ADDRESS_LIST);
    if (word.type == LB_ADDRESS && around.content == content_of(Block::description) &&
        (around.keys & addresses) != 0)
      reading.cost += cost::second_address;
    if (again) return;
    Opened noted = around;
    noted.keys |= bit_of(word.type);
    around_.push_back(noted);
    reading.top.around = around_.size() - 1;
  }

  void prune() {
    readings_.swap(next_);
    next_.clear();
    if (readings_.empty()) return;
    const int limit = lowest_cost() + most_behind;
    std::erase_if(readings_, [&](const Reading &reading) { return reading.cost > limit; });
    std::sort(readings_.begin(), readings_.end(), [](const Reading &left, const Reading &right) {
      if (left.key() != right.key()) return left.key() < right.key();
      return is_better(left, right);
    });
    readings_.erase(std::unique(readings_.begin(), readings_.end(),
                                [](const Reading &left, const Reading &right) {
                                  return left.key() == right.key();
                                }),
                    readings_.end());
    if (readings_.size() <= most_readings) return;
    std::nth_element(readings_.begin(), readings_.begin() + most_readings, readings_.end(),
                     is_better);
    readings_.resize(most_readings);
  }

  const Change &first_change(std::size_t last) const {
    while (changes_[last].before != none) last = changes_[last].before;
    return changes_[last];
  }

  ParenthesisChange described(const Change &change) const {
    ParenthesisChange result = {change.edit, change.token, {}};
    for (const Opened *block = &change.top; block->around != none; block = &around_[block->around])
      result.blocks.push_back(block->open);
    std::reverse(result.blocks.begin(), result.blocks.end());
    return result;
  }

  const std::vector<EntryToken> &tokens_;
  bool indented_;                // whether the lines are
  bool closed_in_lines_;         // whether some ")" begin lines
  std::vector<ItemWord> words_;  // of the tokens
  std::vector<Reading> readings_;
  std::vector<Reading> next_;  // after the current token
  std::vector<Opened> around_;
  std::vector<Change> changes_;
};

// How many parentheses have no partner.
std::int64_t number_unmatched(const std::vector<EntryToken> &tokens) {
  std::int64_t open = 0;
  std::int64_t surplus = 0;
  for (const EntryToken &token : tokens) {
    if (token.kind == '(') ++open;
    if (token.kind == ')') --open;
    if (open >= 0) continue;
    ++surplus;
    open = 0;
  }
  return open + surplus;
}

}  // namespace

std::optional<ParenthesisChange> first_parenthesis_change(std::string_view text,
                                                          const std::vector<EntryToken> &tokens,
                                                          Block root) {
  const std::int64_t unmatched = number_unmatched(tokens);
  if (unmatched == 0 || unmatched > most_parenthesis_changes) return std::nullopt;
  return Search(text, tokens, root).run();
}

}  // namespace kztns
