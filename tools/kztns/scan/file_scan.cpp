#include "scan/file_scan.h"

#include <algorithm>
#include <cstring>
#include <optional>

#include "kzoci/oci_tnsname/status.h"
#include "scan/further_stops.h"
#include "scan/item_text.h"
#include "scan/reserved_names.h"
#include "scan/skip_mismatches.h"
#include "scan/written_entries.h"
#include "text/name_index.h"
#include "text/words.h"

namespace kztns {
namespace {

Offset here(const KZCITnsParseParams &params) {
  return static_cast<Offset>(params.description_offset) - params.buffer_len + params.buffer_pos;
}

// What a parse met instead of the token that was expected. Listens to the tokens
// between the entries.
class MetToken : public LogListener {
 public:
  KZCITnsTokenType met = TNS_ERROR_TYPE;

 private:
  void record(log_level, const char *format, std::va_list arguments) override {
    if (message_of(format) != MessageId::other_token) return;
    std::va_list again;
    va_copy(again, arguments);
    va_arg(again, int);
    met = static_cast<KZCITnsTokenType>(va_arg(again, int));
    va_end(again);
  }
};

class NoVisitor : public EntryVisitor {
 public:
  void visit(const EntryView &) override {}
  void progress(Offset) override {}
};

// A parse state after the "=" of an entry.
KZCITnsParseParams at_body(const std::string &text, Offset body, std::string_view name) {
  KZCITnsParseParams params = parse_at(text, body);
  std::memcpy(params.tns_key, name.data(), name.size());
  params.tns_key_len = static_cast<ub4>(name.size());
  params.tns_token_type = TNS_EQUAL_SIGN;
  return params;
}

// Builds what comes after an entry's "=", to be traced by a listener if there is one; then calls
// then(service, end) with what is gone afterwards.
template <class Then>
void build_from(KZCITnsParseParams params, Trace *trace, const Then &then) {
  const AllocationScope scope;
  KZCITns tns = {};
  {
    std::optional<Listening> listening;
    if (trace != nullptr) {
      listening.emplace(*trace);
      trace->begin(params);
    }
    KZCITnsServiceBuild(&tns, &params);
  }
  scope.require_memory();
  then(tns.tns_service, here(params));
}

// Of one rule no more are reported as a rule.
constexpr std::size_t most_skip_mismatches = 1000;

}  // namespace

// Builds entries, decides on their verdicts and shows them to the visitor.
class FileScan::Builder {
 public:
  Builder(const NamesText &text, EntryVisitor &visitor) : visitor_(visitor), trace_(text.text()) {}

  const Trace &trace() const { return trace_; }

  // Builds what comes after an entry's "=", then calls then(service, end).
  template <class Then>
  void build(const KZCITnsParseParams &at_body, const Then &then) {
    build_from(at_body, &trace_, then);
  }

  void show(const Entry &entry, std::string_view name, KZCITnsService *service, const Stop *stop) {
    visitor_.visit({entry, name, trace_, service, stop});
    if (++shown_ % 256 == 0) visitor_.progress(entry.at);
  }

 private:
  EntryVisitor &visitor_;
  Trace trace_;
  std::size_t shown_ = 0;
};

// The way that a lookup goes through the file, to where it ends.
class FileScan::Walk {
 public:
  Walk(FileScan &scan, Builder &builder, NameIndex &names)
      : scan_(scan), builder_(builder), names_(names) {
    params_ = parse_at(scan.text_.text(), 0);
  }

  void run() {
    while (read_name() && take_entry()) {
    }
  }

 private:
  const std::string &text() const { return scan_.text_.text(); }

  bool stop(StopKind kind, Offset at, Offset name, KZCITnsTokenType met) {
    scan_.stop_ = {kind, at, name, met};
    return false;
  }

  // Reads a name and its "=".
  bool read_name() {
    MetToken listener;
    const Listening listening(listener);
    const Offset from = here(params_);
    sword status = KZCITnsParse(&params_, TNS_KEY);
    const Offset at = std::min(pass_blanks(text(), from), scan_.text_.size());
    if (status == kzoci::tns::no_data)
      return stop(at == scan_.text_.size() ? StopKind::end : StopKind::lost_name, at, at,
                  listener.met);
    if (status != 0)
      return stop(listener.met == TNS_ERROR_TYPE ? StopKind::name_too_long : StopKind::no_name, at,
                  at, listener.met);
    const Offset name_end = here(params_);
    status = KZCITnsParse(&params_, TNS_EQUAL_SIGN);
    if (status != 0)
      return stop(status == kzoci::tns::no_data ? StopKind::lost_name : StopKind::no_equal,
                  here(params_), at, listener.met);
    begin_entry(at, name_end);
    return true;
  }

