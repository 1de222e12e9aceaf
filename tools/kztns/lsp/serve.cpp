#include "lsp/serve.h"

#include <unistd.h>

#include <cerrno>
#include <condition_variable>
#include <cstring>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

#include "io/descriptor.h"
#include "io/exit_status.h"
#include "io/output.h"
#include "lsp/framing.h"
#include "lsp/inbox.h"
#include "lsp/server.h"

namespace kztns::lsp {
namespace {

// Reads messages until none can follow.
void read_messages(int input, Inbox &inbox) {
  constexpr unsigned piece = 64 << 10;
  std::vector<char> buffer(piece);
  MessageReader reader;
  for (;;) {
    const ssize_t count = read(input, buffer.data(), piece);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return inbox.add({Received::end_of_input});
    reader.add(std::string_view(buffer.data(), static_cast<std::size_t>(count)));
    while (const std::optional<std::string> body = reader.next())
      if (!inbox.add_body(*body)) return;
    if (reader.is_broken()) return inbox.add({Received::broken_header});
  }
}

// Runs one job after the other in a thread of its own.
class Checker {
 public:
  explicit Checker(Inbox &inbox) : inbox_(inbox), thread_([this] { run(); }) {}
  ~Checker() {
    {
      const std::lock_guard lock(mutex_);
      ends_ = true;
    }
    given_.notify_one();
    thread_.join();
  }
  Checker(const Checker &) = delete;
  Checker &operator=(const Checker &) = delete;

  void give(CheckJob job) {
    {
      const std::lock_guard lock(mutex_);
      job_ = std::move(job);
    }
    given_.notify_one();
  }

 private:
  void run() {
    while (const std::optional<CheckJob> job = wait_for_job()) {
      std::shared_ptr<const Analysis> analysis = lsp::run(*job);
      inbox_.add({Received::checked, nullptr, false, job->uri, std::move(analysis)});
    }
  }

  std::optional<CheckJob> wait_for_job() {
    std::unique_lock lock(mutex_);
    given_.wait(lock, [this] { return job_ || ends_; });
    return ends_ ? std::nullopt : std::exchange(job_, std::nullopt);
  }

  Inbox &inbox_;
  std::mutex mutex_;
  std::condition_variable given_;
  std::optional<CheckJob> job_;
  bool ends_ = false;
  std::thread thread_;
};

class Session {
 public:
  Session(Inbox &inbox, int output, const std::string &documents)
      : inbox_(inbox),
        output_(dup(output)),
        server_([this](const Json &message) { send(message); }, documents),
        checker_(inbox) {}

  int run() {
    while (!status_) {
      take(inbox_.next());
      // Texts are checked when nothing waits any more that might change them.
      if (!checking_ && inbox_.is_empty() && !status_) begin_check();
    }
    return *status_;
  }

 private:
  void take(const Received &received) {
    switch (received.kind) {
      case Received::message:
        server_.take(*received.content, received.cancelled);
        if (server_.has_ended()) end(server_.status());
        break;
      case Received::unreadable:
        server_.take_unreadable();
        break;
      case Received::checked:
        checking_ = false;
        server_.finish(received.uri, received.analysis);
        break;
      case Received::end_of_input:
        end(server_.status());
        break;
      case Received::broken_header:
        complain("standard input", "expected a header of the language server protocol");
        end(exit_malformed);
        break;
    }
  }

  void begin_check() {
    std::optional<CheckJob> job = server_.next_job();
    if (!job) return;
    checking_ = true;
    checker_.give(std::move(*job));
  }

  void send(const Json &message) {
    if (status_ || output_.write_all(framed(text_of(message)))) return;
    complain("standard output", std::strerror(errno));
    end(exit_output);
  }

  // The first reason counts.
  void end(int status) {
    if (!status_) status_ = status;
  }

  Inbox &inbox_;
  Descriptor output_;
  std::optional<int> status_;
  bool checking_ = false;
  Server server_;
  Checker checker_;
};

}  // namespace

int serve(int input, int output, const std::string &documents) {
  const auto inbox = std::make_shared<Inbox>();
  std::thread reader([inbox, input] { read_messages(input, *inbox); });
  const int status = Session(*inbox, output, documents).run();
  // A client that does not listen any more may not say exit either.
  if (status == exit_output)
    reader.detach();
  else
    reader.join();
  return status;
}

}  // namespace kztns::lsp
