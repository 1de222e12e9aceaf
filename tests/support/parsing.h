// Parse states over texts, names files that last as long as a test, and the
// environment that names them.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kzoci/oci_tnsname.h"
#include "recording_platform.h"
#include "system_calls.h"

namespace support {

using Lines = std::vector<std::string>;

inline Lines operator+(Lines left, const Lines &right) {
  left.insert(left.end(), right.begin(), right.end());
  return left;
}

// A string of string_view literals that may hold zero bytes.
inline std::string bytes(std::string_view text) { return std::string(text); }

inline std::string text_of(const char *text, ub4 length) { return std::string(text, length); }

// A parse state in descriptor mode over an exact-size copy of the text, so that
// a read after its end shows under the address sanitizer.
class DescriptorState {
 public:
  explicit DescriptorState(std::string_view text) : copy_(new char[text.size()]) {
    std::memcpy(copy_.get(), text.data(), text.size());
    std::memset(&params, 0, sizeof params);
    params.mode = TNS_MODE_DESCRIPTION;
    params.description = copy_.get();
    params.description_len = static_cast<int>(text.size());
  }

  std::string key() const { return {params.tns_key, params.tns_key_len}; }

  KZCITnsParseParams params;

 private:
  std::unique_ptr<char[]> copy_;
};

// A parse state in file mode over a temporary file with this text.
class FileState {
 public:
  explicit FileState(std::string_view text) : file_(temporary_file()) {
    std::fwrite(text.data(), 1, text.size(), file_);
    std::rewind(file_);
    std::memset(&params, 0, sizeof params);
    params.mode = TNS_MODE_FILE;
    params.tns_file = file_;
  }
  ~FileState() { std::fclose(file_); }
  FileState(const FileState &) = delete;
  FileState &operator=(const FileState &) = delete;

  std::string key() const { return {params.tns_key, params.tns_key_len}; }

  KZCITnsParseParams params;

 private:
  std::FILE *file_;
};

// A folder that is removed, with all that is in it, when the test is over.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "kzoci_test_XXXXXX").string();
    path_ = mkdtemp(name.data());
  }
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TemporaryFolder(const TemporaryFolder &) = delete;
  TemporaryFolder &operator=(const TemporaryFolder &) = delete;

  const std::string &path() const { return path_; }

  // Writes a file below the folder (making folders as needed); gives its path.
  std::string write(const std::string &name, std::string_view text) const {
    const std::filesystem::path file = std::filesystem::path(path_) / name;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << text;
    return file.string();
  }

 private:
  std::string path_;
};

// Sets (or, with nullopt, removes) environment variables until it goes out of
// scope. Starts with none of the module's variables set.
class Environment {
 public:
  Environment() {
    for (const char *name : names) {
      const char *value = std::getenv(name);
      saved_.emplace_back(value ? std::optional<std::string>(value) : std::nullopt);
      unsetenv(name);
    }
  }
  ~Environment() {
    for (std::size_t i = 0; i < saved_.size(); ++i) put(names[i], saved_[i]);
  }
  Environment(const Environment &) = delete;
  Environment &operator=(const Environment &) = delete;

  void set(const char *name, const std::string &value) { put(name, value); }
  void unset(const char *name) { put(name, std::nullopt); }

 private:
  static constexpr const char *names[] = {"KZCI_TNS_FILE", "TNS_ADMIN", "ORACLE_HOME",
                                          "KZCI_TNS_DISPLAY"};
  static void put(const char *name, const std::optional<std::string> &value) {
    if (value)
      setenv(name, value->c_str(), 1);
    else
      unsetenv(name);
  }
  std::vector<std::optional<std::string>> saved_;
};

// The outcome of KZCITnsBuild.
struct Outcome {
  sword status;
  boolean find;
  bool operator==(const Outcome &other) const {
    return status == other.status && find == other.find;
  }
};

inline void PrintTo(const Outcome &outcome, std::ostream *out) {
  *out << "{status " << outcome.status << ", find " << outcome.find << "}";
}

// KZCITnsBuild over a terminated copy of the identifier; *find starts as 7, so
// that a value left untouched shows.
inline Outcome build(KZCITns &tns, const std::string &identifier) {
  Outcome outcome{0, 7};
  outcome.status = KZCITnsBuild(&tns, reinterpret_cast<const OraText *>(identifier.c_str()),
                                static_cast<ub4>(identifier.size()), &outcome.find);
  return outcome;
}

// What KZCITnsDisplay prints, taken from the process's standard output.
std::string display_text(KZCITns &tns, sword *status = nullptr);

// The tree with every value that is not its default, a record a line.
std::string full_tree(const KZCITns &tns);

}  // namespace support
