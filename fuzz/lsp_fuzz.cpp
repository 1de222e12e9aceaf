// The language server with a stream of any bytes.
//
//   input := line...      with  line = message LF | "%" bytes LF
//
// A line is a message's body, which gets its header; after "%" it is what comes without one.
// "\n" within a body is written as JSON writes it, so that corpora can be read.
#include <algorithm>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "fuzz/support/check.h"
#include "fuzz/support/target.h"
#include "lsp/framing.h"
#include "lsp/inbox.h"
#include "lsp/server.h"

namespace {

using kztns::lsp::Inbox;
using kztns::lsp::Json;
using kztns::lsp::Received;

std::string stream_of(std::string_view input) {
  std::string stream;
  while (!input.empty()) {
    const std::string_view line = input.substr(0, input.find('\n'));
    input.remove_prefix(std::min(line.size() + 1, input.size()));
    stream += line.starts_with('%') ? std::string(line.substr(1)) : kztns::lsp::framed(line);
  }
  return stream;
}

// Counts answers; each request gets one.
class Session {
 public:
  void run(const std::string &stream) {
    kztns::lsp::MessageReader reader;
    reader.add(stream);
    bool more = true;
    while (more) {
      const std::optional<std::string> body = reader.next();
      if (!body) break;
      more = inbox_.add_body(*body);
      // Some messages wait for others, which may cancel them.
      if (++messages_ % 3 == 0) deliver();
    }
    deliver();
    fuzz::check(asked_ == answered_, "%zu requests, %zu answers", asked_, answered_);
  }

 private:
  void deliver() {
    while (!inbox_.is_empty() && !server_.has_ended()) take(inbox_.next());
    while (const auto job = server_.next_job()) server_.finish(job->uri, kztns::lsp::run(*job));
  }

  void take(const Received &received) {
    if (received.kind == Received::unreadable) {
      ++asked_;
      return server_.take_unreadable();
    }
    const Json &message = *received.content;
    const bool is_answer = message.is_object() && message.contains("id") &&
                           (!message.contains("method") || !message["method"].is_string()) &&
                           (message.contains("result") || message.contains("error"));
    const bool is_notification = message.is_object() && !message.contains("id") &&
                                 message.contains("method") && message["method"].is_string();
    asked_ += is_answer || is_notification ? 0 : 1;
    server_.take(message, received.cancelled);
  }

  void send(const Json &message) {
    const std::string text = kztns::lsp::text_of(message);
    fuzz::check(!Json::parse(text, nullptr, false).is_discarded(), "an answer is no JSON");
    answered_ += message.contains("id") ? 1 : 0;
  }

  Inbox inbox_;
  kztns::lsp::Server server_{[this](const Json &message) { send(message); }, "file:///doc.md"};
  std::size_t messages_ = 0;
  std::size_t asked_ = 0;
  std::size_t answered_ = 0;
};

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
  Session().run(stream_of({reinterpret_cast<const char *>(data), size}));
  return 0;
}
