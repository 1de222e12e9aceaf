#include "support/written_entry.h"

#include <iterator>

namespace support {
namespace {

// A value or, without one, a block.
struct Node {
  std::string key;
  std::string value = {};
  std::vector<Node> items = {};
};

class Tree {
 public:
  Tree(Random &random, ForeignItems foreign)
      : random_(random), foreign_(foreign == ForeignItems::some) {}

  Node description() {
    Node node = {"DESCRIPTION"};
    if (random_.one_in(4)) node.items.push_back({"KZLB", "ON"});
    if (foreign_ && random_.one_in(3)) node.items.push_back({"LOAD_BALANCE", "yes"});
    add_addresses(node);
    if (random_.one_in(4)) node.items.push_back({"KZLB_CONNECT_TIMEOUT", "10"});
    if (random_.one_in(4)) node.items.push_back(blacklist());
    if (foreign_ && random_.one_in(4))
      node.items.push_back({"SECURITY", "", {{"SSL_SERVER_CERT_DN", "\"CN=a,O=(b)\""}}});
    node.items.push_back(connect_data());
    if (random_.one_in(6)) node.items.push_back({"KZLB_RETRY_TIMEOUT", "30"});
    return node;
  }

 private:
  void add_addresses(Node &description) {
    if (random_.one_in(3)) return description.items.push_back(address());
    for (std::size_t lists = random_.one_in(5) ? 2 : 1; lists > 0; --lists) {
      Node list = {"ADDRESS_LIST"};
      if (random_.one_in(4)) list.items.push_back({"KZLB_STRATEGY", "ROTATION"});
      for (std::size_t left = random_.between(1, 4); left > 0; --left)
        list.items.push_back(address());
      if (random_.one_in(5)) list.items.push_back({"KZLB", "OFF"});
      description.items.push_back(list);
    }
  }

  Node address() {
    Node node = {"ADDRESS"};
    if (!random_.one_in(4)) node.items.push_back({"PROTOCOL", "TCP"});
    node.items.push_back({"HOST", host()});
    node.items.push_back({"PORT", std::to_string(random_.between(1024, 9999))});
    if (random_.one_in(5)) node.items.push_back({"WEIGHT", "2"});
    return node;
  }

  std::string host() {
    const char *const hosts[] = {"db1.example.com", "10.0.0.7", "\"db (old) 2\"", "localhost"};
    return random_.pick(hosts);
  }

  Node connect_data() {
    Node node = {"CONNECT_DATA"};
    if (foreign_ && random_.one_in(2)) node.items.push_back({"SERVER", "DEDICATED"});
    node.items.push_back({random_.one_in(2) ? "SERVICE_NAME" : "SID", "orders"});
    if (random_.one_in(4)) node.items.push_back({"SESSION_VARIABLE", "\"autocommit=1\""});
    if (random_.one_in(5)) node.items.push_back({"KZ_MODE", "1"});
    if (foreign_ && random_.one_in(3))
      node.items.push_back({"FAILOVER_MODE", "", {{"TYPE", "SELECT"}, {"METHOD", "BASIC"}}});
    return node;
  }

  Node blacklist() {
    Node node = {"KZLB_BLACKLIST"};
    node.items.push_back({"REMOVE_STRATEGY", "", {{"NAME", "TIMEOUT"}, {"TIMEOUT", "20"}}});
    if (random_.one_in(2))
      node.items.push_back({"APPEND_STRATEGY", "", {{"NAME", "RETRYDURATION"}, {"DURATION", "5"}}});
    return node;
  }

  Random &random_;
  bool foreign_;
};

// How an entry is laid out.
struct Style {
  bool lines;             // blocks of blocks, an item a line
  bool leaves_on_lines;   // also blocks of values
  bool closing_on_lines;  // a ")" below the item that it closes
  bool blanks_at_equal;
  const char *indentation;  // a level
};

constexpr Style styles[] = {
    {false, false, false, true, ""},     // one line
    {false, false, false, false, ""},    // one line without blanks
    {true, false, true, true, "  "},     // the usual form
    {true, true, true, true, "  "},      // an item a line
    {true, false, false, true, "    "},  // all ")" at the last item
    {true, true, true, false, "\t"},     // tabs
    {true, false, true, true, ""},       // lines that are not indented
};

class Writer {
 public:
  Writer(Random &random, const Style &style) : random_(random), style_(style) {}

  WrittenText write(const std::string &name, const std::vector<Node> &blocks) {
    out_.text = name + equal();
    for (const Node &block : blocks) {
      if (style_.lines) new_line(1);
      write(block, 1);
    }
    if (random_.one_in(4)) out_.text += " # served since the move (see notes)";
    out_.text += '\n';
    return out_;
  }

 private:
  std::string equal() const { return style_.blanks_at_equal ? " = " : "="; }

  void new_line(std::size_t level) {
    if (random_.one_in(12)) out_.text += " # checked";
    out_.text += '\n';
    for (; level > 0; --level) out_.text += style_.indentation;
    // An entry's text may not begin a line: a name would.
    if (*style_.indentation == '\0') out_.text += ' ';
  }

  static bool holds_blocks(const Node &node) {
    for (const Node &item : node.items)
      if (!item.items.empty()) return true;
    return false;
  }

  void write(const Node &node, std::size_t level) {
    const std::size_t index = out_.items.size();
    out_.items.push_back({out_.text.size(), out_.text.size() + 1, 0});
    out_.text += '(' + node.key + equal() + node.value;
    const bool lines =
        style_.lines && !node.items.empty() && (holds_blocks(node) || style_.leaves_on_lines);
    for (const Node &item : node.items) {
      if (lines) new_line(level + 1);
      write(item, level + 1);
    }
    if (lines && style_.closing_on_lines) new_line(level);
    out_.items[index].close = out_.text.size();
    out_.text += ')';
  }

  Random &random_;
  const Style &style_;
  WrittenText out_;
};

}  // namespace

WrittenText random_written_entry(Random &random, const std::string &name, ForeignItems foreign) {
  Tree tree(random, foreign);
  std::vector<Node> blocks = {tree.description()};
  if (random.one_in(8)) blocks.push_back(tree.description());
  return Writer(random, random.pick(styles)).write(name, blocks);
}

}  // namespace support
