// What lookups in a names file meet: every entry with its verdict, found by
// walking the file as a lookup does and building each entry with the library.
#pragma once

#include <algorithm>
#include <functional>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kzoci/oci_tnsname.h"
#include "scan/verdict.h"
#include "text/names_text.h"
#include "trace/build_trace.h"

namespace kztns {

struct Entry {
  Offset at;    // its name
  Offset body;  // after the "="
  Offset end;   // to where it is built
  Offset name;  // index of the name's text, see FileScan::name
  std::uint16_t name_length;
  bool quoted : 1;   // the name is written in quotes
  bool reached : 1;  // by lookups of names that are not found before
  bool in_list : 1;  // one of several names
  bool built : 1;    // whether the library builds it
  Verdict verdict;
};

// Where the lookup of a name that is not in the file ends.
enum class StopKind {
  end,             // of the file
  reserved,        // at an entry that ends every lookup
  no_name,         // another token where a name is expected
  after_block,     // of further stops: the same, a "(" right after an entry
  no_equal,        // another token after a name
  no_open,         // an entry's value does not begin with "("
  never_balanced,  // the file ends in passing over an entry
  lost_name,       // the file ends within a name, or after it
  name_too_long,
  gave_up  // the walk came over the same text too often
};

struct Stop {
  StopKind kind = StopKind::end;
  Offset at = 0;    // of the token at fault
  Offset name = 0;  // no_equal, lost_name: where the name begins
  KZCITnsTokenType met = TNS_ERROR_TYPE;
};

// An entry that is passed over to another end than the one it has.
struct SkipMismatch {
  Offset body;
  Offset built_to;   // after the ")" of its first block; of a refused entry, by its tokens
  Offset passed_to;  // the text's size when the skip finds no end
  // Whether lookups come to the entry; if not, passed_to is only known to be before or
  // after built_to.
  bool reached;
};

// What a visitor is shown of an entry. All of it is gone after the visit.
struct EntryView {
  const Entry &entry;
  std::string_view name;
  const Trace &trace;       // of its build
  KZCITnsService *service;  // null when it cannot be built
  const Stop *stop;         // where passing it over ends every lookup; null as a rule
};

class EntryVisitor {
 public:
  virtual void visit(const EntryView &view) = 0;
  // Called now and then with the place in the text.
  virtual void progress(Offset at) = 0;

 protected:
  ~EntryVisitor() = default;
};

class FileScan {
 public:
  // Walks through the text; the visitor sees every entry as it is built, which
  // is not quite the order of the text.
  FileScan(const NamesText &text, EntryVisitor &visitor);
  // The same without a visitor.
  explicit FileScan(const NamesText &text);

  const std::vector<Entry> &entries() const { return entries_; }  // in the text's order
  const Stop &stop() const { return stop_; }
  // What else would end lookups if they came past the stop, in the text's order.
  const std::vector<Stop> &further_stops() const { return further_stops_; }
  const std::vector<SkipMismatch> &skip_mismatches() const { return skip_mismatches_; }
  // The entry that was reached last; null for none.
  const Entry *last_reached() const { return last_reached_ ? &*last_reached_ : nullptr; }
  const NamesText &text() const { return text_; }

  // The first entry whose name begins after a place, and where; the end for none.
  std::vector<Entry>::const_iterator first_after(Offset at) const {
    return std::upper_bound(entries_.begin(), entries_.end(), at,
                            [](Offset place, const Entry &entry) { return place < entry.at; });
  }
  Offset next_entry(Offset at) const {
    const auto next = first_after(at);
    return next == entries_.end() ? text_.size() : next->at;
  }
  // The last entry whose name begins at a place or before it; null for none.
  const Entry *entry_at_or_before(Offset at) const {
    const auto next = first_after(at);
    return next == entries_.begin() ? nullptr : &*std::prev(next);
  }

  std::string_view name(const Entry &entry) const {
    const std::string &from = entry.quoted ? names_ : text_.text();
    return std::string_view(from).substr(entry.name, entry.name_length);
  }

 private:
  class Builder;
  class Walk;
  class UnreachedEntries;

  void run(EntryVisitor &visitor);
  // Whether each entry begins where the one before ends, so that no other is in the text.
  bool comes_past_all() const;

  const NamesText &text_;
  std::vector<Entry> entries_;
  std::optional<Entry> last_reached_;
  std::string names_;  // of entries whose names are written in quotes
  Stop stop_;
  std::vector<Stop> further_stops_;
  std::vector<SkipMismatch> skip_mismatches_;
};

// Traces the build of a literal descriptor, as far as its description goes.
void build_literal(const NamesText &text, Trace &trace);

// Traces the build of an entry of that name whose value begins at a place.
void build_entry(const std::string &text, Offset body, std::string_view name, Trace &trace);

// Builds such an entry, and calls then with it when the library builds it. It is gone after
// the call.
void with_service(const std::string &text, Offset body, std::string_view name,
                  const std::function<void(KZCITnsService &)> &then);

// A parse state at a place of the text, as a lookup's would be: pieces
// of 1024 bytes from the beginning.
KZCITnsParseParams parse_at(const std::string &text, Offset at);

}  // namespace kztns