  void begin_entry(Offset at, Offset name_end) {
    entry_ = {};
    entry_.at = at;
    entry_.body = here(params_);
    entry_.reached = true;
    entry_.name_length = static_cast<std::uint16_t>(params_.tns_key_len);
    entry_.quoted = name_end - at != params_.tns_key_len;
    entry_.name = at;
    if (!entry_.quoted) return;
    entry_.name = static_cast<Offset>(scan_.names_.size());
    scan_.names_.append(params_.tns_key, params_.tns_key_len);
  }

  // Whether no entry before has the name.
  bool add_name() {
    const std::string_view name = scan_.name(entry_);
    const auto index = static_cast<std::uint32_t>(scan_.entries_.size());
    return names_.find_or_add(name_hash(name), index, [&](std::uint32_t other) {
      return same_name(scan_.name(scan_.entries_[other]), name);
    }) == NameIndex::none;
  }

  // Such a name is never looked up: it is built itself.
  bool is_descriptor() const {
    return IsDescriptionTns(const_cast<char *>(scan_.name(entry_).data()), entry_.name_length);
  }

  Verdict verdict(bool is_first) const {
    if (!is_first) return Verdict::shadowed;
    if (!entry_.built) return Verdict::refused;
    return builder_.trace().is_system_variables() ? Verdict::reserved : Verdict::ok;
  }

  // Builds the entry, passes it over as a lookup does, and shows it.
  bool take_entry() {
    bool goes_on = false;
    builder_.build(params_, [&](KZCITnsService *service, Offset end) {
      entry_.built = service != nullptr;
      entry_.end = end;
      entry_.verdict = is_descriptor() ? Verdict::unreachable : verdict(add_name());
      const Offset body = here(params_);
      goes_on = pass_over();
      note_skip_mismatch(goes_on);
      scan_.last_reached_ = entry_;
      scan_.entries_.push_back(entry_);
      builder_.show(entry_, scan_.name(entry_), service, goes_on ? nullptr : &scan_.stop_);
      goes_on = goes_on && can_afford(end - body);
    });
    return goes_on;
  }

  bool pass_over() {
    MetToken listener;
    const Listening listening(listener);
    const sword status = KZCITnsServiceSkip(&params_);
    if (status == 0 && params_.is_eof == 0) return true;
    if (status == 0) return stop(StopKind::reserved, entry_.at, entry_.at, listener.met);
    const bool opened = params_.tns_token_type == TNS_LEFT_PARENTHESES;
    return stop(opened ? StopKind::never_balanced : StopKind::no_open, here(params_), entry_.at,
                listener.met);
  }

  // Of an entry that is built well the end is known.
  void note_skip_mismatch(bool goes_on) {
    const std::optional<Offset> &end = builder_.trace().first_block_end();
    if (!entry_.built || !end || scan_.stop_.kind == StopKind::reserved) return;
    const Offset passed_to = goes_on ? here(params_) : scan_.text_.size();
    if (passed_to != *end && scan_.skip_mismatches_.size() < most_skip_mismatches)
      scan_.skip_mismatches_.push_back({entry_.body, *end, passed_to, true});
  }

  // An entry may be built far past the place to which it is skipped, and
  // the next one too: a file made for it costs the square of its length.
  bool can_afford(Offset cost) {
    constexpr std::uint64_t basis = 64 << 20;
    spent_ += cost;
    if (spent_ <= basis + std::uint64_t{scan_.text_.size()} * 16) return true;
    return stop(StopKind::gave_up, here(params_), here(params_), TNS_ERROR_TYPE);
  }

  FileScan &scan_;
  Builder &builder_;
  NameIndex &names_;
  KZCITnsParseParams params_;
  Entry entry_ = {};
  std::uint64_t spent_ = 0;
};

// The entries that stand in the text but are not reached.
class FileScan::UnreachedEntries {
 public:
  UnreachedEntries(FileScan &scan, Builder &builder, NameIndex &names)
      : scan_(scan), builder_(builder), names_(names), reached_(scan.entries_.size()) {}

  void run() {
    for_each_written_entry(scan_.text_.text(),
                           [this](const WrittenEntry &written) { take(written); });
    std::inplace_merge(scan_.entries_.begin(),
                       scan_.entries_.begin() + static_cast<std::ptrdiff_t>(reached_),
                       scan_.entries_.end(),
                       [](const Entry &left, const Entry &right) { return left.at < right.at; });
  }

 private:
  const Entry &reached(std::size_t i) const { return scan_.entries_[i]; }

