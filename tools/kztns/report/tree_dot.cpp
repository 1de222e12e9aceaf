#include "report/tree_dot.h"

#include <cstdio>
#include <string_view>

#include "report/tree_walk.h"
#include "text/escape.h"

namespace kztns {
namespace {

using kzoci::tns::Block;
using kzoci::tns::Key;
using kzoci::tns::ValueKind;

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
  // The fields of a block that are not at their defaults; of switches and strategies all.
  void fields(Block block, const void *record) {
    for_each_field(block, [&](const Key &key) {
      if (key.value.kind == ValueKind::word || !is_default(key, record)) field(key, record);
    });
  }
  void field(const Key &key, const void *record) { setting(key.word, value_text(key, record)); }

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

// What the label of an address says of it in words of its own, and PROTOCOL, of which
// there is only one.
bool is_in_address_line(const Key &key) {
  return key.type == LB_HOST || key.type == LB_PORT || key.type == LB_WEIGHT ||
         key.type == LB_PROTOCOL;
}

std::string address_label(const KZCIAddress &address, long double weights) {
  const auto or_none = [](const char *text, ub4 length, const char *none) {
    return length == 0 ? std::string(none) : std::string(text, length);
  };
  Label label(centred);
  label.line(or_none(address.host, address.host_len, "(no host)") + ":" +
             or_none(address.port, address.port_len, "(no port)"));
  label.line("weight " + std::to_string(address.weight) +
             (weights > 0 ? ", " + percent(static_cast<long double>(address.weight), weights)
                          : std::string()));
  for_each_field(Block::address, [&](const Key &key) {
    if (!is_in_address_line(key) && !is_default(key, &address)) label.field(key, &address);
  });
  return label.text();
}

std::string address_list_label(const KZCIAddressList &list, ub4 number) {
  Label label(to_the_left);
  label.line(numbered("address list", number));
  label.fields(Block::address_list, &list);
  return label.text();
}

// A strategy's name with what belongs to it, if any of that is not at its default.
void add_strategy(Label &label, Block strategy, const char *key_word,
                  const KZCIBlacklistConf &conf) {
  bool by_default = true;
  for_each_field(strategy, [&](const Key &key) { by_default &= is_default(key, &conf); });
  if (by_default) return;
  for_each_field(strategy, [&](const Key &key) {
    if (key.type == LB_NAME)
      label.setting(key_word, value_text(key, &conf));
    else
      label.line("  " + std::string(key.word) + " = " + value_text(key, &conf));
  });
}

void add_blacklist(Label &label, const KZCIBlacklistConf &conf) {
  label.fields(Block::blacklist, &conf);
  for (const Key &key : kzoci::tns::grammar)
    if (key.block == Block::blacklist && key.value.kind == ValueKind::block)
      add_strategy(label, key.value.opens, key.word, conf);
}

std::string description_label(const KZCIDescription &des, ub4 number) {
  Label label(to_the_left);
  label.line(numbered("description", number));
  label.fields(Block::description, &des);
  add_blacklist(label, des.black_list_conf);
  return label.text();
}

std::string connect_data_label(const KZCIConnectData &data) {
  Label label(to_the_left);
  label.line("connect data");
  label.fields(Block::connect_data, &data);
  return label.text();
}

// Empty when all are at their defaults.
std::string system_variables_label(const KZCISystemVariables &vars) {
  Label settings(to_the_left);
  settings.fields(Block::system_variables, &vars);
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
    label.line({service.net_service_name, service.net_service_name_len});
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
                    graph.add(service, std::to_string(number).insert(0, 1, 's'));
                  });
  return graph.text();
}

}  // namespace kztns
