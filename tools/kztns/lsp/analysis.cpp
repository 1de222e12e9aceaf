#include "lsp/analysis.h"

#include <algorithm>

#include "check/check_selected.h"
#include "kzoci/oci_tnsname.h"
#include "scan/tokens.h"
#include "text/uri.h"

namespace kztns::lsp {
namespace {

std::string link_of(KZCITnsService *service) {
  char link[KZCI_DBLINK_SIZE];
  sb4 length = 0;
  if (service == nullptr || KZCITnsServiceDblinkGet(service, link, &length) != 0) return {};
  return link;
}

AnalysedEntry analysed(const EntryView &view, const std::string &text) {
  const Entry &entry = view.entry;
  return {std::string(view.name),
          TokenReader(text, entry.at).next().span,
          entry.body,
          entry.verdict,
          entry.built != 0,
          link_of(view.service)};
}

std::shared_ptr<const Analysis> first_walk(const CheckJob &job) {
  auto analysis = std::make_shared<Analysis>();
  analysis->version = job.version;
  CheckRequest request{path_of(job.uri).value_or(job.uri)};
  request.visit = [&](const EntryView &view) {
    analysis->entries.push_back(analysed(view, job.text));
  };
  const NamesText text(job.text);
  analysis->report = check_selected_once(text, request, {});
  analysis->complete = !analysis->report.lookups_end && !analysis->report.splits;
  std::sort(analysis->entries.begin(), analysis->entries.end(),
            [](const AnalysedEntry &left, const AnalysedEntry &right) {
              return left.name_span.begin < right.name_span.begin;
            });
  return analysis;
}

std::shared_ptr<const Analysis> all_walks(const CheckJob &job, const Analysis &begun) {
  auto analysis = std::make_shared<Analysis>(begun);
  const NamesText text(job.text);
  analysis->report = check_selected(text, {path_of(job.uri).value_or(job.uri)}, {});
  analysis->complete = true;
  return analysis;
}

}  // namespace

const AnalysedEntry *Analysis::entry_at_or_before(Offset at) const {
  const auto next = std::upper_bound(
      entries.begin(), entries.end(), at,
      [](Offset place, const AnalysedEntry &entry) { return place < entry.name_span.begin; });
  return next == entries.begin() ? nullptr : &*std::prev(next);
}

const AnalysedEntry *Analysis::first_of(const std::string &name) const {
  const auto found = std::find_if(entries.begin(), entries.end(),
                                  [&](const AnalysedEntry &entry) { return entry.name == name; });
  return found == entries.end() ? nullptr : &*found;
}

std::shared_ptr<const Analysis> run(const CheckJob &job) {
  if (job.begun != nullptr) return all_walks(job, *job.begun);
  std::shared_ptr<const Analysis> begun = first_walk(job);
  if (begun->complete || job.text.size() > long_text) return begun;
  return all_walks(job, *begun);
}

}  // namespace kztns::lsp
