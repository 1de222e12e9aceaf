/*
 * oci_tnsname.hpp: the interface of oci_tnsname.h for C++17 and later.
 *
 *   kzoci::Tns tns;
 *   if (const kzoci::Result sales = tns.look_up("sales"))
 *     for (const KZCIDescription &des : kzoci::descriptions(*sales.service))
 *       for (const KZCIAddressList &list : kzoci::address_lists(des))
 *         for (const KZCIAddress &address : kzoci::addresses(list))
 *           connect(kzoci::host(address), kzoci::port(address));
 *
 * What holds for everything here:
 *
 * - It is made of the C functions alone and adds nothing to link. The records are
 *   those of the C interface, so both may be used side by side; strategies and
 *   numbers are read from the records' fields.
 * - Nothing is allocated but what the C functions allocate; nothing is thrown.
 *   Exceptions and RTTI may be turned off.
 * - Ownership: a Tns owns its tree. Ranges, references and texts point into that
 *   tree and are good until it is cleared. Moving a Tns leaves them good: no record
 *   points at its container.
 * - Status, threads, letter case and log: as in oci_tnsname.h. What is written here
 *   logs nothing itself.
 */
#ifndef KZOCI_OCI_TNSNAME_HPP
#define KZOCI_OCI_TNSNAME_HPP

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>

#include "oci_tnsname.h"
#include "oci_tnsname_records.hpp"

namespace kzoci {

/* ======================================================================
 * Reading a built service
 *
 * Both look at the service's first description only, and hold a copy of what they
 * read: they outlive the tree. The texts of a copy are the copy's own.
 * ====================================================================== */

/*
 * What a session is opened with, as KZCITnsServiceExtraInfoGet hands it out.
 */
class SessionData {
 public:
  /*
   * service  a built service
   *
   * status() is 0; -1 without description or connect data. All texts are empty and
   * the mode is 0 then.
   */
  explicit SessionData(const KZCITnsService &service) noexcept
      : status_(KZCITnsServiceExtraInfoGet(const_cast<KZCITnsService *>(&service), extra_info_,
                                           &extra_info_len_, &kz_mode_, session_variable_,
                                           &session_variable_len_)) {}

  sword status() const noexcept { return status_; }
  explicit operator bool() const noexcept { return status_ == 0; }

  /* The user's extra information; empty when there is none. */
  std::string_view extra_info() const noexcept {
    return text(extra_info_, static_cast<ub4>(extra_info_len_));
  }
  /* The mode, which goes with extra information: 0 where that is empty. */
  sb4 kz_mode() const noexcept { return kz_mode_; }
  /* The session variables; empty when there are none. */
  std::string_view session_variable() const noexcept {
    return text(session_variable_, static_cast<ub4>(session_variable_len_));
  }

 private:
  char extra_info_[KZCI_EXTRA_INFO_SIZE] = {};
  char session_variable_[KZCI_SESSION_VARIABLE_SIZE] = {};
  sb4 extra_info_len_ = 0;
  sb4 kz_mode_ = 0;
  sb4 session_variable_len_ = 0;
  sword status_; /* last: its initialiser fills the others */
};

/*
 * The link string of the service's first address, as KZCITnsServiceDblinkGet writes it.
 */
class Dblink {
 public:
  /*
   * service  a built service
   *
   * status() is 0; -1 without description, address list, address or connect data, or
   * when the text cannot be formatted. The text is empty then.
   */
  explicit Dblink(const KZCITnsService &service) noexcept
      : status_(KZCITnsServiceDblinkGet(const_cast<KZCITnsService *>(&service), dblink_,
                                        &full_length_)) {}

  sword status() const noexcept { return status_; }
  explicit operator bool() const noexcept { return status_ == 0; }

  /* The link string, at most KZCI_DBLINK_SIZE - 1 characters. */
  std::string_view text() const noexcept {
    return {dblink_, static_cast<std::size_t>(is_cut() ? KZCI_DBLINK_SIZE - 1 : full_length_)};
  }
  /* The same, terminated; good where status() is 0. */
  const char *c_str() const noexcept { return dblink_; }
  /* Whether the link string was longer than that, and its length before the cut. */
  bool is_cut() const noexcept { return full_length_ >= KZCI_DBLINK_SIZE; }
  sb4 full_length() const noexcept { return full_length_; }

 private:
  char dblink_[KZCI_DBLINK_SIZE] = {};
  sb4 full_length_ = 0;
  sword status_; /* last: its initialiser fills the others */
};

/* ======================================================================
 * From an identifier to a tree
 * ====================================================================== */

/*
 * A connect identifier: a service name or a literal descriptor. It points at the
 * caller's text, which must be there during the call that it is given to.
 *
 * One DEBUG record prints a literal descriptor as a C string, so the text comes from
 * where a zero byte follows it. A name needs none: see unterminated().
 */
class Identifier {
 public:
  /* From a terminated text. With null every call fails with status -2. */
  Identifier(const char *text) noexcept
      : Identifier(text, text == nullptr ? 0 : std::strlen(text)) {}

