#include "reading_checks.h"

#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "fuzz_platform.h"
#include "input.h"
#include "tree_checks.h"

namespace fuzz {
namespace {

constexpr std::size_t extra_info_size = 256;
constexpr std::size_t session_variable_size = 257;
constexpr std::size_t dblink_size = 256;

// Stands in every output before the call.
constexpr sb4 untouched_length = -7;
constexpr char untouched_byte = '?';

HeapText output(std::size_t size) { return HeapText(std::string(size, untouched_byte)); }

bool can_be_displayed(const KZCITnsService &service) {
  if (is_reserved(name_of(service))) return true;
  KZCIDescription *description = service.description;
  for (ub4 i = 0; i < service.description_count; ++i) {
    if (description->address_list == nullptr) return false;
    description = KZCIDescriptionNext(description);
  }
  return service.description_count > 0;
}

// What "%.*s" prints of a text.
std::string printed(const char *text, ub4 length) {
  const std::string_view whole(text, length);
  return std::string(whole.substr(0, whole.find('\0')));
}

std::string lines_of(const KZCIAddress &address) {
  return "----------host:" + printed(address.host, address.host_len) +
         "\n----------port:" + printed(address.port, address.port_len) +
         "\n----------weight:" + std::to_string(address.weight) + "\n";
}

// An output holds the text as a string copy, or nothing of an empty text.
void check_output(const HeapText &out, sb4 length, const char *text, ub4 text_length,
                  const char *name) {
  const std::string_view whole(text, text_length);
  check(length == (text_length == 0 ? untouched_length : static_cast<sb4>(text_length)),
        "length %d of %s", length, name);
  const std::string expected = copied_as_string(whole) + std::string(out.size() - text_length, '?');
  check(out.view() == expected, "%s is not what the record holds", name);
}

void check_session_data(KZCITnsService &service, const KZCIConnectData *data) {
  const HeapText extra = output(extra_info_size);
  const HeapText session = output(session_variable_size);
  sb4 extra_len = untouched_length;
  sb4 mode = untouched_length;
  sb4 session_len = untouched_length;
  const sword status = KZCITnsServiceExtraInfoGet(&service, extra.data(), &extra_len, &mode,
                                                  session.data(), &session_len);
  check(status == (data == nullptr ? -1 : 0), "the session's data: status %d", status);
  if (data == nullptr) return;
  check_output(extra, extra_len, data->user_extra_info, data->user_extra_info_len,
               "extra information");
  check_output(session, session_len, data->session_variable, data->session_variable_len,
               "the session variable");
  const sb4 expected_mode =
      data->user_extra_info_len == 0 ? untouched_length : static_cast<sb4>(data->kz_mode);
  check(mode == expected_mode, "mode %d", mode);
}

std::string link_of(const KZCIAddress &address, const KZCIConnectData &data) {
  const std::string server =
      printed(address.host, address.host_len) + ":" + printed(address.port, address.port_len);
  if (data.use_default_sid != 0) return server;
  return server + "/" + printed(data.service_name, data.service_name_len);
}

void check_link(KZCITnsService &service, const KZCIAddress *address, const KZCIConnectData *data) {
  const HeapText link = output(dblink_size);
  sb4 link_len = untouched_length;
  const sword status = KZCITnsServiceDblinkGet(&service, link.data(), &link_len);
  const bool complete = address != nullptr && data != nullptr;
  check(status == (complete ? 0 : -1), "the link string: status %d", status);
  if (!complete) return;
  const std::string expected = link_of(*address, *data);
  check(link_len == static_cast<sb4>(expected.size()), "link string of %d characters", link_len);
  check(link.data() == expected.substr(0, dblink_size - 1), "link string \"%s\"", link.data());
}

// Every address is dumped, in the order in which the rings hold them.
void check_addresses_in_order(const KZCITnsService &service, const std::string &dump) {
  std::size_t at = 0;
  KZCIDescription *description = service.description;
  for (ub4 d = 0; d < service.description_count; ++d) {
    KZCIAddressList *list = description->address_list;
    for (ub4 l = 0; l < description->address_list_count; ++l) {
      KZCIAddress *address = list->address;
      for (ub4 a = 0; a < list->address_count; ++a) {
        const std::string lines = lines_of(*address);
        at = dump.find(lines, at);
        check(at != std::string::npos, "address %u of list %u of description %u is not dumped", a,
              l, d);
        at += lines.size();
        address = KZCIAddressNext(address);
      }
      list = KZCIAddressListNext(list);
    }
    description = KZCIDescriptionNext(description);
  }
}

}  // namespace

std::string display_of(KZCITnsService &service) {
  char *text = nullptr;
  std::size_t length = 0;
  std::FILE *const stream = open_memstream(&text, &length);
  check(stream != nullptr, "no memory stream");
  const sword status = KZCITnsServiceDisplay(&service, stream);
  std::fclose(stream);
  std::string out(text, length);
  std::free(text);
  check(status == (can_be_displayed(service) ? 0 : -1), "the dump: status %d", status);
  check_printed(out);
  if (status == 0) check_addresses_in_order(service, out);
  return out;
}

void check_accessors(KZCITnsService &service) {
  const KZCIDescription *const description = service.description;
  const KZCIConnectData *const data = description == nullptr ? nullptr : description->connect_data;
  const KZCIAddressList *const list = description == nullptr ? nullptr : description->address_list;
  check_session_data(service, data);
  check_link(service, list == nullptr ? nullptr : list->address, data);
}

}  // namespace fuzz
