#include "page/views.h"

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <set>
#include <span>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "commands/list.h"
#include "format/format_file.h"
#include "lookup/lookup_failure.h"
#include "lookup/lookup_json.h"
#include "lsp/capabilities.h"
#include "mend/mend_file.h"
#include "report/tree_json.h"
#include "report/tree_walk.h"
#include "scan/file_scan.h"
#include "text/original_edits.h"

namespace kztns {
namespace {

using kzoci::tns::Block;
using kzoci::tns::Key;
using lsp::Json;

std::string joined(std::initializer_list<std::string_view> parts) {
  std::string text;
  for (const std::string_view part : parts) text += part;
  return text;
}

// Elements between brackets, each as JSON already.
template <class Elements, class ToJson>
std::string array_of(const Elements &elements, const ToJson &to_json) {
  std::string array = "[";
  for (const auto &element : elements) {
    if (array.size() > 1) array += ',';
    array += to_json(element);
  }
  return array + "]";
}

std::string listed(const lsp::AnalysedEntry &entry, const NamesText &text) {
  const std::uint32_t line = text.position(entry.name_span.begin).line;
  return list_line({entry.name, line, entry.verdict, entry.link}, ListFormat::json, {});
}

std::string start_of(const lsp::AnalysedEntry &entry, const lsp::Document &document) {
  const lsp::LinePosition start = document.position(entry.name_span.begin);
  return joined({"[", std::to_string(start.line), ",", std::to_string(start.character), "]"});
}

// What the settings of a tree are called in a names file, by their fields in it.
Json keys_of_fields() {
  Json keys = Json::object();
  for (const Key &key : kzoci::tns::grammar) {
    if (key.name == nullptr) continue;
    const bool removes = key.block == Block::remove_strategy;
    const bool appends = key.block == Block::append_strategy;
    keys[key.name] = (removes   ? "REMOVE_STRATEGY "
                      : appends ? "APPEND_STRATEGY "
                                : "") +
                     std::string(key.word);
  }
  return keys;
}

Json keys_of_blocks() {
  std::set<std::string> keys;
  for (const Key &key : kzoci::tns::grammar)
    if (key.value.kind == kzoci::tns::ValueKind::block) keys.insert(key.word);
  return keys;
}

Json meanings_of_verdicts() {
  Json meanings = Json::object();
  for (std::size_t i = 0; i < verdict_count; ++i) {
    const auto verdict = static_cast<Verdict>(i);
    meanings[std::string(name_of(verdict))] = meaning_of(verdict);
  }
  return meanings;
}

std::string fix_of(const Finding &finding, const lsp::Document &document) {
  if (!finding.fix) return "null";
  return lsp::text_of({{"title", lsp::title_of_fix(finding)},
                       {"safe", finding.fix.applicability == Applicability::safe},
                       {"applied", finding.applied_among == Applicability::safe},
                       {"edits", lsp::json_of(finding.fix.edits, document)}});
}

// A script's numbers have 53 bits, those of a tree 64: their digits are told as a text, too.
void add_digits(nlohmann::ordered_json &node) {
  if (node.is_object() && node.contains("value") && node["value"].is_number_integer())
    node["digits"] = node["value"].dump();
  for (nlohmann::ordered_json &child : node)
    if (child.is_structured()) add_digits(child);
}

// Each edit costs the page something wherever it is: of a long file they are joined, until
// this many are left besides those in what is shown.
constexpr std::size_t most_edits = 1000;

// One edit instead of neighbours, which writes the text between them again.
Edit joined_edit(std::span<const Edit> neighbours, const std::string &text) {
  Edit joined = neighbours.front();
  for (const Edit &next : neighbours.subspan(1)) {
    joined.text.append(text, joined.end, next.begin - joined.end).append(next.text);
    joined.end = next.end;
  }
  return joined;
}

// What is shown keeps its edits as they are, and so its place.
std::vector<Edit> joined_edits(const std::vector<Edit> &edits, const std::string &text,
                               Span shown) {
  const std::size_t run = (edits.size() + most_edits - 1) / most_edits;
  const auto is_shown = [&](const Edit &edit) {
    return edit.begin <= shown.end && shown.begin <= edit.end;
  };
  std::vector<Edit> joined;
  for (std::size_t first = 0, last = 0; first < edits.size(); first = last) {
    last = first + 1;
    while (last < edits.size() && last - first < run && !is_shown(edits[first]) &&
           !is_shown(edits[last]))
      ++last;
    joined.push_back(joined_edit(std::span(edits).subspan(first, last - first), text));
  }
  return joined;
}

// On which line each of some places is, in their order, when sorted edits have been applied
// that leave the places as they are.
class LinesAfterEdits {
 public:
  LinesAfterEdits(const lsp::Document &document, const std::vector<Edit> &edits)
      : document_(document), edits_(edits) {}