  template <class Traits, class Allocator>
  Identifier(const std::basic_string<char, Traits, Allocator> &text) noexcept
      : Identifier(text.c_str(), text.size()) {}

  /*
   * From a text that no zero byte follows: a name; or a literal descriptor, where the
   * program's log function does not format DEBUG records.
   */
  static Identifier unterminated(std::string_view text) noexcept {
    return {text.data() == nullptr ? "" : text.data(), text.size()};
  }

  const char *data() const noexcept { return text_; }
  ub4 size() const noexcept { return length_; }

  /* What the C functions take. */
  const OraText *ora_text() const noexcept { return reinterpret_cast<const OraText *>(text_); }

  /* Whether it is a literal descriptor, as IsDescriptionTns tells. */
  bool is_literal() const noexcept {
    return IsDescriptionTns(const_cast<char *>(text_), length_) != 0;
  }

 private:
  /* No name and no descriptor is as long as the largest length. */
  static constexpr ub4 longest = UINT32_MAX;

  Identifier(const char *text, std::size_t length) noexcept
      : text_(text), length_(length < longest ? static_cast<ub4>(length) : longest) {}

  const char *text_;
  ub4 length_;
};

enum class Outcome {
  found,     /* built and appended */
  not_found, /* no such entry, or no names file */
  failed     /* malformed input, no memory, or a null argument: status says which */
};

/* What became of an identifier. Converts to true where it was found. */
struct [[nodiscard]] Result {
  Outcome outcome = Outcome::failed;
  sword status = 0;                  /* of the C function; not 0 where outcome is failed */
  KZCITnsService *service = nullptr; /* the service that was built, else null; its Tns owns it */
  int file_error = 0; /* errno of a file that look_up_in cannot open or read, else 0 */

  explicit operator bool() const noexcept { return outcome == Outcome::found; }
};

namespace detail {

/* How a names file is opened: closed in programs that this one starts and, where the C library
 * tells texts from other files, for its bytes as they are. */
#if defined(_WIN32)
inline constexpr char open_mode[] = "rbN";
#else
inline constexpr char open_mode[] = "re";
#endif

constexpr sword invalid_handle = -2;
constexpr sword no_data = 100;

/* Of the stream over a names file, as large as KZCITnsBuild's; on the stack. */
constexpr std::size_t stream_buffer_size = 12288;

inline bool is_name_at_hand(const KZCITnsParseParams &params, const Identifier &name) noexcept {
  return params.tns_key_len == name.size() &&
         std::strncmp(name.data(), params.tns_key, name.size()) == 0;
}

/* Reads entries until the one of that name is built or the input ends. */
inline sword scan_entries(KZCITns &tns, KZCITnsParseParams &params, const Identifier &name,
                          boolean &find) noexcept {
  while (params.is_eof != 1 && find != 1) {
    sword status = KZCITnsParse(&params, TNS_KEY);
    if (status == 0) status = KZCITnsParse(&params, TNS_EQUAL_SIGN);
    if (status != 0) return status;
    const bool is_sought = is_name_at_hand(params, name);
    status = is_sought ? KZCITnsServiceBuild(&tns, &params) : KZCITnsServiceSkip(&params);
    if (status != 0) return status;
    find = is_sought ? 1 : 0;
  }
  return 0;
}

inline sword look_up_in_stream(KZCITns &tns, std::FILE *file, const Identifier &name,
                               boolean &find) noexcept {
  KZCITnsParseParams params = {};
  params.mode = TNS_MODE_FILE;
  params.tns_file = file;
  const sword status = scan_entries(tns, params, name, find);
  return status == no_data ? 0 : status;
}

/* Why a stream cannot be read. The errno of its reading may be gone: the log has been
 * written since. So it is read once more. */
inline int read_error(std::FILE *file) noexcept {
  errno = 0;
  const bool failed = std::fgetc(file) == EOF;
  return failed && errno != 0 ? errno : EIO;
}

}  // namespace detail

/*
 * A container that owns its tree and releases it. It can be moved and not copied; one
 * that was moved from is empty and may be used again.
 */
class Tns {
 public:
  Tns() noexcept { KZCITnsInit(&tns_); }

  /* Takes over the tree of a C container, which must not be cleared any more. */
  explicit Tns(const KZCITns &tree) noexcept : tns_(tree) {}

  Tns(Tns &&other) noexcept : tns_(other.release()) {}

  /* Clears the container first. A tree that cannot be cleared is lost: see clear(). */
  Tns &operator=(Tns &&other) noexcept {
    if (this == &other) return *this;
    KZCITnsClear(&tns_);
    tns_ = other.release();
    return *this;
  }

