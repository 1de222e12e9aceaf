#include <nlohmann/json.hpp>

#include "check/stop_causes.h"
#include "lsp/capabilities.h"
#include "lsp/context.h"
#include "lsp/key_documents.h"
#include "report/tree_walk.h"
#include "scan/file_scan.h"
#include "scan/written_items.h"
#include "text/escape.h"
#include "text/spelling.h"

namespace kztns::lsp {
namespace {

using kzoci::tns::Block;

// A list of more servers is not read in a window that pops up.
constexpr ub4 most_servers = 20;

// A text from the file that markdown leaves as it is.
std::string code(std::string_view text) {
  std::string shown = visible(text);
  for (char &c : shown)
    if (c == '`') c = '\'';
  return "`" + shown + "`";
}

// "- `KZLB_READ_TIMEOUT` = `0` (default)", a line for each key of a record.
std::string settings_of(Block block, const void *record) {
  std::string lines;
  for_each_field(block, [&](const Key &key) {
    const std::string value = value_text(key, record);
    lines += "- " + code(key.word) + " = " + (value.empty() ? "(empty)" : code(value)) +
             (is_default(key, record) ? " (default)" : "") + "\n";
  });
  return lines;
}

std::string servers_of(KZCIDescription &description) {
  std::string lines;
  ub4 count = 0;
  for_each_record(description.address_list, description.address_list_count, KZCIAddressListNext,
                  [&](KZCIAddressList &list, ub4) {
                    for_each_record(
                        list.address, list.address_count, KZCIAddressNext,
                        [&](KZCIAddress &address, ub4) {
                          if (++count > most_servers) return;
                          const std::string_view host(address.host, address.host_len);
                          const std::string_view port(address.port, address.port_len);
                          lines += "- " + code(std::string(host) + ":" + std::string(port)) + "\n";
                        });
                  });
  if (count > most_servers) lines += "- and " + std::to_string(count - most_servers) + " more\n";
  return lines;
}

std::string tree_of(KZCITnsService &service) {
  std::string text;
  for_each_record(service.description, service.description_count, KZCIDescriptionNext,
                  [&](KZCIDescription &description, ub4) {
                    text += "\nServers:\n" + servers_of(description) + "\nSettings:\n" +
                            settings_of(Block::description, &description);
                    if (description.connect_data != nullptr)
                      text += settings_of(Block::connect_data, description.connect_data);
                  });
  return text;
}

// What IFILE begins is no entry, as findings see it.
bool is_said_of(const Finding &finding, const AnalysedEntry &entry) {
  return finding.entry == entry.name || finding.rule == Rule::ifile;
}

// Why an entry is refused, or what else is said of it.
std::string findings_of(const Analysis &analysis, const AnalysedEntry &entry) {
  std::string text;
  for (const Finding &finding : analysis.report.findings)
    if (is_said_of(finding, entry) && analysis.entry_at_or_before(finding.at) == &entry)
      text.append("\n")
          .append(name_of(finding.severity))
          .append(": ")
          .append(finding.text)
          .append(" [")
          .append(row_of(finding.rule).id)
          .append("]\n");
  return text;
}

// What keeps lookups from a place: what ends them before it, or leads them past it.
std::optional<Diagnosis> cause_before(const FileScan &scan, Offset at) {
  const Entry *const last = scan.last_reached();
  if (last != nullptr && last->at > at) {
    const Entry *before = nullptr;
    for (const Entry &entry : scan.entries())
      if (entry.reached && entry.at < at) before = &entry;
    for (const SkipMismatch &mismatch : scan.skip_mismatches())
      if (before != nullptr && mismatch.body == before->body)
        return cause_of_skip_mismatch(scan.text(), mismatch);
    return std::nullopt;
  }
  if (scan.stop().kind == StopKind::end) return std::nullopt;
  Diagnosis cause = cause_of_stop(scan);
  if (cause.rule == Rule::reserved_part) cause.rule = Rule::after_reserved;
  return cause;
}

std::string cause_of_loss(const Question &question, const Analysis &analysis, Offset at) {
  const NamesText text(question.document.text());
  const std::optional<Diagnosis> cause = cause_before(FileScan(text), at);
  if (!cause) return {};
  std::string words = cause->text;
  for (const Finding &finding : analysis.report.findings)
    if (finding.rule == cause->rule && finding.at == cause->at) words = finding.text;
  return "\nThe cause is at " + text.place(cause->at) + ": " + words + " [" +
         std::string(row_of(cause->rule).id) + "]\n";
}

std::string text_of_entry(const Question &question, const Analysis &analysis,
                          const AnalysedEntry &entry) {
  std::string text = "**" + code(entry.name) + "**: ";
  text.append(name_of(entry.verdict)).append(": ").append(meaning_of(entry.verdict)).append("\n");
  if (!entry.link.empty()) text += "\nLink string: " + code(entry.link) + "\n";
  text += findings_of(analysis, entry);
  if (entry.verdict == Verdict::unreachable)
    text += cause_of_loss(question, analysis, entry.name_span.begin);
  if (entry.built)
    with_service(question.document.text(), entry.body, entry.name, [&](KZCITnsService &service) {
      text += entry.verdict == Verdict::reserved
                  ? "\nSettings:\n" + settings_of(Block::system_variables, &service.sys_vars)
                  : tree_of(service);
    });
  return text;
}

std::string text_of_key(const Key &key) {
  return "**" + code(key.word) + "**: " + document_of(key.block, key.word).text() + "\n";
}

std::string text_of_item(const Question &question, const Place &place) {
  const std::string_view all = question.document.text();
  const std::string word =
      unquoted(all.substr(place.word.begin, place.word.end - place.word.begin));
  const bool is_key = place.kind == PlaceKind::key;
  const Key *const key = row_of(is_key ? std::string_view(word) : place.key, place.around);
  if (key == nullptr) return {};
  std::string text = text_of_key(*key);
  if (is_key) return text;
  const std::string_view whole = word_read_as(*key, word);
  if (word.size() < whole.size())
    text.append("\n").append(code(word)).append(" is read as ").append(code(whole)).append(".\n");
  return text;
}

}  // namespace

Json hover(const Question &question) {
  const std::optional<LinePosition> position = position_in(member(question.params, "position"));
  if (!position) return question.refuse(invalid_params, "expected a position");
  const Offset at = question.document.offset(*position);
  const Place place = place_at(question.document.text(), at, true);
  std::string text;
  Span span = place.word;
  if (place.kind == PlaceKind::key || place.kind == PlaceKind::value) {
    if (span.begin < span.end) text = text_of_item(question, place);
  } else if (place.kind != PlaceKind::item) {
    const std::shared_ptr<const Analysis> analysis = question.analyse();
    const AnalysedEntry *const entry = analysis->entry_at_or_before(at);
    if (entry == nullptr || at > entry->name_span.end) return nullptr;
    span = entry->name_span;
    text = text_of_entry(question, *analysis, *entry);
  }
  if (text.empty()) return nullptr;
  return {{"contents", markdown(text)}, {"range", json_of(question.document.range(span))}};
}

}  // namespace kztns::lsp
