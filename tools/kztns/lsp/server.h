// A language server, without its streams: takes messages one after the other, and sends
// what it has to say.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "lsp/analysis.h"
#include "lsp/document.h"
#include "lsp/json.h"
#include "lsp/question.h"

namespace kztns::lsp {

class Server {
 public:
  using Send = std::function<void(const Json &)>;

  // The documents are those of the rules: a URI, empty for none.
  Server(Send send, std::string documents);

  // A message of the client. It may have been cancelled since it was sent.
  void take(const Json &message, bool cancelled = false);
  // A message that is no JSON.
  void take_unreadable();

  // Whether the client said exit, and the exit status that goes with it.
  bool has_ended() const { return ended_; }
  int status() const;

  // A text that is open; null for none of that name.
  const Document *document(const std::string &uri) const;

  // A text whose findings are not known yet, the one that changed last; absent for none.
  std::optional<CheckJob> next_job() const;
  // What came of a job. It means nothing any more if the document has changed since.
  void finish(const std::string &uri, std::shared_ptr<const Analysis> analysis);

 private:
  enum class State { started, running, shut_down };

  struct OpenDocument {
    Document document;
    std::optional<std::int64_t> client_version;
    std::shared_ptr<const Analysis> analysis = nullptr;
  };

  void take_request(const std::string &method, const Json &id, const Json &params);
  void take_notification(const std::string &method, const Json &params);
  Json initialize(const Json &params);
  void answer(const std::string &method, const Json &id, const Json &params);
  void open(const Json &params);
  void change(const Json &params);
  void close(const Json &params);
  bool apply(Document &document, const Json &change) const;

  OpenDocument *document_of(const Json &params);
  bool is_current(const OpenDocument &open) const;
  std::shared_ptr<const Analysis> analyse(const std::string &uri, OpenDocument &open);
  void keep(const std::string &uri, OpenDocument &open, std::shared_ptr<const Analysis> analysis);
  void publish(const std::string &uri, std::optional<std::int64_t> version, Json diagnostics);

  void reply(const Json &id, Json result);
  void refuse(const Json &id, const Failure &failure);
  void notify(const char *method, Json params);
  void complain(const std::string &text);

  Send send_;
  std::string documents_;
  State state_ = State::started;
  bool ended_ = false;
  Encoding encoding_ = Encoding::utf_16;
  ClientFeatures client_;
  std::int64_t last_version_ = 0;  // of any document's text
  std::map<std::string, OpenDocument> open_;
};

}  // namespace kztns::lsp
