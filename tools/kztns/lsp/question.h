// What a request is about, and what is answered.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "lsp/analysis.h"
#include "lsp/document.h"
#include "lsp/json.h"

namespace kztns::lsp {

enum ErrorCode {
  parse_error = -32700,
  invalid_request = -32600,
  method_not_found = -32601,
  invalid_params = -32602,
  server_not_initialized = -32002,
  request_failed = -32803,
  request_cancelled = -32800
};

struct Failure {
  ErrorCode code;
  std::string message;
};

constexpr char no_such_document[] = "no such document is open";

// The answer to a request that is refused.
Json refusal_of(const Json &id, const Failure &failure);

// What the client understands.
struct ClientFeatures {
  bool nested_symbols = false;
  bool resolves_edits = false;  // of code actions, when they are chosen
  bool related_places = false;  // of diagnostics
  bool code_descriptions = false;
  bool code_action_objects = false;
};

struct Question {
  const Json &params;
  const std::string &uri;
  const Document &document;
  const ClientFeatures &client;
  std::string documents;  // URI of the rules' texts; empty for none
  std::function<std::shared_ptr<const Analysis>()> analyse;  // of the document's text
  std::optional<Failure> &failure;                           // for an answer that is none

  Json refuse(ErrorCode code, std::string message) const;
};

// A place in a request's parameters; absent for one that is none.
std::optional<LinePosition> position_in(const Json &value);
std::optional<LineRange> range_in(const Json &value);

Json json_of(LinePosition position);
Json json_of(LineRange range);
Json location_of(const std::string &uri, LineRange range);

// Edits of a document as the protocol has them, with the document's line ends.
Json json_of(const std::vector<Edit> &edits, const Document &document);
// The same as a change of the workspace.
Json workspace_edit(const std::string &uri, Json edits);

Json markdown(const std::string &text);

}  // namespace kztns::lsp
