#include "lsp/inbox.h"

#include <nlohmann/json.hpp>

namespace kztns::lsp {

bool Inbox::add_body(const std::string &body) {
  auto content = std::make_shared<const Json>(Json::parse(body, nullptr, false));
  if (content->is_discarded()) {
    add({Received::unreadable});
    return true;
  }
  const std::optional<std::string> method = text_in(member(*content, "method"));
  if (method == "$/cancelRequest") {
    cancel(member(*content, "params", "id"));
    return true;
  }
  const bool more = method != "exit" || content->contains("id");
  add({Received::message, std::move(content)});
  return more;
}

void Inbox::add(Received received) {
  {
    const std::lock_guard lock(mutex_);
    waiting_.push_back(std::move(received));
  }
  added_.notify_one();
}

void Inbox::cancel(const Json &id) {
  const std::lock_guard lock(mutex_);
  for (Received &received : waiting_)
    if (received.content != nullptr && !id.is_null() && member(*received.content, "id") == id)
      received.cancelled = true;
}

Received Inbox::next() {
  std::unique_lock lock(mutex_);
  added_.wait(lock, [this] { return !waiting_.empty(); });
  Received received = std::move(waiting_.front());
  waiting_.pop_front();
  return received;
}

bool Inbox::is_empty() const {
  const std::lock_guard lock(mutex_);
  return waiting_.empty();
}

}  // namespace kztns::lsp
