// What the module's builders do with one entry, with positions: its items, and
// the first fault. Found by listening to the log with an eye on the parse state.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "text/names_text.h"
#include "trace/key_words.h"
#include "trace/log_records.h"
#include "trace/platform.h"

namespace kztns {

// Key words, by their types.
class KeySet {
 public:
  void add(KZCILBKeyType type) { bits_ |= bit(type); }
  void add(const KeySet &other) { bits_ |= other.bits_; }
  bool has(KZCILBKeyType type) const { return (bits_ & bit(type)) != 0; }

 private:
  static std::uint64_t bit(KZCILBKeyType type) { return std::uint64_t{1} << type; }
  static_assert(LB_MAX_KEY_TYPE <= 64);
  std::uint64_t bits_ = 0;
};

// An opened block; the first one is the entry itself.
struct Frame {
  Block block;
  int parent;  // index of the block around it; -1 for the entry
  int item;    // index of the item that opened it; -1 for the entry
  KeySet keys = {};
  KeySet inner_keys = {};  // of the blocks in it
};

// "(" KEY "=" value, as far as it was read.
struct Item {
  int frame;
  Offset open;  // its "("
  Span key;
  KZCILBKeyType type;
  bool has_value = false;
  bool dropped = false;  // the text was too long
  Span value;
  std::uint32_t text = 0;  // of the value without quotes: index in the trace's texts
  std::uint32_t text_length = 0;
};

enum class FaultKind {
  none,
  no_block,         // the entry's value does not begin with "("
  empty_block,      // "(KEY=)" where a block is expected
  value_for_block,  // another token where a block is expected
  not_closed,       // between items: neither "(" nor ")"
  missing_key,      // after "("
  missing_equal,    // after a key
  missing_value,    // "(KEY=)"
  block_for_value,
  value_goes_on,  // after a value something else than ")"
  unknown_key,
  misplaced_key,
  not_description,
  bad_protocol,
  bad_word,
  bad_number,
  second_address,
  second_connect_data,
  input_ended,   // inside a block
  key_unended,   // inside a key or its quotes
  key_too_long,  // for what has been read
  unexplained
};

struct Fault {
  FaultKind kind = FaultKind::none;
  Offset at = 0;
  KZCITnsTokenType met = TNS_ERROR_TYPE;
  int frame = 0;
  int item = -1;         // the last item begun; -1 for none
  bool between = false;  // after a complete item
};

// One build's trace. Used again for the next one, it allocates nothing.
class Trace : public LogListener {
 public:
  explicit Trace(const std::string &text) : text_(text) {}

  // Begins anew, for a parse that is after an entry's "=".
  void begin(const KZCITnsParseParams &params);

  // Of the whole file, or of an entry alone.
  std::string_view text() const { return text_; }
  const Fault &fault() const { return fault_; }
  const std::vector<Item> &items() const { return items_; }
  const std::vector<Frame> &frames() const { return frames_; }
  bool is_system_variables() const { return frames_[0].block == Block::system_variables; }

  // Where the parse began.
  Offset body() const { return body_; }

  // The end of the entry's first block, after its ")"; absent when it was not
  // reached.
  const std::optional<Offset> &first_block_end() const { return first_block_end_; }

  // The place of the parse.
  Offset here() const;

  std::string_view value_of(const Item &item) const {
    return std::string_view(texts_).substr(item.text, item.text_length);
  }
  std::string_view key_word_of(const Item &item) const { return slice(item.key); }

  // Whether a value takes in what follows on other lines, since its quotes are closed by those of
  // a later item. Such a value is not intended.
  bool has_value_over_items() const;

  // The grammar's row of an item's key; null for one that has no place in its block.
  const Key *row_of(const Item &item) const {
    return kzoci::tns::key_of(frames_[static_cast<std::size_t>(item.frame)].block, item.type);
  }
  std::string_view slice(Span span) const {
    return std::string_view(text_).substr(span.begin, span.end - span.begin);
  }

  // "DESCRIPTION/CONNECT_DATA"; empty for the entry.
  std::string path(int frame) const;

 private:
  void record(log_level level, const char *format, std::va_list arguments) override;
  void take_token(LogEvent event, std::va_list arguments);
  void take_block(LogEvent event);
  void take_value_fault(LogEvent event);

  void key_read();
  void pass_to_token();
  void begin_item(KZCILBKeyType type);
  void take_value();

  void begin_block(Block block);
  void end_block();
  void strategy_begins();
  bool ends_block_well() const;
  void expected_open(KZCITnsTokenType met);
  void unexpected(KZCITnsTokenType expected, KZCITnsTokenType met);
  void input_ended();
  void block_failed();
  void second_connect_data();
  void fail(FaultKind kind, Offset at, KZCITnsTokenType met = TNS_ERROR_TYPE);

  Frame &top() { return frames_[static_cast<std::size_t>(top_)]; }
  Offset last_key() const { return items_.empty() ? here() : items_.back().key.begin; }
  Offset last_value() const {
    return items_.empty() || !items_.back().has_value ? here() : items_.back().value.begin;
  }

  const std::string &text_;
  const KZCITnsParseParams *params_ = nullptr;
  Offset body_ = 0;
  Offset cursor_ = 0;  // after the last key
  Offset open_ = 0;    // the last "(" before the current key
  char before_ = '=';  // the last of "(", ")" and "=" before it
  Span key_;           // the current key
  int top_ = 0;
  int ended_ = 0;  // the block that ended last
  std::vector<Frame> frames_;
  std::vector<Item> items_;
  std::string texts_;
  Fault fault_;
  Fault soft_fault_;  // one that system variables may get over
  std::optional<Offset> first_block_end_;
};

}  // namespace kztns