  ~Tns() { KZCITnsClear(&tns_); }

  /*
   * Builds the service that an identifier names and appends it, by KZCITnsBuild: a name
   * is looked up in the file that the environment names.
   *
   * identifier  a service name or a literal descriptor
   *
   * After anything but Outcome::found the container is as it was.
   */
  Result look_up(const Identifier &identifier) noexcept {
    boolean find = 0;
    const sword status = KZCITnsBuild(&tns_, identifier.ora_text(), identifier.size(), &find);
    return result(status, find);
  }

  /*
   * The same with a names file of the caller's choice: no environment variable is read.
   * The log has the records of the functions that read the file, and not those of
   * KZCITnsBuild itself.
   *
   * path        of the names file, of any length; terminated. It is opened during the
   *             call, and not at all for a literal descriptor
   * identifier  a service name or a literal descriptor
   *
   * A file that cannot be opened is Outcome::not_found, with the reason in file_error; so
   * is one that can be opened and not read, as a directory (EISDIR).
   * A null argument is Outcome::failed with status -2. The call takes about 16 KB of
   * stack. After anything but Outcome::found the container is as it was.
   */
  Result look_up_in(const char *path, const Identifier &identifier) noexcept {
    if (path == nullptr || identifier.data() == nullptr) return refused();
    if (identifier.is_literal()) return build_literal(identifier);
    std::FILE *const file = std::fopen(path, detail::open_mode);
    if (file == nullptr) return not_opened(errno);
    /* As in KZCITnsBuild: the stream needs no memory of its own, and few system calls. */
    char stream_buffer[detail::stream_buffer_size];
    std::setvbuf(file, stream_buffer, _IOFBF, sizeof stream_buffer);
    Result result = look_up_in(file, identifier);
    if (result.outcome == Outcome::not_found && std::ferror(file) != 0)
      result.file_error = detail::read_error(file);
    std::fclose(file);
    return result;
  }

  /*
   * The same with an open stream, for names that are in memory or in a file that the
   * caller opens by other means.
   *
   * file  the caller's stream, open for reading; read from where it stands, and left
   *       somewhere after the entry. Not read for a literal descriptor
   */
  Result look_up_in(std::FILE *file, const Identifier &identifier) noexcept {
    if (file == nullptr || identifier.data() == nullptr) return refused();
    if (identifier.is_literal()) return build_literal(identifier);
    boolean find = 0;
    const sword status = detail::look_up_in_stream(tns_, file, identifier, find);
    return result(status, find);
  }

  /*
   * Builds the service of a literal descriptor and appends it, by KZCITnsBuildDes.
   *
   * descriptor  a literal descriptor; any other text is not found or malformed
   *
   * After anything but Outcome::found the container is as it was.
   */
  Result build_literal(const Identifier &descriptor) noexcept {
    boolean find = 0;
    const sword status = KZCITnsBuildDes(&tns_, descriptor.ora_text(), descriptor.size(), &find);
    return result(status, find);
  }

  /* The services, in the order in which they were built. */
  Records<KZCITnsService> services() noexcept { return kzoci::services(tns_); }
  Records<const KZCITnsService> services() const noexcept { return kzoci::services(tns_); }
  std::size_t size() const noexcept { return tns_.tns_service_count; }
  [[nodiscard]] bool empty() const noexcept { return size() == 0; }

  /* Prints the tree. Status and output are those of KZCITnsDisplay. */
  sword display() const noexcept { return KZCITnsDisplay(const_cast<KZCITns *>(&tns_)); }

  /*
   * Releases every service.
   *
   * Returns 0; -1 when a count does not agree with its ring, which leaves the tree
   * partly released. Only a program that links records itself can bring that about.
   */
  sword clear() noexcept { return KZCITnsClear(&tns_); }

  /* The C container, for the functions of the C interface. */
  KZCITns &record() noexcept { return tns_; }
  const KZCITns &record() const noexcept { return tns_; }

  /* Hands the tree over to the caller, who clears it, and leaves an empty container. */
  [[nodiscard]] KZCITns release() noexcept {
    const KZCITns tree = tns_;
    KZCITnsInit(&tns_);
    return tree;
  }

 private:
  static Result refused() noexcept { return {Outcome::failed, detail::invalid_handle, nullptr, 0}; }

  static Result not_opened(int error) noexcept { return {Outcome::not_found, 0, nullptr, error}; }

  Result result(sword status, boolean find) noexcept {
    if (status != 0) return {Outcome::failed, status, nullptr, 0};
    if (find == 0) return {Outcome::not_found, 0, nullptr, 0};
    return {Outcome::found, 0, &services().back(), 0};
  }

  KZCITns tns_;
};

}  // namespace kzoci

#endif
