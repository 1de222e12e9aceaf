// What the server does for editors; each answer is in the file of its name.
#pragma once

#include "lsp/question.h"

namespace kztns::lsp {

// The findings of an analysis, as the protocol has them.
Json diagnostics_of(const Analysis &analysis, const std::string &uri, const Document &document,
                    const ClientFeatures &client, const std::string &documents);

Json code_actions(Question &question);
// The edit of an action that was chosen; of another document than before it has none.
Json resolved_action(Question &question);

Json completion(Question &question);
Json hover(Question &question);
Json document_symbols(Question &question);
Json folding_ranges(Question &question);
Json definition(Question &question);
Json prepare_rename(Question &question);
Json rename(Question &question);
Json format_document(Question &question);
Json format_range(Question &question);

}  // namespace kztns::lsp
