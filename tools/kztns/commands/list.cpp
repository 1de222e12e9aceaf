#include "commands/list.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <set>

#include <nlohmann/json.hpp>

#include "io/exit_status.h"
#include "io/names_file.h"
#include "io/output.h"
#include "io/progress.h"
#include "lookup/identifier_form.h"
#include "lookup/near_entries.h"
#include "scan/file_scan.h"
#include "text/width.h"

namespace kztns {
namespace {

// The link strings of entries, in little memory: all texts are one.
class Links : public EntryVisitor {
 public:
  explicit Links(Progress &progress) : progress_(progress) {}

  void visit(const EntryView &view) override {
    if (view.service == nullptr) return;
    char dblink[KZCI_DBLINK_SIZE];
    sb4 length = 0;
    if (KZCITnsServiceDblinkGet(view.service, dblink, &length) != 0) return;
    places_.push_back({view.entry.at, static_cast<std::uint32_t>(texts_.size())});
    texts_ += dblink;
    texts_ += '\0';
  }

  void progress(Offset at) override { progress_.at(at); }

  // To be called once, before the first link_of.
  void sort() { std::sort(places_.begin(), places_.end()); }

  std::string_view link_of(const Entry &entry) const {
    const auto found = std::lower_bound(places_.begin(), places_.end(), Place{entry.at, 0});
    if (found == places_.end() || found->at != entry.at) return {};
    return texts_.c_str() + found->text;
  }

 private:
  struct Place {
    Offset at;
    std::uint32_t text;
    auto operator<=>(const Place &) const = default;
  };

  Progress &progress_;
  std::vector<Place> places_;
  std::string texts_;
};

std::string padded(const std::string &text, std::size_t width) {
  return text + std::string(width - std::min(width, width_of(text)) + 2, ' ');
}

// Which of the names no entry has.
std::vector<std::string> names_not_there(const FileScan &scan,
                                         const std::vector<std::string> &names) {
  std::set<std::string_view> there;
  if (!names.empty())
    for (const Entry &entry : scan.entries()) there.insert(scan.name(entry));
  std::vector<std::string> missing;
  for (const std::string &name : names)
    if (there.count(name) == 0) missing.push_back(name);
  return missing;
}

class Lister {
 public:
  Lister(const NamesText &text, const FileScan &scan, const Links &links,
         const ListOptions &options)
      : text_(text),
        scan_(scan),
        links_(links),
        names_(options.names.begin(), options.names.end()),
        verdicts_(options.verdicts) {}

  void print(ListFormat format) const {
    const ListWidths widths = format == ListFormat::columns ? measure() : ListWidths();
    if (format == ListFormat::json) std::fputs("[", stdout);
    bool first = true;
    for_each([&](const ListedEntry &shown) {
      if (format == ListFormat::json) std::fputs(first ? "\n  " : ",\n  ", stdout);
      first = false;
      std::fputs(list_line(shown, format, widths).c_str(), stdout);
    });
    if (format == ListFormat::json) std::fputs(first ? "]\n" : "\n]\n", stdout);
  }

 private:
  template <class Use>
  void for_each(const Use &use) const {
    for (const Entry &entry : scan_.entries())
      if (is_wanted(entry))
        use(ListedEntry{std::string(scan_.name(entry)), text_.position(entry.at).line,
                        entry.verdict, std::string(links_.link_of(entry))});
  }

  bool is_wanted(const Entry &entry) const {
    return verdicts_[static_cast<std::size_t>(entry.verdict)] &&
           (names_.empty() || names_.count(scan_.name(entry)) > 0);
  }

  ListWidths measure() const {
    ListWidths widths;
    for_each([&](const ListedEntry &shown) {
      widths.name = std::max(widths.name, width_of(visible(shown.name)));
      widths.line = std::max(widths.line, std::to_string(shown.line).size());
    });
    return widths;
  }

  const NamesText &text_;
  const FileScan &scan_;
  const Links &links_;
  std::set<std::string_view> names_;
  VerdictSet verdicts_;
};

}  // namespace

std::string list_line(const ListedEntry &entry, ListFormat format, const ListWidths &widths) {
  const std::string line = std::to_string(entry.line);
  const std::string verdict(name_of(entry.verdict));
  switch (format) {
    case ListFormat::columns: {
      const std::string row = padded(visible(entry.name), widths.name) + padded(line, widths.line) +
                              padded(verdict, std::string_view("unreachable").size()) +
                              visible(entry.link);
      return row.substr(0, row.find_last_not_of(' ') + 1) + "\n";
    }
    case ListFormat::tabs:
      return visible(entry.name) + "\t" + line + "\t" + verdict + "\t" + visible(entry.link) + "\n";
    case ListFormat::json:
      break;
  }
  const nlohmann::ordered_json object = {{"name", valid_utf8(entry.name)},
                                         {"line", entry.line},
                                         {"verdict", verdict},
                                         {"link", valid_utf8(entry.link)}};
  return visible_json(object.dump());
}

int list(const ListOptions &options) {
  std::string path;
  std::optional<std::string> content =
      read_names_file(options.file, options.stdin_name, options.max_size, path);
  if (!content) return exit_no_input;
  const NamesText text(std::move(*content));
  std::optional<Progress> progress(std::in_place, text.size());
  Links links(*progress);
  const FileScan scan(text, links);
  progress.reset();
  links.sort();
  const bool on_terminal = isatty(STDOUT_FILENO) != 0;
  const ListFormat as_text = on_terminal ? ListFormat::columns : ListFormat::tabs;
  Lister(text, scan, links, options).print(options.format.value_or(as_text));
  const int written = finish_output();
  const std::vector<std::string> missing = names_not_there(scan, options.names);
  for (const std::string &name : missing) {
    std::string what = "not found in " + kztns::quoted(visible(path));
    for (const NearEntry &near : near_entries(text, scan, name)) what += "; " + near.clause;
    complain(name.empty() ? "\"\"" : excerpt(without_password(name)), what);
  }
  if (written != exit_success) return written;
  return missing.empty() ? exit_success : exit_not_found;
}

}  // namespace kztns
