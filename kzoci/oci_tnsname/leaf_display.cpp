// Printing the records that have no children.
#include <cstdio>

#include "display.h"
#include "status.h"

using namespace kzoci::tns;

sword KZCIAddressDisplay(KZCIAddress *address, FILE *display_file) {
  if (address == nullptr || display_file == nullptr) return invalid_handle;
  std::fprintf(display_file, "--------Address:\n");
  print_text(display_file, "----------host", address->host, address->host_len);
  print_text(display_file, "----------port", address->port, address->port_len);
  print_number(display_file, "----------weight", address->weight);
  return success;
}

sword KZCIConnectDataDisplay(KZCIConnectData *con_data, FILE *display_file) {
  if (con_data == nullptr || display_file == nullptr) return invalid_handle;
  std::fprintf(display_file, "--------ConnectData:\n");
  print_text(display_file, "----------dbname", con_data->service_name, con_data->service_name_len);
  // The mode and the switch are shown only beside extra information, as they
  // are handed out.
  if (con_data->user_extra_info_len != 0) {
    print_text(display_file, "----------extra_info", con_data->user_extra_info,
               con_data->user_extra_info_len);
    print_number(display_file, "----------kzmode", con_data->kz_mode);
    print_number(display_file, "----------use_default_sid", con_data->use_default_sid);
  }
  if (con_data->session_variable_len != 0)
    print_text(display_file, "----------session_variable", con_data->session_variable,
               con_data->session_variable_len);
  return success;
}

sword KZCISystemVariablesDisplay(KZCISystemVariables *sys_vars, FILE *display_file) {
  if (sys_vars == nullptr || display_file == nullptr) return invalid_handle;
  std::fprintf(display_file, "--------SYSTEMVARIABLE:\n");
  print_number(display_file, "----------SLOWSQL_THRESHOLD", sys_vars->slowsql_threshold);
  print_number(display_file, "----------SLOWSQL_BUFFER_SIZE", sys_vars->slowsql_buffer_size);
  print_number(display_file, "----------SLOWSQL_FLUSH_SECOND", sys_vars->slowsql_flush_second);
  print_text(display_file, "----------SESSION_VARIABLE", sys_vars->session_variable,
             sys_vars->session_variable_len);
  print_text(display_file, "----------LOG_LEVEL", sys_vars->log_level, sys_vars->log_level_len);
  print_number(display_file, "----------LOG_SIZE", sys_vars->log_size);
  print_number(display_file, "----------LOG_COUNT", sys_vars->log_count);
  print_text(display_file, "----------LOG_PATH", sys_vars->log_path, sys_vars->log_path_len);
  return success;
}
