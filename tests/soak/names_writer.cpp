#include "names_writer.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <thread>
#include <utility>

#include "support/random_input.h"
#include "support/random_mutation.h"

namespace soak {
namespace {

constexpr std::size_t text_count = 64;
constexpr std::size_t name_count = std::size(names) - 1;

// Several refills long, sound in two of three cases, the reserved entry last.
std::string random_file(support::Random &random) {
  support::Tokens tokens;
  const auto append = [&](const support::Entry &entry) {
    tokens.insert(tokens.end(), entry.tokens.begin(), entry.tokens.end());
  };
  for (std::size_t left = random.between(1, 12); left > 0; --left)
    append(support::random_entry(random, names[random.below(name_count)]));
  if (random.one_in(2)) append(support::random_reserved_entry(random, "KZCISYSTEMVARIABLES"));
  if (random.one_in(3))
    for (std::size_t left = random.between(1, 4); left > 0; --left)
      support::mutate_tokens(random, tokens);
  return support::write_tokens(tokens, random, {true, true, false, true, true});
}

// A change that the system refuses would be no change.
void require(bool done, const char *what) {
  if (done) return;
  std::perror(what);
  std::exit(2);
}

class File {
 public:
  File(const std::string &path, int flags) : descriptor_(::open(path.c_str(), flags, 0600)) {
    require(descriptor_ != -1, path.c_str());
  }
  ~File() { ::close(descriptor_); }
  File(const File &) = delete;
  File &operator=(const File &) = delete;

  void write(const char *text, std::size_t length) const {
    require(::write(descriptor_, text, length) == static_cast<ssize_t>(length), "write");
  }
  void cut_at(std::size_t length) const {
    require(::ftruncate(descriptor_, static_cast<off_t>(length)) == 0, "ftruncate");
  }
  std::size_t size() const {
    struct stat state = {};
    require(::fstat(descriptor_, &state) == 0, "fstat");
    return static_cast<std::size_t>(state.st_size);
  }

 private:
  int descriptor_;
};

}  // namespace

NamesWriter::NamesWriter(std::string path, std::uint64_t seed)
    : path_(std::move(path)), random_(seed) {
  for (std::size_t i = 0; i < text_count; ++i) texts_.push_back(random_file(random_));
  replace(texts_[0]);
}

void NamesWriter::change() {
  const std::string &text = random_.pick(texts_);
  const auto kind = static_cast<Change>(random_.below(change_count));
  switch (kind) {
    case rewritten:
      rewrite(text);
      break;
    case truncated:
      truncate();
      break;
    case replaced:
      replace(text);
      break;
    default:
      remove();
  }
  ++counts_[kind];
  std::this_thread::sleep_for(std::chrono::microseconds(random_.below(1000)));
  if (kind == truncated || kind == removed) replace(text);
}

// In pieces, so that readers meet the beginning of one text and the end of another.
void NamesWriter::rewrite(const std::string &text) {
  constexpr std::size_t longest_piece = 2000;
  const File file(path_, O_WRONLY | O_CREAT | O_CLOEXEC);
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t length = std::min(random_.between(1, longest_piece), text.size() - at);
    file.write(text.data() + at, length);
    at += length;
    std::this_thread::yield();
  }
  file.cut_at(text.size());
}

void NamesWriter::truncate() {
  const File file(path_, O_WRONLY | O_CREAT | O_CLOEXEC);
  file.cut_at(random_.below(file.size() + 1));
}

void NamesWriter::replace(const std::string &text) {
  const std::string other = path_ + ".new";
  const File file(other, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC);
  file.write(text.data(), text.size());
  require(std::rename(other.c_str(), path_.c_str()) == 0, "rename");
}

void NamesWriter::remove() { require(::unlink(path_.c_str()) == 0, "unlink"); }

}  // namespace soak
