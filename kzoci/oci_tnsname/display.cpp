// Printing the records of the tree, and choosing where to.
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <utility>

#include "children.h"
#include "record_fields.h"
#include "reserved_entry.h"
#include "status.h"

using namespace kzoci::tns;

namespace {

void print_count(FILE *file, const char *label, ub4 count) {
  std::fprintf(file, "%s:%u\n", label, count);
}

// What prints the line of a row: the indentation, its label, the conversion of its value.
template <std::size_t depth, std::size_t row>
constexpr auto format_of_line() {
  constexpr std::string_view label = grammar[row].label;
  constexpr std::string_view value =
      grammar[row].value.kind == ValueKind::text ? ":%.*s\n" : ":%" KZ_LD "\n";
  std::array<char, depth + label.size() + value.size() + 1> format = {};
  char *end = std::fill_n(format.data(), depth, '-');
  end = std::copy(label.begin(), label.end(), end);
  std::copy(value.begin(), value.end(), end);
  return format;
}

// The line of a row, if it is one of the blocks' and has a label.
template <std::size_t depth, std::size_t row, Block... blocks, class IsShown>
void print_value(FILE *file, const void *record, IsShown is_shown) {
  constexpr const Key &key = grammar[row];
  if constexpr (key.label != nullptr && ((key.block == blocks) || ...)) {
    if (!is_shown(key)) return;
    static constexpr auto format = format_of_line<depth, row>();
    if constexpr (key.value.kind == ValueKind::text) {
      const std::span<const char> text = text_of(record, key.value.field);
      std::fprintf(file, format.data(), static_cast<int>(text.size()), text.data());
    } else {
      std::fprintf(file, format.data(), long_number(number_of(record, key.value.field)));
    }
  }
}

// The lines of a record, one for each labelled key of its blocks that is shown. Which these
// are the compiler knows: a dump takes as long as one written by hand.
template <std::size_t depth, Block... blocks, class IsShown>
void print_values(FILE *file, const void *record, IsShown is_shown) {
  [&]<std::size_t... rows>(std::index_sequence<rows...>) {
    (print_value<depth, rows, blocks...>(file, record, is_shown), ...);
  }
  (std::make_index_sequence<rows_of_grammar>{});
}

template <std::size_t depth, Block... blocks>
void print_values(FILE *file, const void *record) {
  print_values<depth, blocks...>(file, record, [](const Key &) { return true; });
}

// The mode and the switch are shown only with extra information, as they are handed
// out; session variables only where there are some.
bool is_shown(const KZCIConnectData &data, const Key &key) {
  switch (key.type) {
    case LB_EXTRA_INFO:
    case LB_KZ_MODE:
    case LB_USE_DEFAULT_SID:
      return data.user_extra_info_len != 0;
    case LB_SESSION_VARIABLE:
      return data.session_variable_len != 0;
    default:
      return true;
  }
}

// Prints every child; a failure is logged with its status and returned.
template <class Child>
sword display_children(Child *first, ub4 count, FILE *file, sword (*display)(Child *, FILE *),
                       const Message<sword> &display_failed) {
  return visit_children(
      first, count, [&](Child *child) { return reported(display(child, file), display_failed); });
}

sword display_services(const KZCITns &tns, FILE *file) {
  std::fprintf(file, "Tns:\n");
  print_count(file, "--tns_serivce_count", tns.tns_service_count);
  return display_children(tns.tns_service, tns.tns_service_count, file, KZCITnsServiceDisplay,
                          message::service_display_failed);
}

}  // namespace

sword KZCITnsDisplay(KZCITns *tns) {
  if (tns == nullptr) {
    KZ_LOG(message::null_tns);
    return failure;
  }
  if (tns->tns_service_count == 0 || tns->tns_service == nullptr) {
    KZ_LOG(message::empty_tns);
    return failure;
  }
  const char *const name = std::getenv("KZCI_TNS_DISPLAY");
  if (name == nullptr) {
    KZ_LOG(message::display_on_stdout);
    return display_services(*tns, stdout);
  }
  KZ_LOG(message::display_in_file, name);
  // Read-only on purpose: the variable tests that the file exists and keeps the
  // dump off standard output; the file is not changed.
  FILE *const file = std::fopen(name, "r");
  if (file == nullptr) {
    KZ_LOG(message::display_file_not_opened, name);
    return failure;
  }
  const sword status = display_services(*tns, file);
  std::fclose(file);
  return status;
}

