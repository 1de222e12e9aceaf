// A client of the language server in the same thread: what it sends is taken at once.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "lsp/inbox.h"
#include "lsp/server.h"

namespace support {

using kztns::lsp::Json;

// The text after the edits of an answer, which are sorted and do not overlap.
inline std::string applied(const std::string &text, const Json &edits) {
  kztns::lsp::Document document(text, 1, kztns::lsp::Encoding::utf_16);
  for (auto edit = edits.rbegin(); edit != edits.rend(); ++edit)
    document.replace(*kztns::lsp::range_in((*edit)["range"]), std::string((*edit)["newText"]));
  return document.text();
}

class LspClient {
 public:
  explicit LspClient(std::string documents = "file:///doc/diagnostics.md")
      : server_([this](const Json &message) { sent_.push_back(message); }, std::move(documents)) {}

  // A message's body, as it comes from the stream; taken by deliver.
  void put(const std::string &body) { inbox_.add_body(body); }

  // Has the server take all that waits, and check all texts. Returns what it sent.
  std::vector<Json> deliver() {
    while (!inbox_.is_empty()) take(inbox_.next());
    while (const auto job = server_.next_job()) server_.finish(job->uri, kztns::lsp::run(*job));
    return std::exchange(sent_, {});
  }

  Json request(const std::string &method, const Json &params) {
    put(Json{{"jsonrpc", "2.0"}, {"id", ++id_}, {"method", method}, {"params", params}}.dump());
    for (const Json &message : deliver()) {
      remember(message);
      if (message.contains("id") && message["id"] == id_) return message;
    }
    return {};
  }

  void notify(const std::string &method, const Json &params) {
    put(Json{{"jsonrpc", "2.0"}, {"method", method}, {"params", params}}.dump());
    for (const Json &message : deliver()) remember(message);
  }

  // A session with a client that understands everything.
  void initialize(const char *encoding = "utf-16") {
    request("initialize", {{"capabilities",
                            {{"general", {{"positionEncodings", {encoding}}}},
                             {"textDocument",
                              {{"publishDiagnostics",
                                {{"relatedInformation", true}, {"codeDescriptionSupport", true}}},
                               {"documentSymbol", {{"hierarchicalDocumentSymbolSupport", true}}},
                               {"codeAction",
                                {{"codeActionLiteralSupport", Json::object()},
                                 {"dataSupport", true},
                                 {"resolveSupport", {{"properties", {"edit"}}}}}}}}}}});
    notify("initialized", Json::object());
  }

  void open(const std::string &text, int version = 1) {
    notify("textDocument/didOpen",
           {{"textDocument",
             {{"uri", uri}, {"languageId", "tnsnames"}, {"version", version}, {"text", text}}}});
  }

  Json about(unsigned line, unsigned character) const {
    return {{"textDocument", {{"uri", uri}}},
            {"position", {{"line", line}, {"character", character}}}};
  }

  // The diagnostics that were published last.
  const Json &diagnostics() const { return diagnostics_; }
  const Json &last_notification() const { return last_notification_; }

  kztns::lsp::Server &server() { return server_; }
  kztns::lsp::Inbox &inbox() { return inbox_; }

  static constexpr char uri[] = "file:///names/tnsnames.ora";

 private:
  void take(const kztns::lsp::Received &received) {
    if (received.kind == kztns::lsp::Received::message)
      server_.take(*received.content, received.cancelled);
    else
      server_.take_unreadable();
  }

  void remember(const Json &message) {
    if (message.contains("id")) return;
    last_notification_ = message;
    if (message["method"] == "textDocument/publishDiagnostics")
      diagnostics_ = message["params"]["diagnostics"];
  }

  std::vector<Json> sent_;
  kztns::lsp::Server server_;
  kztns::lsp::Inbox inbox_;
  int id_ = 0;
  Json diagnostics_;
  Json last_notification_;
};

}  // namespace support
