#include "page/page.h"

#include <nlohmann/json.hpp>

#include "page/views.h"

namespace kztns {

using lsp::member;

struct Page::Method {
  const char *name;
  Handler handler;
};

Page::Page() : server_([this](const Json &message) { add(lsp::text_of(message)); }, "") {}

Page::Handler Page::handler_of(const std::string &name) {
  static constexpr Method methods[] = {{"kztns/check", &Page::check},
                                       {"kztns/entries", &Page::entries},
                                       {"kztns/entry", &Page::entry},
                                       {"kztns/format", &Page::format},
                                       {"kztns/why", &Page::why}};
  for (const Method &method : methods)
    if (method.name == name) return method.handler;
  return nullptr;
}

std::string Page::answer(const std::string &message) {
  answers_.clear();
  const Json content = Json::parse(message, nullptr, false);
  const Handler handler = handler_of(lsp::text_in(member(content, "method")).value_or(""));
  if (content.is_discarded()) {
    server_.take_unreadable();
  } else if (handler != nullptr) {
    const std::string result = (this->*handler)(member(content, "params"));
    add("{\"id\":" + lsp::text_of(member(content, "id")) +
        ",\"jsonrpc\":\"2.0\",\"result\":" + result + "}");
  } else {
    server_.take(content);
  }
  return "[" + answers_ + "]";
}

void Page::add(const std::string &message) {
  if (!answers_.empty()) answers_ += ',';
  answers_ += message;
}

std::string Page::check(const Json &) {
  const std::optional<lsp::CheckJob> job = server_.next_job();
  if (!job) return "null";
  checked_ = lsp::run(*job);
  checked_uri_ = job->uri;
  server_.finish(job->uri, checked_);
  return checked_json(*checked_, job->text);
}

const std::string *Page::checked_text() const {
  const lsp::Document *const document = server_.document(checked_uri_);
  const bool is_same = document != nullptr && document->version() == checked_->version;
  return is_same ? &document->text() : nullptr;
}

std::string Page::entries(const Json &) {
  const std::string *const text = checked_text();
  return text == nullptr ? "null" : entries_json(*checked_, *text);
}

std::string Page::entry(const Json &params) {
  const std::optional<std::int64_t> index = lsp::integer_in(member(params, "index"));
  const std::string *const text = checked_text();
  if (text == nullptr || !index || *index < 0 ||
      static_cast<std::uint64_t>(*index) >= checked_->entries.size())
    return "null";
  return entry_json(checked_->entries[static_cast<std::size_t>(*index)], *text);
}

const lsp::Document *Page::document_in(const Json &params) const {
  return server_.document(lsp::text_in(member(params, "textDocument", "uri")).value_or(""));
}

std::string Page::format(const Json &params) {
  const lsp::Document *const document = document_in(params);
  return document == nullptr ? "null" : format_json(*document);
}

std::string Page::why(const Json &params) {
  const std::optional<std::string> identifier = lsp::text_in(member(params, "identifier"));
  const lsp::Document *const document = document_in(params);
  if (!identifier || document == nullptr) return "null";
  return why_json(*identifier, document->text());
}

}  // namespace kztns
