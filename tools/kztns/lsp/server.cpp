#include "lsp/server.h"

#include <nlohmann/json.hpp>

#include "io/exit_status.h"
#include "io/read_file.h"
#include "kzoci/version.h"
#include "lsp/capabilities.h"

namespace kztns::lsp {
namespace {

using Answer = Json (*)(const Question &);

struct Method {
  const char *name;
  Answer answer;
};

constexpr Method methods[] = {
    {"textDocument/codeAction", code_actions},
    {"textDocument/completion", completion},
    {"textDocument/definition", definition},
    {"textDocument/documentSymbol", document_symbols},
    {"textDocument/foldingRange", folding_ranges},
    {"textDocument/formatting", format_document},
    {"textDocument/hover", hover},
    {"textDocument/prepareRename", prepare_rename},
    {"textDocument/rangeFormatting", format_range},
    {"textDocument/rename", rename},
    {"codeAction/resolve", resolved_action},
};

Json capabilities(Encoding encoding) {
  constexpr int incremental = 2;
  const Json sync = {{"openClose", true}, {"change", incremental}};
  const Json actions = {{"codeActionKinds", {"quickfix", "source.fixAll.kztns"}},
                        {"resolveProvider", true}};
  return {{"positionEncoding", encoding == Encoding::utf_8 ? "utf-8" : "utf-16"},
          {"textDocumentSync", sync},
          {"completionProvider", {{"triggerCharacters", {"(", "="}}}},
          {"hoverProvider", true},
          {"documentSymbolProvider", true},
          {"foldingRangeProvider", true},
          {"definitionProvider", true},
          {"renameProvider", {{"prepareProvider", true}}},
          {"documentFormattingProvider", true},
          {"documentRangeFormattingProvider", true},
          {"codeActionProvider", actions}};
}

ClientFeatures features_in(const Json &params) {
  const Json &document = member(params, "capabilities", "textDocument");
  const Json &diagnostics = member(document, "publishDiagnostics");
  const Json &actions = member(document, "codeAction");
  ClientFeatures features;
  features.nested_symbols =
      is_true(member(document, "documentSymbol", "hierarchicalDocumentSymbolSupport"));
  features.related_places = is_true(member(diagnostics, "relatedInformation"));
  features.code_descriptions = is_true(member(diagnostics, "codeDescriptionSupport"));
  features.code_action_objects = member(actions, "codeActionLiteralSupport").is_object();
  features.resolves_edits = is_true(member(actions, "dataSupport")) &&
                            has_text(member(actions, "resolveSupport", "properties"), "edit");
  return features;
}

}  // namespace

Server::Server(Send send, std::string documents)
    : send_(std::move(send)), documents_(std::move(documents)) {}

int Server::status() const {
  constexpr int without_shutdown = 1;
  return state_ == State::shut_down ? exit_success : without_shutdown;
}

void Server::take_unreadable() { refuse(nullptr, {parse_error, "expected a JSON object"}); }

void Server::take(const Json &message, bool cancelled) {
  const std::optional<std::string> method = text_in(member(message, "method"));
  const Json &id = member(message, "id");
  const bool has_id = message.is_object() && message.contains("id");
  // The server asks nothing, so nothing answers.
  if (!method && has_id && (message.contains("result") || message.contains("error"))) return;
  if (!method || (has_id && !is_id(id)))
    return refuse(is_id(id) ? id : Json(), {invalid_request, "expected a request or notification"});
  if (!has_id) return take_notification(*method, member(message, "params"));
  if (cancelled) return refuse(id, {request_cancelled, "cancelled"});
  take_request(*method, id, member(message, "params"));
}

void Server::take_request(const std::string &method, const Json &id, const Json &params) {
  if (method == "initialize" && state_ == State::started) return reply(id, initialize(params));
  if (state_ == State::started)
    return refuse(id, {server_not_initialized, "expected initialize first"});
  if (state_ == State::shut_down || method == "initialize")
    return refuse(id, {invalid_request, method + " comes too late"});
  if (method == "shutdown") {
    state_ = State::shut_down;
    return reply(id, nullptr);
  }
  answer(method, id, params);
}

void Server::take_notification(const std::string &method, const Json &params) {
  if (method == "exit") ended_ = true;
  if (state_ != State::running) return;
  if (method == "textDocument/didOpen") open(params);
  if (method == "textDocument/didChange") change(params);
  if (method == "textDocument/didClose") close(params);
}

Json Server::initialize(const Json &params) {
  state_ = State::running;
  client_ = features_in(params);
  if (has_text(member(params, "capabilities", "general", "positionEncodings"), "utf-8"))
    encoding_ = Encoding::utf_8;
  return {{"capabilities", capabilities(encoding_)},
          {"serverInfo", {{"name", "kztns"}, {"version", KZOCI_VERSION}}}};
}

void Server::answer(const std::string &method, const Json &id, const Json &params) {
  const Method *known = nullptr;
  for (const Method &row : methods)
    if (row.name == method) known = &row;
  if (known == nullptr) return refuse(id, {method_not_found, "unknown method " + method});
  const bool resolves = known->answer == resolved_action;
  const std::string uri =
      text_in(resolves ? member(params, "data", "uri") : member(params, "textDocument", "uri"))
          .value_or("");
  const auto found = open_.find(uri);
  if (found == open_.end()) return refuse(id, {invalid_params, no_such_document});
  std::optional<Failure> failure;
  Json result = known->answer({params, uri, found->second.document, client_, documents_,
                               [&] { return analyse(uri, found->second); }, failure});
  if (failure)
    refuse(id, *failure);
  else
    reply(id, std::move(result));
}

void Server::open(const Json &params) {
  const Json &document = member(params, "textDocument");
  const std::optional<std::string> uri = text_in(member(document, "uri"));
  std::optional<std::string> text = text_in(member(document, "text"));
  if (!uri || !text) return complain("didOpen without a document");
  open_.insert_or_assign(*uri, OpenDocument{Document(std::move(*text), ++last_version_, encoding_),
                                            integer_in(member(document, "version"))});
}

void Server::change(const Json &params) {
  OpenDocument *const open = document_of(params);
  const Json &changes = member(params, "contentChanges");
  if (open == nullptr) return complain("didChange of a document that is not open");
  if (!changes.is_array()) return complain("didChange: expected an array of contentChanges");
  for (const Json &change : changes)
    if (!apply(open->document, change)) complain("a change that cannot be applied");
  open->document.set_version(++last_version_);
  open->client_version = integer_in(member(params, "textDocument", "version"));
}

bool Server::apply(Document &document, const Json &change) const {
  const std::optional<std::string> text = text_in(member(change, "text"));
  const Json &place = member(change, "range");
  const std::optional<LineRange> range = range_in(place);
  if (!text || (!place.is_null() && !range)) return false;
  if (document.size() + text->size() > largest_max_size) return false;
  if (range)
    document.replace(*range, *text);
  else
    document.set(*text);
  return true;
}

void Server::close(const Json &params) {
  const std::string uri = text_in(member(params, "textDocument", "uri")).value_or("");
  if (open_.erase(uri) > 0) publish(uri, std::nullopt, Json::array());
}

Server::OpenDocument *Server::document_of(const Json &params) {
  const auto found = open_.find(text_in(member(params, "textDocument", "uri")).value_or(""));
  return found == open_.end() ? nullptr : &found->second;
}

const Document *Server::document(const std::string &uri) const {
  const auto found = open_.find(uri);
  return found == open_.end() ? nullptr : &found->second.document;
}

bool Server::is_current(const OpenDocument &open) const {
  return open.analysis != nullptr && open.analysis->version == open.document.version();
}

std::optional<CheckJob> Server::next_job() const {
  std::optional<CheckJob> job;
  for (const auto &[uri, open] : open_) {
    const bool done = is_current(open) && open.analysis->complete;
    if (done || (job && job->version > open.document.version())) continue;
    job = CheckJob{uri, {}, open.document.version(), is_current(open) ? open.analysis : nullptr};
  }
  if (job) job->text = open_.at(job->uri).document.text();
  return job;
}

void Server::finish(const std::string &uri, std::shared_ptr<const Analysis> analysis) {
  const auto found = open_.find(uri);
  if (found == open_.end() || found->second.document.version() != analysis->version) return;
  keep(uri, found->second, std::move(analysis));
}

std::shared_ptr<const Analysis> Server::analyse(const std::string &uri, OpenDocument &open) {
  if (!is_current(open))
    keep(uri, open, run({uri, open.document.text(), open.document.version(), nullptr}));
  return open.analysis;
}

void Server::keep(const std::string &uri, OpenDocument &open,
                  std::shared_ptr<const Analysis> analysis) {
  // A job may end after a request has made the same analysis.
  if (is_current(open) && open.analysis->complete) return;
  open.analysis = std::move(analysis);
  publish(uri, open.client_version,
          diagnostics_of(*open.analysis, uri, open.document, client_, documents_));
}

void Server::publish(const std::string &uri, std::optional<std::int64_t> version,
                     Json diagnostics) {
  Json params = {{"uri", uri}, {"diagnostics", std::move(diagnostics)}};
  if (version) params["version"] = *version;
  notify("textDocument/publishDiagnostics", std::move(params));
}

void Server::reply(const Json &id, Json result) {
  send_({{"jsonrpc", "2.0"}, {"id", id}, {"result", std::move(result)}});
}

void Server::refuse(const Json &id, const Failure &failure) { send_(refusal_of(id, failure)); }

void Server::notify(const char *method, Json params) {
  send_({{"jsonrpc", "2.0"}, {"method", method}, {"params", std::move(params)}});
}

void Server::complain(const std::string &text) {
  constexpr int as_error = 1;
  notify("window/logMessage", {{"type", as_error}, {"message", text}});
}

}  // namespace kztns::lsp
