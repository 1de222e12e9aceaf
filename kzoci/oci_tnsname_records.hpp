/*
 * oci_tnsname_records.hpp: walking the records of oci_tnsname.h, and their texts, for C++17
 * and later. oci_tnsname.hpp includes it, and says what holds for all of it.
 */
#ifndef KZOCI_OCI_TNSNAME_RECORDS_HPP
#define KZOCI_OCI_TNSNAME_RECORDS_HPP

#include <cstddef>
#include <iterator>
#include <string_view>
#include <type_traits>

#if __cplusplus >= 202002L
#include <ranges>
#endif

#include "oci_tnsname.h"

namespace kzoci {

/* ======================================================================
 * Ranges over the children of a record
 * ====================================================================== */

/*
 * An iterator over a ring of records, bidirectional. It knows its place by number,
 * since the ring has no end: one step after the last record leads to the first.
 *
 * Record  type of the records, const or not
 */
template <class Record>
class RecordIterator {
 public:
  using iterator_category = std::bidirectional_iterator_tag;
  using value_type = std::remove_const_t<Record>;
  using difference_type = std::ptrdiff_t;
  using pointer = Record *;
  using reference = Record &;

  constexpr RecordIterator() noexcept = default;
  constexpr RecordIterator(Record *record, ub4 index) noexcept : record_(record), index_(index) {}

  /* From an iterator over the same records that may change them. */
  template <class Other, class = std::enable_if_t<std::is_same_v<const Other, Record>>>
  constexpr RecordIterator(const RecordIterator<Other> &other) noexcept
      : record_(other.record_), index_(other.index_) {}

  constexpr reference operator*() const noexcept { return *record_; }
  constexpr pointer operator->() const noexcept { return record_; }

  RecordIterator &operator++() noexcept {
    record_ = of_entry(record_->le.next);
    ++index_;
    return *this;
  }
  RecordIterator &operator--() noexcept {
    record_ = of_entry(record_->le.prev);
    --index_;
    return *this;
  }
  RecordIterator operator++(int) noexcept {
    const RecordIterator before = *this;
    ++*this;
    return before;
  }
  RecordIterator operator--(int) noexcept {
    const RecordIterator before = *this;
    --*this;
    return before;
  }

  friend constexpr bool operator==(const RecordIterator &a, const RecordIterator &b) noexcept {
    return a.index_ == b.index_;
  }
  friend constexpr bool operator!=(const RecordIterator &a, const RecordIterator &b) noexcept {
    return a.index_ != b.index_;
  }

 private:
  template <class>
  friend class RecordIterator;

  static Record *of_entry(list_entry_t *entry) noexcept {
    return KZCI_RECORD_OF_ENTRY(value_type, entry);
  }

  Record *record_ = nullptr;
  ub4 index_ = 0;
};

/*
 * The children of a record, in the order in which they were written. It is two words
 * that point into the tree; copies are cheap and show the same records.
 *
 * Record  type of the children, const where the parent is
 */
template <class Record>
class Records {
 public:
  using value_type = std::remove_const_t<Record>;
  using reference = Record &;
  using size_type = std::size_t;
  using difference_type = std::ptrdiff_t;
  using iterator = RecordIterator<Record>;
  using const_iterator = RecordIterator<const Record>;

  constexpr Records() noexcept = default;
  constexpr Records(Record *first, ub4 count) noexcept
      : first_(first), count_(first == nullptr ? 0 : count) {}

  constexpr iterator begin() const noexcept { return {first_, 0}; }
  constexpr iterator end() const noexcept { return {first_, count_}; }
  constexpr const_iterator cbegin() const noexcept { return begin(); }
  constexpr const_iterator cend() const noexcept { return end(); }
  constexpr size_type size() const noexcept { return count_; }
  [[nodiscard]] constexpr bool empty() const noexcept { return count_ == 0; }

  /* The first and the last record; not to be called on an empty range. */
  constexpr reference front() const noexcept { return *first_; }
  reference back() const noexcept { return *--end(); }

 private:
  Record *first_ = nullptr;
  ub4 count_ = 0;
};

inline Records<KZCITnsService> services(KZCITns &tns) noexcept {
  return {tns.tns_service, tns.tns_service_count};
}
inline Records<const KZCITnsService> services(const KZCITns &tns) noexcept {
  return {tns.tns_service, tns.tns_service_count};
}
inline Records<KZCIDescription> descriptions(KZCITnsService &service) noexcept {
  return {service.description, service.description_count};
}
inline Records<const KZCIDescription> descriptions(const KZCITnsService &service) noexcept {
  return {service.description, service.description_count};
}
inline Records<KZCIAddressList> address_lists(KZCIDescription &des) noexcept {
  return {des.address_list, des.address_list_count};
}
inline Records<const KZCIAddressList> address_lists(const KZCIDescription &des) noexcept {
  return {des.address_list, des.address_list_count};
}
inline Records<KZCIAddress> addresses(KZCIAddressList &list) noexcept {
  return {list.address, list.address_count};
}
inline Records<const KZCIAddress> addresses(const KZCIAddressList &list) noexcept {
  return {list.address, list.address_count};
}

/* ======================================================================
 * Texts of a record
 *
 * Each is empty where the record's field is. None is terminated.
 * ====================================================================== */

/*
 * The text of a field.
 *
 * field   the array
 * length  its length field
 *
 * Returns the text, cut to the array where the length says more.
 */
template <std::size_t size>
constexpr std::string_view text(const char (&field)[size], ub4 length) noexcept {
  return {field, length < size ? length : size};
}

inline std::string_view name(const KZCITnsService &service) noexcept {
  return {service.net_service_name, service.net_service_name_len};
}

inline std::string_view host(const KZCIAddress &address) noexcept {
  return text(address.host, address.host_len);
}
inline std::string_view port(const KZCIAddress &address) noexcept {
  return text(address.port, address.port_len);
}
inline std::string_view protocol(const KZCIAddress &address) noexcept {
  return text(address.protocol, address.protocol_len);
}

inline std::string_view service_name(const KZCIConnectData &data) noexcept {
  return text(data.service_name, data.service_name_len);
}
inline std::string_view user_extra_info(const KZCIConnectData &data) noexcept {
  return text(data.user_extra_info, data.user_extra_info_len);
}
inline std::string_view session_variable(const KZCIConnectData &data) noexcept {
  return text(data.session_variable, data.session_variable_len);
}

inline std::string_view session_variable(const KZCISystemVariables &variables) noexcept {
  return text(variables.session_variable, variables.session_variable_len);
}
inline std::string_view log_level_text(const KZCISystemVariables &variables) noexcept {
  return text(variables.log_level, variables.log_level_len);
}
inline std::string_view log_path_text(const KZCISystemVariables &variables) noexcept {
  return text(variables.log_path, variables.log_path_len);
}

}  // namespace kzoci

#if __cplusplus >= 202002L
/* A range of children owns nothing: its iterators outlive it. */
template <class Record>
inline constexpr bool std::ranges::enable_borrowed_range<kzoci::Records<Record>> = true;
template <class Record>
inline constexpr bool std::ranges::enable_view<kzoci::Records<Record>> = true;
#endif

#endif