  std::int64_t next(Offset at) {
    for (; !edits_.empty() && edits_.front().end <= at; edits_ = edits_.subspan(1)) {
      const Edit &edit = edits_.front();
      added_ += std::count(edit.text.begin(), edit.text.end(), '\n');
      added_ -= line(edit.end) - line(edit.begin);
    }
    return line(at) + added_;
  }

 private:
  std::int64_t line(Offset at) const { return document_.position(at).line; }

  const lsp::Document &document_;
  std::span<const Edit> edits_;  // those after the last place
  std::int64_t added_ = 0;       // lines, by the edits before it
};

std::string kept_of(const KeptEntry &kept, std::int64_t line) {
  return lsp::text_of({{"line", line + 1}, {"reason", std::string(name_of(kept.reason))}});
}

}  // namespace

std::string checked_json(const lsp::Analysis &analysis, const lsp::Document &document) {
  const auto fix = [&](const Finding &finding) { return fix_of(finding, document); };
  const auto text = [](const Finding &finding) { return lsp::text_of(finding.text); };
  return std::string("{\"complete\":") + (analysis.complete ? "true" : "false") +
         ",\"fixes\":" + array_of(analysis.report.findings, fix) +
         ",\"texts\":" + array_of(analysis.report.findings, text) +
         ",\"severities\":" + lsp::text_of(severities_of(analysis.report)) +
         ",\"verdicts\":" + lsp::text_of(analysis.report.verdicts) + "}";
}

std::string entries_json(const lsp::Analysis &analysis, const lsp::Document &document) {
  const NamesText lines(document.text());
  const auto entry = [&](const lsp::AnalysedEntry &one) { return listed(one, lines); };
  const auto start = [&](const lsp::AnalysedEntry &one) { return start_of(one, document); };
  return joined({"{\"entries\":", array_of(analysis.entries, entry),
                 ",\"starts\":", array_of(analysis.entries, start), "}"});
}

std::string entry_json(const lsp::AnalysedEntry &entry, const std::string &text) {
  if (!entry.built) return "null";
  std::string tree = "null";
  with_service(text, entry.body, entry.name, [&](KZCITnsService &service) {
    KZCITns whole = {};
    whole.tns_service = &service;
    whole.tns_service_count = 1;
    tree = tree_json(whole);
  });
  nlohmann::ordered_json with_digits = nlohmann::ordered_json::parse(tree);
  add_digits(with_digits);
  return with_digits.dump();
}

std::string format_json(const lsp::Document &document, Span shown) {
  const Formatted formatted = format_file(NamesText(document.text()), FormatOptions());
  const std::vector<Edit> edits = joined_edits(formatted.edits, document.text(), shown);
  LinesAfterEdits lines(document, formatted.edits);
  const auto kept = [&](const KeptEntry &one) { return kept_of(one, lines.next(one.at)); };
  return joined({"{\"edits\":", lsp::text_of(lsp::json_of(edits, document)),
                 ",\"kept\":", array_of(formatted.kept, kept), "}"});
}

std::string fix_json(const lsp::Document &document, Span shown) {
  const NamesText text(document.text());
  Mender mender(text, {"names"});
  mender.apply_fixes();
  std::vector<Edit> edits;
  if (mender.edited() != nullptr) edits = original_edits(*mender.edited(), document.size());
  edits = joined_edits(edits, document.text(), shown);
  return lsp::text_of({{"edits", lsp::json_of(edits, document)},
                       {"mended", mender.mended().size()},
                       {"errors", count(mender.report(), Severity::error)}});
}

std::string why_json(const std::string &identifier, const std::string &text) {
  Tree tree;
  const Lookup lookup = look_up_in(text, identifier, tree);
  const LookupReport report = make_lookup_report(identifier, lookup);
  return lookup_json({identifier, lookup, report, true,
                      lookup.outcome == Outcome::found ? link_string(tree) : ""});
}

std::string words_json() {
  return lsp::text_of({{"blocks", keys_of_blocks()},
                       {"keys", keys_of_fields()},
                       {"verdicts", meanings_of_verdicts()}});
}

}  // namespace kztns
