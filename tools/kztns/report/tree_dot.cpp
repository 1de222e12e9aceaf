#include "report/tree_dot.h"

#include <cstdio>
#include <string_view>

#include "report/tree_walk.h"
#include "text/escape.h"

namespace kztns {
namespace {

constexpr char service_colour[] = "#dbeafe";
constexpr char description_colour[] = "#e0e7ff";
constexpr char list_colour[] = "#dcfce7";
constexpr char address_colour[] = "#f8fafc";
constexpr char note_colour[] = "#fef9c3";

constexpr char head[] = R"(digraph service {
  graph [rankdir=LR, ordering=out, ranksep=0.5, nodesep=0.2, bgcolor="white"];
  node [shape=box, style="rounded,filled", color="#64748b", margin="0.14,0.07",
        fontname="Helvetica,Arial,sans-serif", fontsize=11, fontcolor="#0f172a"];
  edge [color="#64748b", arrowsize=0.7, tailport=e, headport=w];
)";

constexpr char centred[] = "\\n";
constexpr char to_the_left[] = "\\l";

// A text within a quoted label, in which a backslash and an ampersand begin
// escapes. What no picture can hold is escaped as in messages.
std::string escaped(std::string_view text) {
  std::string result;
  for (const char c : visible(text)) {
    if (c == '"' || c == '\\') result += '\\';
    if (c == '&')
      result += "&amp;";
    else
      result += c;
  }
  return result;
}

// The lines of a node's label.
class Label {
 public:
  explicit Label(const char *line_end) : line_end_(line_end) {}

  void line(std::string_view text) { text_ += escaped(text) + line_end_; }

  void setting(std::string_view key, std::string_view value) {
    line(std::string(key) + " = " + std::string(value));
  }
  void on_or_off(std::string_view key, boolean value) { setting(key, value != 0 ? "ON" : "OFF"); }
  void set_text(std::string_view key, std::string_view value, std::string_view by_default) {
    if (value != by_default) setting(key, value);
  }
  void set_number(std::string_view key, sb8 value, sb8 by_default) {
    if (value != by_default) setting(key, std::to_string(value));
  }

  const std::string &text() const { return text_; }
  bool empty() const { return text_.empty(); }

 private:
  const char *line_end_;
  std::string text_;
};

std::string numbered(std::string_view what, ub4 number) {
  return std::string(what) + " " + std::to_string(number);
}

// The sum over which a list's addresses have their shares; 0 where shares mean
// nothing: the list does not balance, or a weight is negative.
long double weights_of(const KZCIAddressList &list) {
  long double sum = 0;
  bool meaningful = list.kzlb != 0;
  for_each_record(list.address, list.address_count, KZCIAddressNext,
                  [&](const KZCIAddress &address, ub4) {
                    sum += static_cast<long double>(address.weight);
                    meaningful = meaningful && address.weight >= 0;
                  });
  return meaningful ? sum : 0;
}

// At most one decimal: "40 %", "33.3 %".
std::string percent(long double part, long double sum) {
  char text[32];
  std::snprintf(text, sizeof text, "%.1Lf", part * 100 / sum);
  std::string result(text);
  if (result.ends_with(".0")) result.resize(result.size() - 2);
  return result + " %";
}

std::string address_label(const KZCIAddress &address, long double weights) {
  const auto or_none = [](std::string_view text, const char *none) {
    return text.empty() ? std::string(none) : std::string(text);
  };
  Label label(centred);
  label.line(or_none(text_of(address.host, address.host_len), "(no host)") + ":" +
             or_none(text_of(address.port, address.port_len), "(no port)"));
  label.line("weight " + std::to_string(address.weight) +
             (weights > 0 ? ", " + percent(static_cast<long double>(address.weight), weights)
                          : std::string()));
  return label.text();
}

std::string address_list_label(const KZCIAddressList &list, ub4 number) {
  Label label(to_the_left);
  label.line(numbered("address list", number));
  label.on_or_off("KZLB", list.kzlb);
  label.setting("KZLB_STRATEGY", strategy_word(list.kzlb_strategy));
  return label.text();
}

// Each of the two strategies, with what belongs to it, if any of that is not at
// its default.
void add_blacklist(Label &label, const KZCIBlacklistConf &conf) {
  const auto by_default = defaults_of(KZCIBlacklistConfInit);
  if (conf.remove_strategy != by_default.remove_strategy ||
      conf.remove_timeout != by_default.remove_timeout) {
    label.setting("REMOVE_STRATEGY", strategy_word(conf.remove_strategy));
    label.line("  TIMEOUT = " + std::to_string(conf.remove_timeout));
  }
  if (conf.append_strategy != by_default.append_strategy ||
      conf.retry_times != by_default.retry_times || conf.duration != by_default.duration) {
    label.setting("APPEND_STRATEGY", strategy_word(conf.append_strategy));
    label.line("  RETRY_TIMES = " + std::to_string(conf.retry_times));
    label.line("  DURATION = " + std::to_string(conf.duration));
  }
}

std::string description_label(const KZCIDescription &des, ub4 number) {
  const auto by_default = defaults_of(KZCIDescriptionInit);
  Label label(to_the_left);
  label.line(numbered("description", number));
  label.on_or_off("KZLB", des.kzlb);
  label.setting("KZLB_GROUP_STRATEGY", strategy_word(des.kzlb_group_strategy));
  label.set_number("KZLB_RETRY_ALL_DOWNS", des.retry_all_downs, by_default.retry_all_downs);
  label.set_number("KZLB_RETRY_TIMEOUT", des.retry_timeout, by_default.retry_timeout);
  label.set_number("KZLB_CONNECT_TIMEOUT", des.connect_timout, by_default.connect_timout);
  label.set_number("KZLB_READ_TIMEOUT", des.read_timout, by_default.read_timout);
  label.set_number("KZLB_WRITE_TIMEOUT", des.write_timout, by_default.write_timout);
  add_blacklist(label, des.black_list_conf);
  return label.text();
}

std::string connect_data_label(const KZCIConnectData &data) {
  const auto by_default = defaults_of(KZCIConnectDataInit);
  Label label(to_the_left);
  label.line("connect data");
  label.set_text("SERVICE_NAME", text_of(data.service_name, data.service_name_len),
                 text_of(by_default.service_name, by_default.service_name_len));
  label.set_text("KZ_USER_EXTRA_INFO", text_of(data.user_extra_info, data.user_extra_info_len),
                 text_of(by_default.user_extra_info, by_default.user_extra_info_len));
  label.set_text("SESSION_VARIABLE", text_of(data.session_variable, data.session_variable_len),
                 text_of(by_default.session_variable, by_default.session_variable_len));
  label.set_number("KZ_MODE", data.kz_mode, by_default.kz_mode);
  label.set_number("USE_DEFAULT_SID", data.use_default_sid, by_default.use_default_sid);
  return label.text();
}

// Empty when all are at their defaults.
std::string system_variables_label(const KZCISystemVariables &vars) {
  const auto by_default = defaults_of(KZCISystemVariablesInit);
  Label settings(to_the_left);
  settings.set_number("SLOWSQL_THRESHOLD", vars.slowsql_threshold, by_default.slowsql_threshold);
  settings.set_number("SLOWSQL_BUFFER_SIZE", vars.slowsql_buffer_size,
                      by_default.slowsql_buffer_size);
  settings.set_number("SLOWSQL_FLUSH_SECOND", vars.slowsql_flush_second,
                      by_default.slowsql_flush_second);
  settings.set_text("SESSION_VARIABLE", text_of(vars.session_variable, vars.session_variable_len),
                    text_of(by_default.session_variable, by_default.session_variable_len));
  settings.set_text("LOG_LEVEL", text_of(vars.log_level, vars.log_level_len),
                    text_of(by_default.log_level, by_default.log_level_len));
  settings.set_number("LOG_SIZE", vars.log_size, by_default.log_size);
  settings.set_number("LOG_COUNT", vars.log_count, by_default.log_count);
  settings.set_text("LOG_PATH", text_of(vars.log_path, vars.log_path_len),
                    text_of(by_default.log_path, by_default.log_path_len));
  if (settings.empty()) return {};
  Label label(to_the_left);
  label.line("system variables");
  return label.text() + settings.text();
}

// Writes nodes and the edges that lead to them. A node is named after its place:
// s1_d1_l2_a3 is the third address of the second list.
class Graph {
 public:
  std::string text() const { return head + body_ + "}\n"; }

