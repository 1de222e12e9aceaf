#include "foreign_files.h"

#include <algorithm>
#include <string_view>

namespace support {
namespace {

// An item with a value, or with items.
struct Part {
  std::string key;
  std::string value;
  std::vector<Part> parts = {};
};

constexpr const char *services[] = {"sales", "orders.example.com", "archive", "crm", "dwh_ro"};
constexpr const char *hosts[] = {"db1.example.com", "10.1.2.3", "dbhost", "scan-a.example.com"};
constexpr const char *ports[] = {"1521", "1522", "2881"};

Part address(Random &random, const std::string &protocol) {
  Part address = {"ADDRESS", "", {{"PROTOCOL", protocol}}};
  if (random.one_in(40)) address.parts.push_back({"COMMUNITY", "tcp.example.com"});
  address.parts.push_back({random.one_in(60) ? "HOSTNAME" : "HOST", random.pick(hosts)});
  address.parts.push_back({"PORT", random.pick(ports)});
  return address;
}

std::vector<Part> addresses(Random &random, const std::string &protocol) {
  std::vector<Part> all;
  if (random.one_in(30)) all.push_back({"ADDRESS", "", {{"PROTOCOL", "IPC"}, {"KEY", "local"}}});
  const std::size_t count = random.one_in(4) ? random.between(2, 3) : 1;
  for (std::size_t i = 0; i < count; ++i) all.push_back(address(random, protocol));
  return all;
}

Part connect_data(Random &random) {
  Part data = {"CONNECT_DATA", ""};
  if (!random.one_in(3))
    data.parts.push_back({"SERVER", random.one_in(8) ? "POOLED" : "DEDICATED"});
  const char *const key = random.one_in(40) ? "SERVICE" : random.one_in(4) ? "SID" : "SERVICE_NAME";
  data.parts.push_back({key, random.pick(services)});
  if (random.one_in(15)) data.parts.push_back({"INSTANCE_NAME", "one"});
  if (random.one_in(20))
    data.parts.push_back({"FAILOVER_MODE", "", {{"TYPE", "SELECT"}, {"METHOD", "BASIC"}}});
  if (random.one_in(40)) data.parts.push_back({"HS", "OK"});
  return data;
}

// Items of a description that only other readers know, as a rule.
void add_settings(Random &random, std::vector<Part> &parts) {
  struct Setting {
    std::size_t one_in;
    const char *key;
    const char *value;
  };
  constexpr Setting settings[] = {{7, "LOAD_BALANCE", "ON"},
                                  {12, "LOAD_BALANCE", "yes"},
                                  {7, "FAILOVER", "ON"},
                                  {8, "CONNECT_TIMEOUT", "10"},
                                  {15, "RETRY_COUNT", "3"},
                                  {15, "RETRY_DELAY", "3"},
                                  {15, "SDU", "8192"},
                                  {20, "ENABLE", "BROKEN"},
                                  {25, "SOURCE_ROUTE", "NO"},
                                  {25, "RECV_BUF_SIZE", "65536"},
                                  {20, "TRANSPORT_CONNECT_TIMEOUT", "3"}};
  for (const Setting &setting : settings)
    if (random.one_in(setting.one_in)) parts.push_back({setting.key, setting.value});
}

Part description(Random &random) {
  const bool encrypted = random.one_in(25);
  Part description = {"DESCRIPTION", ""};
  add_settings(random, description.parts);
  std::vector<Part> all = addresses(random, encrypted ? "TCPS" : "TCP");
  if (random.one_in(2))
    description.parts.push_back({"ADDRESS_LIST", "", std::move(all)});
  else
    description.parts.insert(description.parts.end(), all.begin(), all.end());
  description.parts.push_back(connect_data(random));
  if (encrypted)
    description.parts.push_back({"SECURITY", "", {{"SSL_SERVER_CERT_DN", "\"CN=db\""}}});
  return description;
}

Part entry_body(Random &random) {
  if (random.one_in(60)) return address(random, "TCP");
  if (!random.one_in(20)) return description(random);
  Part list = {"DESCRIPTION_LIST", ""};
  if (random.one_in(2)) list.parts.push_back({"LOAD_BALANCE", "OFF"});
  const std::size_t count = random.between(1, 2);
  for (std::size_t i = 0; i < count; ++i) list.parts.push_back(description(random));
  return list;
}

// How an author writes items down.
struct Hand {
  bool lines;     // blocks on lines of their own
  bool closings;  // and their ")", too
  bool small;     // keys in small letters
  std::string equal;
  std::string indentation;
  bool remarks;  // comments at the ends of lines
};

Hand random_hand(Random &random) {
  constexpr const char *equals[] = {" = ", "=", " =", "= "};
  constexpr const char *indentations[] = {"  ", "    ", "\t", " "};
  Hand hand = {};
  hand.lines = !random.one_in(4);
  hand.closings = hand.lines && random.one_in(2);
  hand.small = random.one_in(8);
  hand.equal = random.pick(equals);
  hand.indentation = random.pick(indentations);
  hand.remarks = hand.lines && random.one_in(8);
  return hand;
}

std::string in_small(std::string word) {
  for (char &c : word)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  return word;
}

void new_line(const Hand &hand, std::size_t depth, std::string &text) {
  if (!hand.lines) return;
  if (hand.remarks && text.size() % 7 == 0) text += " # as agreed";
  text += '\n';
  for (std::size_t i = 0; i < depth; ++i) text += hand.indentation;
}

void write(const Part &part, const Hand &hand, std::size_t depth, std::string &text) {
  text += '(' + (hand.small ? in_small(part.key) : part.key) + hand.equal + part.value;
  bool has_blocks = false;
  for (const Part &inner : part.parts) {
    const bool breaks = part.key.starts_with("DESC") || part.key == "ADDRESS_LIST" ||
                        (hand.closings && part.key == "CONNECT_DATA");
    has_blocks = has_blocks || breaks;
    if (breaks) new_line(hand, depth + 1, text);
    write(inner, hand, depth + 1, text);
  }
  if (has_blocks && hand.closings) new_line(hand, depth, text);
  text += ')';
}

void replace_first(std::string &text, std::string_view from, std::string_view to) {
  const std::size_t at = text.find(from);
  if (at != std::string::npos) text.replace(at, from.size(), to);
}

// A fault of somebody who types: in the entry's text, after its name.
void add_fault(Random &random, std::string &text) {
  struct Slip {
    const char *right;
    const char *wrong;
  };
  constexpr Slip slips[] = {{"HOST", "HSOT"},
                            {"SERVICE_NAME", "SERVICE_NMAE"},
                            {"PORT", "PRT"},
                            {"CONNECT_DATA", "CONECT_DATA"},
                            {"DEDICATED)", "DEDICATED)(COLOR=red)"},
                            {"TCP)", "TPC)"},
                            {"sales)", "sales prod)"},
                            {"sales)", "sales #1)"},
                            {"sales)", ")"},
                            {"1521)", "1521)(WEIGHT=2x)"},
                            {"1521)", "1521)(WEIGHT=5 s)"},
                            {"(CONNECT_DATA", "(KZLB=YES)(CONNECT_DATA"},
                            {"(CONNECT_DATA", "(SID=other)(CONNECT_DATA"},
                            {"(SERVICE_NAME", "()(SERVICE_NAME"},
                            {"(SERVICE_NAME", "(KZLB_READ_TIMEOUT=5)(SERVICE_NAME"},
                            {"(PORT", "\xC2\xA0(PORT"},
                            {"(HOST", "(\xC2\xA0HOST"},
                            {"dbhost)", "\"dbhost)"},
                            {"))", ")"},
                            {"))", ")))"},
                            {"10.1.2.3", "<host>"},
                            {"=", " "}};
  const Slip &slip = random.pick(slips);
  replace_first(text, slip.right, slip.wrong);
}

// An entry with its names, and what stands before it.
void add_entry(Random &random, std::size_t number, const Hand &hand, bool faulty,
               ForeignFile &file) {
  if (random.one_in(3)) file.text += random.one_in(2) ? "\n# production\n" : "\n";
  std::string body;
  write(entry_body(random), hand, 1, body);
  if (faulty) add_fault(random, body);
  if (faulty && random.one_in(15)) body = "dbhost:1521/sales";
  const std::string name = "NAME" + std::to_string(number);
  file.names.push_back(name);
  file.text += name;
  if (random.one_in(25)) {
    file.names.push_back(name + ".example.com");
    file.text += ", " + file.names.back();
  }
  file.text += " =";
  if (hand.lines) file.text += "\n" + hand.indentation;
  file.text += body + "\n";
}

std::string with_carriage_returns(const std::string &text) {
  std::string lines;
  for (const char c : text) {
    if (c == '\n') lines += '\r';
    lines += c;
  }
  return lines;
}

}  // namespace

ForeignFile random_foreign_file(Random &random) {
  ForeignFile file;
  const Hand hand = random_hand(random);
  const std::size_t count = random.between(1, 9);
  std::vector<bool> faulty(count, false);
  if (random.one_in(3))
    for (std::size_t faults = random.between(1, 3); faults > 0; --faults)
      faulty[random.below(count)] = true;
  if (random.one_in(2)) file.text += "# names of our databases\n";
  for (std::size_t i = 0; i < count; ++i) {
    if (random.one_in(60)) file.text += "IFILE = /etc/more.ora\n";
    add_entry(random, i, hand, faulty[i], file);
  }
  if (random.one_in(5)) file.text = with_carriage_returns(file.text);
  return file;
}

}  // namespace support