sword KZCITnsServiceDisplay(KZCITnsService *tns_service, FILE *display_file) {
  if (tns_service == nullptr || display_file == nullptr) return refuse_null_handle();
  if (is_reserved_name(tns_service->net_service_name, tns_service->net_service_name_len)) {
    return reported(KZCISystemVariablesDisplay(&tns_service->sys_vars, display_file),
                    message::reserved_entry_display_failed);
  }
  if (tns_service->description_count == 0 || tns_service->description == nullptr) {
    KZ_LOG(message::empty_service);
    return failure;
  }
  std::fprintf(display_file, "--TnsService:%.*s\n", precision(tns_service->net_service_name_len),
               tns_service->net_service_name);
  print_count(display_file, "----description_count", tns_service->description_count);
  const sword status =
      display_children(tns_service->description, tns_service->description_count, display_file,
                       KZCIDescriptionDisplay, message::description_display_failed);
  if (status != success) return status;
  return reported(KZCISystemVariablesDisplay(&tns_service->sys_vars, display_file),
                  message::system_variables_display_failed);
}

sword KZCIDescriptionDisplay(KZCIDescription *des, FILE *display_file) {
  if (des == nullptr || display_file == nullptr) return refuse_null_handle();
  if (des->address_list_count == 0 || des->address_list == nullptr) {
    KZ_LOG(message::empty_description);
    return failure;
  }
  std::fprintf(display_file, "----Discription:\n");
  print_values<6, Block::description>(display_file, des);
  print_values<6, Block::append_strategy, Block::remove_strategy>(display_file,
                                                                  &des->black_list_conf);
  print_count(display_file, "------address_list_count", des->address_list_count);
  const sword status =
      display_children(des->address_list, des->address_list_count, display_file,
                       KZCIAddressListDisplay, message::address_list_display_failed);
  if (status != success || des->connect_data == nullptr) return status;
  return reported(KZCIConnectDataDisplay(des->connect_data, display_file),
                  message::connect_data_display_failed);
}

sword KZCIAddressListDisplay(KZCIAddressList *address_list, FILE *display_file) {
  if (address_list == nullptr || display_file == nullptr) {
    KZ_LOG(message::null_address_list_to_display);
    return invalid_handle;
  }
  if (address_list->address == nullptr || address_list->address_count == 0) {
    KZ_LOG(message::no_addresses);
    return success;
  }
  std::fprintf(display_file, "------AddressList:\n");
  print_count(display_file, "--------address_count", address_list->address_count);
  print_values<8, Block::address_list>(display_file, address_list);
  // The message names the Clear; log readers rely on it.
  return display_children(address_list->address, address_list->address_count, display_file,
                          KZCIAddressDisplay, message::address_clear_failed);
}

sword KZCIAddressDisplay(KZCIAddress *address, FILE *display_file) {
  if (address == nullptr || display_file == nullptr) return invalid_handle;
  std::fprintf(display_file, "--------Address:\n");
  print_values<10, Block::address>(display_file, address);
  return success;
}

sword KZCIConnectDataDisplay(KZCIConnectData *con_data, FILE *display_file) {
  if (con_data == nullptr || display_file == nullptr) return invalid_handle;
  std::fprintf(display_file, "--------ConnectData:\n");
  print_values<10, Block::connect_data>(display_file, con_data,
                                        [&](const Key &key) { return is_shown(*con_data, key); });
  return success;
}

sword KZCISystemVariablesDisplay(KZCISystemVariables *sys_vars, FILE *display_file) {
  if (sys_vars == nullptr || display_file == nullptr) return invalid_handle;
  std::fprintf(display_file, "--------SYSTEMVARIABLE:\n");
  print_values<10, Block::system_variables>(display_file, sys_vars);
  return success;
}