  // Whether an entry that is reached has this place as its name, or is built over
  // it.
  bool is_known(const WrittenEntry &written) {
    while (next_ < reached_ && reached(next_).at <= written.name_begin) ++next_;
    if (next_ == 0) return false;
    const Entry &before = reached(next_ - 1);
    return before.at == written.name_begin || before.body == written.body ||
           (before.built && written.name_begin < before.end);
  }

  void take(const WrittenEntry &written) {
    if (is_known(written)) return;
    Entry entry = {};
    entry.at = written.name_begin;
    entry.body = written.body;
    entry.name = written.name_begin;
    entry.name_length =
        static_cast<std::uint16_t>(std::min(written.name_end - written.name_begin, longest_token));
    entry.in_list = written.in_list;
    const std::string_view name = scan_.name(entry);
    const std::uint32_t first = names_.find_or_add(
        name_hash(name), static_cast<std::uint32_t>(scan_.entries_.size()),
        [&](std::uint32_t other) { return same_name(scan_.name(scan_.entries_[other]), name); });
    entry.verdict = first < reached_ ? Verdict::shadowed : Verdict::unreachable;
    builder_.build(at_body(scan_.text_.text(), entry.body, name),
                   [&](KZCITnsService *service, Offset end) {
                     entry.built = service != nullptr;
                     entry.end = end;
                     note_skip_mismatch(entry);
                     scan_.entries_.push_back(entry);
                     builder_.show(entry, name, service, nullptr);
                   });
  }

  // Whether a lookup that comes so far would pass the entry over to another end. The
  // parentheses are counted no further than the entry: that is enough to know.
  void note_skip_mismatch(const Entry &entry) {
    const std::optional<Offset> &end = builder_.trace().first_block_end();
    const bool noted =
        !scan_.skip_mismatches_.empty() && scan_.skip_mismatches_.back().body == entry.body;
    if (!entry.built || !end || noted || ends_lookups(scan_.name(entry)) ||
        scan_.skip_mismatches_.size() >= most_skip_mismatches)
      return;
    const Offset counted = counted_end(scan_.text_.text(), entry.body, *end);
    if (counted != *end) scan_.skip_mismatches_.push_back({entry.body, *end, counted, false});
  }

  FileScan &scan_;
  Builder &builder_;
  NameIndex &names_;
  std::size_t reached_;  // entries that the walk found
  std::size_t next_ = 0;
};

KZCITnsParseParams parse_at(const std::string &text, Offset at) {
  KZCITnsParseParams params;
  std::memset(&params, 0, sizeof params);
  params.mode = TNS_MODE_DESCRIPTION;
  params.description = const_cast<char *>(text.data());
  params.description_len = static_cast<int>(text.size());
  constexpr Offset piece = sizeof params.tns_buffer;
  params.description_offset = static_cast<int>(at / piece * piece);
  if (at % piece != 0) {
    KZCITnsCheckBuffer(&params);
    params.buffer_pos = at % piece;
  }
  return params;
}

FileScan::FileScan(const NamesText &text, EntryVisitor &visitor) : text_(text) { run(visitor); }

FileScan::FileScan(const NamesText &text) : text_(text) {
  NoVisitor visitor;
  run(visitor);
}

void FileScan::run(EntryVisitor &visitor) {
  Builder builder(text_, visitor);
  NameIndex names;
  Walk(*this, builder, names).run();
  if (!comes_past_all()) UnreachedEntries(*this, builder, names).run();
  const auto refused = mismatches_of_refused(*this, most_skip_mismatches - skip_mismatches_.size());
  skip_mismatches_.insert(skip_mismatches_.end(), refused.begin(), refused.end());
  further_stops_ = find_further_stops(*this);
}

bool FileScan::comes_past_all() const {
  return stop_.kind == StopKind::end && skip_mismatches_.empty() &&
         std::all_of(entries_.begin(), entries_.end(),
                     [](const Entry &entry) { return entry.built; });
}

void build_entry(const std::string &text, Offset body, std::string_view name, Trace &trace) {
  build_from(at_body(text, body, name), &trace, [](KZCITnsService *, Offset) {});
}

void with_service(const std::string &text, Offset body, std::string_view name,
                  const std::function<void(KZCITnsService &)> &then) {
  build_from(at_body(text, body, name), nullptr, [&](KZCITnsService *service, Offset) {
    if (service != nullptr) then(*service);
  });
}

// A descriptor is built as an entry is, under some name.
void build_literal(const NamesText &text, Trace &trace) { build_entry(text.text(), 0, "-", trace); }

}  // namespace kztns
