#include "page/page.h"

#include <utility>

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
  static constexpr Method methods[] = {
      {"kztns/check", &Page::check}, {"kztns/entries", &Page::entries},
      {"kztns/entry", &Page::entry}, {"kztns/format", &Page::format},
      {"kztns/fix", &Page::fix},     {"kztns/why", &Page::why},
      {"kztns/words", &Page::words}};
  for (const Method &method : methods)
    if (method.name == name) return method.handler;
  return nullptr;
}

std::string Page::answer(const std::string &message) {
  answers_.clear();
  const Json content = Json::parse(message, nullptr, false);
  const Json &id = member(content, "id");
  const Handler handler = handler_of(lsp::text_in(member(content, "method")).value_or(""));
  if (content.is_discarded())
    server_.take_unreadable();
  else if (handler != nullptr && lsp::is_id(id))
    reply(id, (this->*handler)(member(content, "params")));
  else
    server_.take(content);
  return "[" + answers_ + "]";
}

// Results are texts already: to parse them again would take longer than to make them.
void Page::reply(const Json &id, const std::string &result) {
  if (const std::optional<lsp::Failure> failure = std::exchange(failure_, std::nullopt))
    return add(lsp::text_of(lsp::refusal_of(id, *failure)));
  add("{\"id\":" + lsp::text_of(id) + ",\"jsonrpc\":\"2.0\",\"result\":" + result + "}");
}

void Page::add(const std::string &message) {
  if (!answers_.empty()) answers_ += ',';
  answers_ += message;
}

std::string Page::refuse(std::string message) {
  failure_ = {lsp::invalid_params, std::move(message)};
  return {};
}

std::string Page::check(const Json &) {
  const std::optional<lsp::CheckJob> job = server_.next_job();
  if (!job) return "null";
  checked_ = lsp::run(*job);
  checked_uri_ = job->uri;
  server_.finish(job->uri, checked_);
  return checked_json(*checked_, *server_.document(job->uri));
}

const lsp::Document *Page::checked_document() const {
  const lsp::Document *const document = server_.document(checked_uri_);
  const bool is_same = document != nullptr && document->version() == checked_->version;
  return is_same ? document : nullptr;
}

std::string Page::entries(const Json &) {
  const lsp::Document *const document = checked_document();
  return document == nullptr ? "null" : entries_json(*checked_, *document);
}

std::string Page::entry(const Json &params) {
  const std::optional<std::int64_t> index = lsp::integer_in(member(params, "index"));
  if (!index || *index < 0) return refuse("expected the index of an entry");
  const lsp::Document *const document = checked_document();
  if (document == nullptr || static_cast<std::uint64_t>(*index) >= checked_->entries.size())
    return "null";
  return entry_json(checked_->entries[static_cast<std::size_t>(*index)], document->text());
}

const lsp::Document *Page::document_in(const Json &params) const {
  return server_.document(lsp::text_in(member(params, "textDocument", "uri")).value_or(""));
}

std::string Page::view_of_shown(const Json &params,
                                std::string (*view)(const lsp::Document &document, Span shown)) {
  const lsp::Document *const document = document_in(params);
  const std::optional<lsp::LineRange> shown = lsp::range_in(member(params, "shown"));
  if (document == nullptr) return refuse(lsp::no_such_document);
  if (!shown) return refuse("expected a range");
  return view(*document, document->span(*shown));
}

std::string Page::format(const Json &params) { return view_of_shown(params, format_json); }

std::string Page::fix(const Json &params) { return view_of_shown(params, fix_json); }

std::string Page::why(const Json &params) {
  const std::optional<std::string> identifier = lsp::text_in(member(params, "identifier"));
  const lsp::Document *const document = document_in(params);
  if (document == nullptr) return refuse(lsp::no_such_document);
  if (!identifier) return refuse("expected an identifier");
  return why_json(*identifier, document->text());
}

std::string Page::words(const Json &) { return words_json(); }

}  // namespace kztns
