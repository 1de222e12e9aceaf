#include "mend/inline_files.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "io/read_file.h"
#include "io/system.h"
#include "text/characters.h"
#include "text/escape.h"
#include "text/spelling.h"

namespace kztns {
namespace {

// What other readers of such files allow.
constexpr std::size_t most_depth = 16;

// A few files that include the next one several times make millions.
constexpr std::size_t most_files = 1000;

class Inliner {
 public:
  Inliner(std::uint64_t max_size, InlinedFiles &result) : room_(max_size), result_(result) {}

  // The edits of a text that is read from a file. Depth is the input's, up to a limit.
  std::vector<Edit> edits_of(const std::string &path, const NamesText &text) {
    std::vector<Edit> edits;
    open_.push_back(id_of(path));
    for (const IncludeLine &line : include_lines(text.text())) {
      if (files_ > most_files) break;
      if (std::optional<std::string> inlined = text_of(path, text, line)) {
        if (open_.size() == 1) tell(text, line);
        const std::string_view whole =
            std::string_view(text.text())
                .substr(line.whole.begin, line.whole.end - line.whole.begin);
        edits.push_back(
            {line.whole.begin, line.whole.end, comment_of(whole, line.file) + *inlined});
      }
    }
    open_.pop_back();
    return edits;
  }

 private:
  std::optional<std::string> text_of(const std::string &path, const NamesText &text,
                                     const IncludeLine &line) {
    const std::string included = from_folder_of(path, std::string(line.file));
    const auto refuse = [&](const std::string &why) {
      result_.faults.push_back(visible(path) + ":" + text.place(line.whole.begin) +
                               ": error: IFILE " + quoted(visible(included)) + " " + why + " [" +
                               std::string(row_of(Rule::ifile).id) + "]");
      return std::nullopt;
    };
    if (open_.size() > most_depth)
      return refuse("is nested more than " + std::to_string(most_depth) + " deep");
    const std::optional<FileId> id = id_of(included);
    if (id && std::find(open_.begin(), open_.end(), id) != open_.end())
      return refuse("includes itself");
    if (++files_ > most_files)
      return refuse("is one too many: at most " + std::to_string(most_files) + " files are put in");
    ReadFault fault;
    const std::optional<std::string> content = read_file(included, room_, fault);
    if (!content) return refuse(fault.text);
    room_ -= content->size();
    return expanded(included, *content);
  }

  // The comment of a line, as a line before what comes in its place.
  static std::string comment_of(std::string_view line, std::string_view file) {
    const auto after_file = static_cast<std::size_t>(file.data() - line.data()) + file.size();
    const std::size_t comment = line.find('#', after_file);
    return comment == line.npos ? "" : std::string(line.substr(comment)) + "\n";
  }

  // A file's text with the files that it includes, without the line end that the line has.
  std::string expanded(const std::string &path, const std::string &content) {
    const NamesText text(
        content.starts_with(byte_order_mark) ? content.substr(byte_order_mark.size()) : content);
    EditedText edited(text.text());
    edited.apply(edits_of(path, text));
    std::string result = edited.text();
    if (result.ends_with('\n')) result.pop_back();
    if (result.ends_with('\r')) result.pop_back();
    return result;
  }

  void tell(const NamesText &text, const IncludeLine &line) {
    Finding finding = {};
    finding.rule = Rule::ifile;
    finding.severity = Severity::error;
    finding.at = line.whole.begin;
    finding.position = text.position(line.whole.begin);
    finding.text = "included files are not supported";
    finding.fix.applicability = Applicability::safe;
    result_.inlined.push_back(
        {std::move(finding), "put " + quoted(excerpt(line.file)) + " in the place of the line"});
  }

  std::uint64_t room_;
  std::size_t files_ = 0;  // that were read
  InlinedFiles &result_;
  std::vector<std::optional<FileId>> open_;  // the files around the current one
};

}  // namespace

std::string_view included_file(std::string_view line) {
  const std::size_t equal = line.find('=');
  if (equal == line.npos || !equal_but_for_case(trimmed(line.substr(0, equal)), "IFILE")) return {};
  std::string_view value = trimmed(line.substr(equal + 1));
  const bool quoted = !value.empty() && (value[0] == '"' || value[0] == '\'');
  if (quoted) return value.substr(1, value.find(value[0], 1) - 1);
  value = trimmed(value.substr(0, value.find('#')));
  return value.starts_with('(') ? std::string_view() : value;
}

std::vector<IncludeLine> include_lines(std::string_view text) {
  std::vector<IncludeLine> lines;
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t end = std::min(text.find('\n', begin), text.size());
    const std::string_view line = text.substr(begin, end - begin);
    const std::string_view file = included_file(line);
    const std::size_t line_end = end - (line.ends_with('\r') ? 1 : 0);
    if (!file.empty())
      lines.push_back({{static_cast<Offset>(begin), static_cast<Offset>(line_end)}, file});
    begin = end + 1;
  }
  return lines;
}

std::string from_folder_of(const std::string &path, const std::string &file) {
  if (is_from_root(file)) return file;
  return path.substr(0, last_part(path)) + file;
}

InlinedFiles inline_files(const std::string &path, const NamesText &text, std::uint64_t max_size) {
  InlinedFiles result;
  const std::uint64_t room = max_size - std::min<std::uint64_t>(max_size, text.size());
  result.edits = Inliner(room, result).edits_of(path, text);
  return result;
}

}  // namespace kztns
