// The text around a fault, for those who mend it.
#pragma once

#include <algorithm>
#include <optional>
#include <string_view>
#include <vector>

#include "fixes/mending.h"
#include "rules/diagnosis.h"
#include "scan/written_items.h"
#include "text/words.h"

namespace kztns {

class FaultPlace {
 public:
  // diagnosis is that of the trace's fault, name the entry's.
  FaultPlace(const Subject &subject, const Trace &trace, const Diagnosis &diagnosis,
             std::string_view name)
      : subject_(subject),
        trace_(trace),
        diagnosis_(diagnosis),
        name_(name),
        text_(std::string_view(subject.text.text()).substr(0, subject.end)) {}

  const Subject &subject() const { return subject_; }
  const Trace &trace() const { return trace_; }
  const Fault &fault() const { return trace_.fault(); }
  const Diagnosis &diagnosis() const { return diagnosis_; }
  Rule rule() const { return diagnosis_.rule; }
  std::string_view name() const { return name_; }  // the entry's
  // Whether what is at fault stands before the first block of an entry, or after an item.
  bool is_before_blocks() const { return rule() == Rule::no_block; }
  bool is_after_item() const { return rule() == Rule::missing_close; }
  std::string_view text() const { return text_; }  // up to the entry's end

  std::string_view slice(Span span) const {
    return text_.substr(span.begin, span.end - span.begin);
  }
  Offset after_blanks(Offset at) const { return pass_blanks(text_, at); }
  // The word that begins at a place; it may be empty.
  Span word_at(Offset at) const { return {at, end_of_word(text_, at)}; }
  // Where the text goes on after some characters; its end where it has only those.
  Offset after(std::string_view characters, Offset at) const {
    return static_cast<Offset>(std::min(text_.find_first_not_of(characters, at), text_.size()));
  }
  // Whether a sign stands at a place.
  bool has_sign(Offset at, char sign) const { return at < text_.size() && text_[at] == sign; }
  std::string_view key_of(const WrittenItem &item) const { return slice(item.key); }
  bool has_key(const WrittenItem &item, std::string_view word) const;

  // The last item that was begun; null for none.
  const Item *item() const;
  // The same as it is written; absent for one that is not closed, too.
  std::optional<WrittenItem> written_item() const;
  // Its value; empty for none.
  std::string_view value() const { return item() == nullptr ? "" : trace_.value_of(*item()); }
  const Frame &frame() const { return trace_.frames()[static_cast<std::size_t>(fault().frame)]; }
  Block block() const { return frame().block; }

  // The item that opened a block; absent for the entry.
  std::optional<WrittenItem> opener(const Frame &frame) const;
  // All items of a block, those after the fault too.
  std::vector<WrittenItem> items_of(const Frame &frame) const;
  std::vector<WrittenItem> children(const WrittenItem &item) const {
    return items_from(text_, item.value);
  }
  // Whether one of some items has the key or one that sets the same.
  bool is_set(const std::vector<WrittenItem> &items, std::string_view word) const;
  // Whether one of some items has the key and the value of another one.
  bool has_equal(const std::vector<WrittenItem> &items, const WrittenItem &other) const;
  // Whether a server, a service, or what tells of encryption or proxies is in a part of the text.
  bool holds_what_counts(Span span) const;
  // Whether an item is a remark: words in parentheses, without a "=".
  bool is_remark(const WrittenItem &item) const {
    return slice({item.open, item.end}).find('=') == std::string_view::npos;
  }
  // Whether the block at fault has no server, or no service: an item without a known key may be
  // that.
  bool lacks_what_counts() const;

  // What makes a comment of a remark; no fix where lookups would count one of its parentheses only.
  Fix commented_out(const WrittenItem &remark) const;
  // What removes a part of the text, and leaves its comments.
  Edit without(Span span) const;
  // What removes the item that begins at a place; no fix when nothing would be left.
  Fix removal(Offset open, Applicability applicability = Applicability::unsafe) const;
  // What writes another value instead of that of the item at fault, of which there is one.
  Fix with_value(Applicability applicability, std::string_view value) const;

 private:
  const Subject &subject_;
  const Trace &trace_;
  const Diagnosis &diagnosis_;
  std::string_view name_;
  std::string_view text_;
};

// "ON" or "OFF" for other words of that meaning; empty for none.
std::string_view switch_word(std::string_view word);

}  // namespace kztns
