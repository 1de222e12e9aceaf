#include "io/replace_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "io/descriptor.h"

namespace kztns {
namespace {

std::string because(const char *what) { return std::string(what) + ": " + std::strerror(errno); }

// The file itself, not a symbolic link to it; the path as it is where there is none yet.
std::string real_path(const std::string &path) {
  char *const found = realpath(path.c_str(), nullptr);
  if (found == nullptr) return path;
  std::string real = found;
  std::free(found);
  return real;
}

std::string folder_of(const std::string &path) {
  const std::size_t slash = path.rfind('/');
  return slash == std::string::npos ? "." : slash == 0 ? "/" : path.substr(0, slash);
}

// One file on its way to its new content.
class Replacement {
 public:
  Replacement(const std::string &path, Backup backup)
      : path_(real_path(path)), folder_(folder_of(path_)), backup_(backup) {}

  ~Replacement() {
    if (!beside_.empty()) unlink(beside_.c_str());
  }
  Replacement(const Replacement &) = delete;
  Replacement &operator=(const Replacement &) = delete;

  std::optional<std::string> run(std::string_view text) {
    exists_ = stat(path_.c_str(), &status_) == 0;
    if (!exists_ && errno != ENOENT) return because("cannot be read");
    if (exists_ && !S_ISREG(status_.st_mode)) return write_into(text);
    if (exists_ && !may_be_written()) return because("cannot be written");
    if (auto fault = write_beside(text)) return fault;
    return exists_ && backup_ == Backup::tilde ? swap_with_backup() : swap();
  }

 private:
  std::optional<std::string> write_into(std::string_view text) const {
    const Descriptor file(open(path_.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY));
    if (file.number() < 0 || !file.write_all(text)) return because("cannot be written");
    return std::nullopt;
  }

  // A file that its owner protects stays, although its folder would let it be replaced.
  bool may_be_written() const {
    return Descriptor(open(path_.c_str(), O_WRONLY | O_CLOEXEC)).number() >= 0;
  }

  // Nobody but the owner may read the new file before it has its mode.
  int make_beside() {
    const std::string stem = folder_ + "/.kztns-" + std::to_string(getpid()) + "-";
    const mode_t mode = exists_ ? S_IRUSR | S_IWUSR : 0666;
    constexpr int most_tries = 100;
    int number = -1;
    for (int i = 0; i < most_tries; ++i) {
      beside_ = stem + std::to_string(i);
      number = open(beside_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
      if (number >= 0 || errno != EEXIST) break;
    }
    if (number < 0) beside_.clear();
    return number;
  }

  std::optional<std::string> write_beside(std::string_view text) {
    const Descriptor file(make_beside());
    if (file.number() < 0) return because("no file can be made beside it");
    if (!file.write_all(text)) return because("cannot be written");
    if (exists_ && !take_over_rights(file)) return because("its owner and mode cannot be kept");
    if (fsync(file.number()) != 0) return because("cannot be written");
    return std::nullopt;
  }

  // The owner first: changing it takes away bits of the mode.
  bool take_over_rights(const Descriptor &file) const {
    struct stat made = {};
    if (fstat(file.number(), &made) != 0) return false;
    const bool same_owner = made.st_uid == status_.st_uid && made.st_gid == status_.st_gid;
    if (!same_owner && fchown(file.number(), status_.st_uid, status_.st_gid) != 0) return false;
    return fchmod(file.number(), status_.st_mode & 07777) == 0;
  }

  std::optional<std::string> swap() {
    if (rename(beside_.c_str(), path_.c_str()) != 0) return because("cannot be replaced");
    beside_.clear();
    return sync_folder() ? std::nullopt : std::optional(because("its folder cannot be written"));
  }

  // The old content stands under both names until the new one takes one of them.
  std::optional<std::string> swap_with_backup() {
    const std::string kept = path_ + "~";
    if (unlink(kept.c_str()) != 0 && errno != ENOENT) return because("its backup cannot be made");
    if (link(path_.c_str(), kept.c_str()) != 0) return because("its backup cannot be made");
    std::optional<std::string> fault = swap();
    if (!fault) return std::nullopt;
    // Of two names of one file, rename leaves both.
    if (rename(kept.c_str(), path_.c_str()) == 0) unlink(kept.c_str());
    return fault;
  }

  bool sync_folder() const {
    const Descriptor folder(open(folder_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return folder.number() >= 0 && fsync(folder.number()) == 0;
  }

  std::string path_;
  std::string folder_;
  Backup backup_;
  bool exists_ = false;
  struct stat status_ = {};
  std::string beside_;  // the new file, as long as it has a name of its own
};

}  // namespace

std::optional<std::string> replace_file(const std::string &path, std::string_view text,
                                        Backup backup) {
  return Replacement(path, backup).run(text);
}

}  // namespace kztns
