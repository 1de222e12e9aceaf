// What waits for the server: messages in the order in which they came, and what its checks
// found. Threads add to it, one takes from it.
#pragma once

#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <string>

#include "lsp/analysis.h"
#include "lsp/json.h"

namespace kztns::lsp {

struct Received {
  enum Kind { message, unreadable, checked, end_of_input, broken_header };
  Kind kind;
  std::shared_ptr<const Json> content = nullptr;  // of a message
  bool cancelled = false;
  std::string uri = {};  // of what was checked
  std::shared_ptr<const Analysis> analysis = nullptr;
};

class Inbox {
 public:
  // Adds a message's body. One that cancels a request which waits here marks that. Returns
  // whether another message may follow: none does after exit.
  bool add_body(const std::string &body);
  void add(Received received);

  // The next one; waits for it.
  Received next();
  bool is_empty() const;

 private:
  void cancel(const Json &id);

  mutable std::mutex mutex_;
  std::condition_variable added_;
  std::deque<Received> waiting_;
};

}  // namespace kztns::lsp
