// What a page needs that has the command's parts in its own process: the language server,
// and the views that editors do not ask for, behind one function.
//
// Besides the server's methods there are these requests:
//
//   kztns/check   checks the text that changed last. The findings are published as the
//                 server publishes them; the result is null when nothing was left to check,
//                 otherwise {"complete", "fixes", "texts", "severities", "verdicts"}: whether
//                 the findings are all; for each its fix, {"title", "safe", "applied",
//                 "edits"}, or null, applied being whether kztns fix would take it without
//                 guesses; of its message what is wrong alone; how many errors, warnings and
//                 notes there are; how many entries of each verdict
//   kztns/entries what was checked last: {"entries", "starts"}, the entries as kztns list has
//                 them, and where their names begin, [line, character]; null when the text has
//                 changed since
//   kztns/entry   {"index"} among those entries: its tree as kztns show has it, each number
//                 with its "digits"; null for one that is not there or not built, or when
//                 the text has changed since
//   kztns/format  {"textDocument", "shown"}: {"edits", "kept"}, what kztns format would
//                 change, and {"line", "reason"} for each entry whose text it keeps, the line
//                 being that after the edits. Of many edits, neighbours are joined outside of
//                 the range that is shown
//   kztns/fix     {"textDocument", "shown"}: {"edits", "mended", "errors"}, what kztns fix would
//                 change without guesses, with the edits joined likewise, how many findings
//                 that mends, and how many errors are left in the result
//   kztns/why     {"textDocument", "identifier"}: what kztns why says
//   kztns/words   {"blocks", "keys", "verdicts"}: the keys of blocks; of the fields of a tree,
//                 their keys in a names file; of the verdicts, their meanings
//
// Parameters that are not these are refused, as the server refuses its own.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "lsp/server.h"

namespace kztns {

class Page {
 public:
  Page();
  Page(const Page &) = delete;
  Page &operator=(const Page &) = delete;

  // Takes a message of JSON-RPC; returns an array of those that come of it.
  std::string answer(const std::string &message);

 private:
  using Json = lsp::Json;
  using Handler = std::string (Page::*)(const Json &params);
  struct Method;

  static Handler handler_of(const std::string &name);
  std::string check(const Json &params);
  std::string entries(const Json &params);
  std::string entry(const Json &params);
  std::string format(const Json &params);
  std::string fix(const Json &params);
  std::string why(const Json &params);
  std::string words(const Json &params);
  // For an answer that is none.
  std::string refuse(std::string message);
  // What a view makes of the document and the range that the parameters name.
  std::string view_of_shown(const Json &params,
                            std::string (*view)(const lsp::Document &document, Span shown));
  // The document that the parameters name; null for none.
  const lsp::Document *document_in(const Json &params) const;
  // The document that was checked last; null when its text is not there any more.
  const lsp::Document *checked_document() const;

  void reply(const Json &id, const std::string &result);
  void add(const std::string &message);

  std::string answers_;
  std::optional<lsp::Failure> failure_;
  lsp::Server server_;
  std::string checked_uri_;
  std::shared_ptr<const lsp::Analysis> checked_;
};

}  // namespace kztns
