// What the server does for editors, a file each; symbols.cpp has folding, too.
#pragma once

#include "lsp/question.h"

namespace kztns::lsp {

// The findings of an analysis, as the protocol has them.
Json diagnostics_of(const Analysis &analysis, const std::string &uri, const Document &document,
                    const ClientFeatures &client, const std::string &documents);

// What the action is called that applies a finding's fix.
std::string title_of_fix(const Finding &finding);

Json code_actions(const Question &question);
// The edit of an action that was chosen; of another document than before it has none.
Json resolved_action(const Question &question);

Json completion(const Question &question);
Json hover(const Question &question);

// Of more entries an outline has the names alone: with their blocks it is megabytes, and
// editors ask for it after each change.
constexpr std::size_t most_nested_entries = 5000;
Json document_symbols(const Question &question);
Json folding_ranges(const Question &question);
Json definition(const Question &question);
Json prepare_rename(const Question &question);
Json rename(const Question &question);
Json format_document(const Question &question);
Json format_range(const Question &question);

}  // namespace kztns::lsp
