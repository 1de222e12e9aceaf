#include "commands/list.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>

#include <nlohmann/json.hpp>

#include "io/exit_status.h"
#include "io/names_file.h"
#include "io/output.h"
#include "io/progress.h"
#include "scan/file_scan.h"

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

std::size_t width_of(std::string_view text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) {
    return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
  }));
}

std::string padded(const std::string &text, std::size_t width) {
  return text + std::string(width - std::min(width, width_of(text)) + 2, ' ');
}

class Lister {
 public:
  Lister(const NamesText &text, const FileScan &scan, const Links &links)
      : text_(text), scan_(scan), links_(links) {}

  void print(ListFormat format) const {
    const ListWidths widths = format == ListFormat::columns ? measure() : ListWidths();
    if (format == ListFormat::json) std::fputs("[", stdout);
    bool first = true;
    for (const Entry &entry : scan_.entries()) {
      if (format == ListFormat::json) std::fputs(first ? "\n  " : ",\n  ", stdout);
      first = false;
      std::fputs(list_line(listed(entry), format, widths).c_str(), stdout);
    }
    if (format == ListFormat::json) std::fputs(first ? "]\n" : "\n]\n", stdout);
  }

 private:
  ListedEntry listed(const Entry &entry) const {
    return {std::string(scan_.name(entry)), text_.position(entry.at).line, entry.verdict,
            std::string(links_.link_of(entry))};
  }

  ListWidths measure() const {
    ListWidths widths;
    for (const Entry &entry : scan_.entries()) {
      const ListedEntry shown = listed(entry);
      widths.name = std::max(widths.name, width_of(visible(shown.name)));
      widths.line = std::max(widths.line, std::to_string(shown.line).size());
    }
    return widths;
  }

  const NamesText &text_;
  const FileScan &scan_;
  const Links &links_;
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
  std::optional<std::string> content = read_names_file(options.file, options.max_size, path);
  if (!content) return exit_no_input;
  const NamesText text(std::move(*content));
  std::optional<Progress> progress(std::in_place, text.size());
  Links links(*progress);
  const FileScan scan(text, links);
  progress.reset();
  links.sort();
  const ListFormat format = options.json                 ? ListFormat::json
                            : isatty(STDOUT_FILENO) != 0 ? ListFormat::columns
                                                         : ListFormat::tabs;
  Lister(text, scan, links).print(format);
  return finish_output();
}

}  // namespace kztns
