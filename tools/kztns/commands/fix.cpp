#include "commands/fix.h"

#include <algorithm>
#include <cstdio>

#include "check/check_once.h"
#include "check/check_selected.h"
#include "commands/written_file.h"
#include "io/exit_status.h"
#include "io/names_file.h"
#include "io/output.h"
#include "io/progress.h"
#include "io/replace_file.h"
#include "lookup/served_lookups.h"
#include "mend/inline_files.h"
#include "mend/mend_file.h"
#include "report/check_text.h"
#include "report/unified_diff.h"
#include "text/utf_16.h"

namespace kztns {
namespace {

std::string count_of(std::size_t count, const char *what) { return std::to_string(count) + what; }

// One call of the command, for one file.
class Fixer {
 public:
  Fixer(const FixOptions &options, std::string path, std::string text)
      : options_(options),
        path_(std::move(path)),
        original_(std::move(text)),
        converted_(converted(original_, options)),
        progress_(std::in_place, original_.size()),
        mender_(converted_ ? *converted_ : original_, {path_, options.with_unsafe, options.disabled,
                                                       [this](Offset at) { progress_->at(at); }}) {}

  int run() {
    mend();
    check_result();
    progress_.reset();
    if (!keeps_promises()) return exit_findings;
    const int written = write();
    if (written != exit_success) return written;
    tell();
    return count(left_, Severity::error) > 0 ? exit_findings : exit_success;
  }

 private:
  const std::string &result() const { return mender_.text().text(); }
  bool changed() const { return mender_.edited() != nullptr || converted_; }

  // A file in UTF-16 is converted before all else: places in it are those that editors show.
  static std::optional<NamesText> converted(const NamesText &text, const FixOptions &options) {
    if (!is_utf_16(text.text()) || options.disabled[static_cast<std::size_t>(Rule::utf_16)])
      return std::nullopt;
    return std::optional<NamesText>(std::in_place, utf_8_of_utf_16(text.text()));
  }

  bool writes_file() const {
    return options_.target == FixTarget::in_place || options_.target == FixTarget::file;
  }

  // The file of which the findings are told that are left: the one that is written.
  const std::string &file_left() const {
    return options_.target == FixTarget::file ? options_.output : path_;
  }

  void mend() {
    if (converted_) tell_conversion();
    if (options_.inline_ifile) put_files_in_place();
    kztns::mend(mender_, options_.commenting);
  }

  void tell_conversion() {
    for (Finding &finding : check_once(original_, {.file = path_}).findings)
      if (finding.rule == Rule::utf_16) mender_.add_mended({std::move(finding), "wrote UTF-8"});
  }

  void put_files_in_place() {
    InlinedFiles files = inline_files(path_, mender_.text(), options_.max_size);
    include_faults_ = std::move(files.faults);
    if (files.edits.empty() || !mender_.try_edits(std::move(files.edits))) return;
    for (MendedFinding &line : files.inlined) mender_.add_mended(std::move(line));
  }

  // The result is checked once more, as a file of its own.
  void check_result() {
    CheckRequest request;
    request.file = file_left();
    request.progress = [this](Offset at) { progress_->at(at); };
    if (!changed()) {
      left_ = mender_.report();
      if (!left_.findings.empty()) left_ = check_selected(original_, request, options_.disabled);
      return;
    }
    request.visit = [this](const EntryView &view) { served_.take(view); };
    const NamesText text(result());
    left_ = check_selected_once(text, request, options_.disabled);
    served_.sort();
    request.visit = {};
    if (left_.lookups_end || left_.splits || !writes_file())
      left_ = check_selected(writes_file() ? text : mender_.text(), request, options_.disabled);
  }

  // Whether every name is served that was, and the library finds those that are new.
  bool keeps_promises() const {
    if (!changed()) return true;
    const bool lost = !mender_.lost_in(served_).empty();
    if (!lost && all_are_found(result(), mender_.new_in(served_), served_.names())) return true;
    complain(quoted(visible(path_)), "a name would not be served as before: nothing is written");
    return false;
  }

  int write() const {
    switch (options_.target) {
      case FixTarget::output:
        return print_text(result());
      case FixTarget::diff:
        return changed() ? print_text(diff()) : exit_success;
      case FixTarget::in_place:
        return changed() ? replace() : exit_success;
      default:
        return write_output();
    }
  }

  std::string diff() const {
    if (!converted_) return unified_diff(path_, original_.text(), *mender_.edited());
    EditedText whole(original_.text());
    whole.apply({{0, original_.size(), result()}});
    return unified_diff(path_, original_.text(), whole);
  }

  int replace() const {
    const std::optional<std::string> fault =
        replace_read_file(path_, original_.text(), result(), options_.max_size);
    return fault ? cannot_write(path_, *fault) : exit_success;
  }

  int write_output() const {
    const std::optional<std::string> fault = replace_file(options_.output, result(), Backup::none);
    return fault ? cannot_write(options_.output, *fault) : exit_success;
  }

  static int cannot_write(const std::string &path, const std::string &fault) {
    complain(quoted(visible(path)), fault);
    return exit_output;
  }

  void tell() const {
    std::vector<const MendedFinding *> mended;
    for (const MendedFinding &one : mender_.mended()) mended.push_back(&one);
    std::stable_sort(mended.begin(), mended.end(),
                     [](const MendedFinding *left, const MendedFinding *right) {
                       const Position &a = left->finding.position;
                       const Position &b = right->finding.position;
                       return a.line != b.line ? a.line < b.line : a.column < b.column;
                     });
    std::string text;
    for (const MendedFinding *one : mended)
      text += fixed_line(path_, one->finding, one->done) + "\n";
    for (const std::string &fault : include_faults_) text += fault + "\n";
    for (const Finding &finding : left_.findings) text += finding_line(left_.file, finding) + "\n";
    text += left_out_lines(left_);
    text += visible(file_left()) + ": " + count_of(mended.size(), " fixed, ") + left() + "; " +
            summary(totals_of(left_)) + "\n";
    std::fwrite(text.data(), 1, text.size(), stderr);
    if (mender_.stopped())
      complain(quoted(visible(path_)), "too many faults hide each other; mend the result again");
  }

  // "3 left, 1 of them with an unsafe fix"
  std::string left() const {
    std::size_t all = 0;
    for (const std::size_t count : severities_of(left_)) all += count;
    const auto is_unsafe = [](const Finding &finding) {
      return finding.applied_among == Applicability::unsafe;
    };
    const auto guesses = static_cast<std::size_t>(
        std::count_if(left_.findings.begin(), left_.findings.end(), is_unsafe));
    std::string text = count_of(all, " left");
    if (guesses > 0 && !options_.with_unsafe)
      text += " (" + count_of(guesses, " with a fix for --unsafe)");
    return text;
  }

  const FixOptions &options_;
  std::string path_;
  NamesText original_;
  std::optional<NamesText> converted_;  // what is mended of a file in UTF-16
  std::optional<Progress> progress_;
  Mender mender_;
  CheckReport left_;
  ServedNames served_;  // in the result
  std::vector<std::string> include_faults_;
};

}  // namespace

int fix(const FixOptions &options) {
  if (options.target == FixTarget::in_place && cannot_be_replaced(options.file))
    return exit_no_input;
  std::string path;
  std::optional<std::string> text =
      read_names_file(options.file, options.stdin_name, options.max_size, path);
  if (!text) return exit_no_input;
  return Fixer(options, std::move(path), std::move(*text)).run();
}

}  // namespace kztns
