// What a page needs that has the command's parts in its own process: the language server,
// and the views that editors do not ask for, behind one function.
//
// Besides the server's methods there are these requests:
//
//   kztns/check   checks the text that changed last. The findings are published as the
//                 server publishes them; the result is null when nothing was left to check,
//                 otherwise {"complete", "fixes", "severities", "verdicts"}: whether the
//                 findings are all; for each its fix, {"title", "safe", "edits"}, or null; how
//                 many errors, warnings and notes there are; how many entries of each verdict
//   kztns/entries what was checked last: {"entries", "starts"}, the entries as kztns list has
//                 them, and where their names begin, [line, character]; null when the text has
//                 changed since
//   kztns/entry   {"index"} among those entries: {"tree", "keys"}, its tree as kztns show
//                 has it, each number with its "digits", and the keys of its fields; null
//                 for one that is not built, or when the text has changed since
//   kztns/format  {"textDocument"}: {"edits", "kept"}, what kztns format would change, and
//                 {"line", "reason"} for each entry whose text it keeps
//   kztns/why     {"textDocument", "identifier"}: what kztns why says
#pragma once

#include <memory>
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
  std::string why(const Json &params);
  // The document that the parameters name; null for none.
  const lsp::Document *document_in(const Json &params) const;
  // The text that was checked last; null when it is not there any more.
  const std::string *checked_text() const;

  void add(const std::string &message);

  std::string answers_;
  lsp::Server server_;
  std::string checked_uri_;
  std::shared_ptr<const lsp::Analysis> checked_;
};

}  // namespace kztns
