#include "io/replace_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "io/descriptor.h"
#include "io/read_file.h"

namespace kztns {
namespace {

std::string because(const char *what) { return std::string(what) + ": " + std::strerror(errno); }

std::string folder_of(const std::string &path) {
  const std::size_t slash = path.rfind('/');
  return slash == std::string::npos ? "." : slash == 0 ? "/" : path.substr(0, slash);
}

// The file itself, not a symbolic link to it, also where the link leads to no file yet.
std::string real_path(std::string path) {
  // As many as the system follows.
  constexpr int most_links = 40;
  for (int links = 0; links < most_links; ++links) {
    std::error_code error;
    const std::filesystem::path target = std::filesystem::read_symlink(path, error);
    if (error) return path;
    path = std::filesystem::path(folder_of(path)) / target;
  }
  return path;
}

// Whether a file system says that it has no second names for a file.
bool has_no_links(int error) {
  return error == EPERM || error == EOPNOTSUPP || error == ENOSYS || error == EMLINK;
}

constexpr char no_folder[] = "its folder is not there";

// One file on its way to its new content.
class Replacement {
 public:
  Replacement(const std::string &path, Backup backup)
      : path_(real_path(path)), folder_(folder_of(path_)), backup_(backup) {}

  ~Replacement() {
    if (!beside_.empty()) unlink(beside_.c_str());
    if (!old_.empty()) unlink(old_.c_str());
  }
  Replacement(const Replacement &) = delete;
  Replacement &operator=(const Replacement &) = delete;

  std::optional<std::string> run(std::string_view text) {
    exists_ = stat(path_.c_str(), &status_) == 0;
    if (!exists_ && errno != ENOENT) return because("cannot be read");
    if (exists_ && !S_ISREG(status_.st_mode)) return write_into(text);
    if (exists_ && !may_be_written()) return because("cannot be written");
    if (auto fault = write_beside(text, beside_)) return fault;
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

  // A name beside the file that is free, after make(name) has made it; empty where none can
  // be made.
  template <class Make>
  std::string free_name(const Make &make) const {
    const std::string stem = folder_ + "/.kztns-" + std::to_string(getpid()) + "-";
    constexpr int most_tries = 100;
    for (int i = 0; i < most_tries; ++i) {
      std::string name = stem + std::to_string(i);
      if (make(name)) return name;
      if (errno != EEXIST) break;
    }
    return {};
  }

  // Makes a file beside it with a content, and the mode and owner that it has.
  std::optional<std::string> write_beside(std::string_view text, std::string &name) {
    // Only the owner may read the file before it has its mode.
    const mode_t mode = exists_ ? S_IRUSR | S_IWUSR : 0666;
    int number = -1;
    name = free_name([&](const std::string &path) {
      number = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
      return number >= 0;
    });
    const Descriptor file(number);
    if (name.empty()) return because(errno == ENOENT ? no_folder : "no file can be made beside it");
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

  // The old content has a name of its own beside the file until the new one has taken the
  // file's name; only then it takes the backup's, which may be that of an older one.
  std::optional<std::string> swap_with_backup() {
    if (auto fault = keep_old()) return fault;
    std::optional<std::string> fault = swap();
    if (!fault && rename(old_.c_str(), (path_ + "~").c_str()) != 0)
      fault = because("its backup cannot be made");
    // Of two names of one file, rename leaves both; the destructor removes what is left.
    if (fault && beside_.empty() && rename(old_.c_str(), path_.c_str()) != 0) old_.clear();
    if (!fault) old_.clear();
    return fault;
  }

  // Gives the old content a second name, or a copy where the file system has no such names.
  std::optional<std::string> keep_old() {
    old_ = free_name(
        [this](const std::string &name) { return link(path_.c_str(), name.c_str()) == 0; });
    if (!old_.empty()) return std::nullopt;
    if (!has_no_links(errno)) return because("its backup cannot be made");
    ReadFault fault;
    const auto content = read_file(path_, largest_max_size, fault);
    return content ? write_beside(*content, old_) : fault.text;
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
  std::string old_;     // the same of the old one
};

}  // namespace

std::optional<std::string> replace_file(const std::string &path, std::string_view text,
                                        Backup backup) {
  return Replacement(path, backup).run(text);
}

}  // namespace kztns