  void add(const KZCITnsService &service, const std::string &id) {
    Label label(centred);
    label.line(text_of(service.net_service_name, service.net_service_name_len));
    node(id, label.text(), service_colour);
    for_each_record(service.description, service.description_count, KZCIDescriptionNext,
                    [&](const KZCIDescription &des, ub4 number) { add(des, id, number); });
    note(id, "_v", system_variables_label(service.sys_vars));
  }

 private:
  void add(const KZCIDescription &des, const std::string &parent, ub4 number) {
    const std::string id = child(parent, "_d", number);
    node(id, description_label(des, number), description_colour);
    for_each_record(des.address_list, des.address_list_count, KZCIAddressListNext,
                    [&](const KZCIAddressList &list, ub4 place) { add(list, id, place); });
    if (des.connect_data != nullptr) note(id, "_c", connect_data_label(*des.connect_data));
  }

  void add(const KZCIAddressList &list, const std::string &parent, ub4 number) {
    const std::string id = child(parent, "_l", number);
    node(id, address_list_label(list, number), list_colour);
    const long double weights = weights_of(list);
    for_each_record(list.address, list.address_count, KZCIAddressNext,
                    [&](const KZCIAddress &address, ub4 place) {
                      node(child(id, "_a", place), address_label(address, weights), address_colour);
                    });
  }

  void node(const std::string &id, const std::string &label, const char *colour) {
    body_ += "  " + id + " [label=\"" + label + "\", fillcolor=\"" + colour + "\"];\n";
  }

  // The id of a child, after the edge that leads to it.
  std::string child(const std::string &parent, const char *kind, ub4 number) {
    std::string id = parent + kind + std::to_string(number);
    body_ += "  " + parent + " -> " + id + ";\n";
    return id;
  }

  // A note beside a node; none for an empty label.
  void note(const std::string &parent, const char *kind, const std::string &label) {
    if (label.empty()) return;
    const std::string id = parent + kind;
    body_ += "  " + parent + " -> " + id + " [style=dashed, arrowhead=none];\n";
    body_ += "  " + id + " [label=\"" + label + "\", shape=note, style=filled, fillcolor=\"" +
             note_colour + "\"];\n";
  }

  std::string body_;
};

}  // namespace

std::string tree_dot(const KZCITns &tns) {
  Graph graph;
  for_each_record(tns.tns_service, tns.tns_service_count, KZCITnsServiceNext,
                  [&](const KZCITnsService &service, ub4 number) {
                    graph.add(service, "s" + std::to_string(number));
                  });
  return graph.text();
}

}  // namespace kztns
