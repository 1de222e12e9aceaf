#include "trace/build_trace.h"

#include <algorithm>

#include "kzoci/oci_tnsname/status.h"
#include "text/characters.h"
#include "text/words.h"

namespace kztns {
namespace {

KZCITnsTokenType token_argument(std::va_list &arguments) {
  return static_cast<KZCITnsTokenType>(va_arg(arguments, int));
}

}  // namespace

void Trace::begin(const KZCITnsParseParams &params) {
  params_ = &params;
  body_ = cursor_ = open_ = here();
  before_ = '=';
  top_ = ended_ = 0;
  frames_.assign(1, Frame{Block::entry, -1, -1});
  items_.clear();
  texts_.clear();
  fault_ = soft_fault_ = {};
  first_block_end_.reset();
}

Offset Trace::here() const {
  return static_cast<Offset>(params_->description_offset) - params_->buffer_len +
         params_->buffer_pos;
}

bool Trace::has_value_over_items() const {
  return std::any_of(items_.begin(), items_.end(), [&](const Item &item) {
    if (!item.has_value) return false;
    const std::string_view value = value_of(item);
    const std::size_t line = value.find('\n');
    return line != value.npos && value.find('(', line) != value.npos;
  });
}

std::string Trace::path(int frame) const {
  std::string path;
  for (; frame > 0; frame = frames_[static_cast<std::size_t>(frame)].parent) {
    if (!path.empty()) path.insert(path.begin(), '/');
    path.insert(0, opening_key(frames_[static_cast<std::size_t>(frame)].block));
  }
  return path;
}

void Trace::record(log_level, const char *format, std::va_list arguments) {
  const LogEvent event = event_of(format);
  if (event == LogEvent::other) return;
  if (event <= LogEvent::no_key_word)
    take_token(event, arguments);
  else if (event >= LogEvent::description_begins && event <= LogEvent::service_failed)
    take_block(event);
  else
    take_value_fault(event);
}

void Trace::take_token(LogEvent event, std::va_list arguments) {
  std::va_list again;
  va_copy(again, arguments);
  switch (event) {
    case LogEvent::key_read:
      key_read();
      break;
    case LogEvent::unexpected_token: {
      const KZCITnsTokenType expected = token_argument(again);
      unexpected(expected, token_argument(again));
      break;
    }
    case LogEvent::input_ended:
      input_ended();
      break;
    case LogEvent::key_unfinished:
      pass_to_token();
      fail(va_arg(again, int) == kzoci::tns::no_data ? FaultKind::key_unended
                                                     : FaultKind::key_too_long,
           cursor_);
      break;
    case LogEvent::key_word:
      begin_item(static_cast<KZCILBKeyType>(va_arg(again, int)));
      break;
    default:
      begin_item(LB_ERROR_KEY);
  }
  va_end(again);
}

void Trace::take_block(LogEvent event) {
  switch (event) {
    case LogEvent::description_begins:
      return begin_block(Block::description);
    case LogEvent::address_list_begins:
      return begin_block(Block::address_list);
    case LogEvent::address_begins:
      return begin_block(Block::address);
    case LogEvent::connect_data_begins:
      return begin_block(Block::connect_data);
    case LogEvent::blacklist_begins:
      return begin_block(Block::blacklist);
    case LogEvent::strategy_begins:
      return strategy_begins();
    case LogEvent::block_built:
      return end_block();
    case LogEvent::block_failed:
      return block_failed();
    default:
      if (fault_.kind == FaultKind::none) fault_ = soft_fault_;
      return fail(FaultKind::unexplained, here());
  }
}

void Trace::take_value_fault(LogEvent event) {
  switch (event) {
    case LogEvent::unknown_key:
      if (!is_system_variables()) fail(FaultKind::unknown_key, last_key());
      return;
    case LogEvent::not_description:
      return fail(FaultKind::not_description, last_key());
    case LogEvent::misplaced_key:
      return fail(FaultKind::misplaced_key, last_key());
    case LogEvent::bad_word:
      return fail(FaultKind::bad_word, last_value());
    case LogEvent::bad_number:
      return fail(FaultKind::bad_number, last_value());
    case LogEvent::text_refused:
      if (!items_.empty()) items_.back().dropped = items_.back().has_value;
      return;
    case LogEvent::second_address:
      return fail(FaultKind::second_address, last_key());
    case LogEvent::second_connect_data:
      return second_connect_data();
    case LogEvent::system_variables_begin:
      frames_[0].block = Block::system_variables;
      return;
    default:
      return;
  }
}

// From the end of the last key over everything that is no key.
void Trace::pass_to_token() {
  const std::string &text = text_;
  for (; cursor_ < text.size(); ++cursor_) {
    const char c = text[cursor_];
    if (c == '#') {
      cursor_ = end_of_comment(text, cursor_);
      if (cursor_ == text.size() || text[cursor_] == '\0') return;
    } else if (c == '(' || c == ')' || c == '=') {
      if (c == '(') open_ = cursor_;
      before_ = c;
    } else if (!is_blank(c)) {
      return;
    }
  }
}

void Trace::key_read() {
  pass_to_token();
  key_ = {cursor_, here()};
  cursor_ = key_.end;
  if (before_ == '=') take_value();
}

void Trace::begin_item(KZCILBKeyType type) {
  Item item = {};
  item.frame = top_;
  item.open = open_;
  item.key = key_;
  item.type = type;
  items_.push_back(item);
  top().keys.add(type);
  if (top_ > 0) frames_[static_cast<std::size_t>(top().parent)].inner_keys.add(type);
}

void Trace::take_value() {
  if (items_.empty() || items_.back().has_value) return;
  Item &item = items_.back();
  item.has_value = true;
  item.value = key_;
  item.text = static_cast<std::uint32_t>(texts_.size());
  item.text_length = params_->tns_key_len;
  texts_.append(params_->tns_key, params_->tns_key_len);
}

void Trace::begin_block(Block block) {
  frames_.push_back(Frame{block, top_, static_cast<int>(items_.size()) - 1});
  top_ = static_cast<int>(frames_.size()) - 1;
}

void Trace::strategy_begins() {
  const bool removes = !items_.empty() && items_.back().type == LB_REMOVE_STRATEGY;
  begin_block(removes ? Block::remove_strategy : Block::append_strategy);
}

void Trace::end_block() {
  ended_ = top_;
  top_ = std::max(top().parent, 0);
}

// A builder is content when the last token that it consumed is ")".
bool Trace::ends_block_well() const { return params_->tns_token_type == TNS_RIGHT_PARENTHESES; }

// The next item was expected, and does not come.
void Trace::expected_open(KZCITnsTokenType met) {
  const bool closed = ends_block_well();
  const bool in_entry = top_ == 0;
  const Offset at = here();
  if (!closed && in_entry) {
    fail(FaultKind::no_block, at, met);
  } else if (!closed) {
    fail(met == TNS_RIGHT_PARENTHESES ? FaultKind::empty_block : FaultKind::value_for_block, at,
         met);
  } else if (!in_entry) {
    if (met != TNS_RIGHT_PARENTHESES) fail(FaultKind::not_closed, at, met);
    if (top().parent == 0 && !first_block_end_) first_block_end_ = at + 1;
    // Addresses alone do not tell that they are built.
    if (top().block == Block::address) end_block();
  }
}

void Trace::unexpected(KZCITnsTokenType expected, KZCITnsTokenType met) {
  switch (expected) {
    case TNS_LEFT_PARENTHESES:
      return expected_open(met);
    case TNS_EQUAL_SIGN:
      return fail(FaultKind::missing_equal, here(), met);
    case TNS_RIGHT_PARENTHESES:
      return fail(ends_block_well() ? FaultKind::not_closed : FaultKind::value_goes_on, here(),
                  met);
    default:
      break;
  }
  // A key or a value was expected.
  if (params_->tns_token_type == TNS_LEFT_PARENTHESES)
    return fail(FaultKind::missing_key, here(), met);
  return fail(met == TNS_LEFT_PARENTHESES ? FaultKind::block_for_value : FaultKind::missing_value,
              here(), met);
}

void Trace::input_ended() {
  const bool closed = ends_block_well();
  const bool entry_is_over = closed && top_ == 0;
  if (!entry_is_over) fail(items_.empty() ? FaultKind::no_block : FaultKind::input_ended, here());
  if (closed && top().block == Block::address) end_block();
}

void Trace::block_failed() {
  if (top().block == Block::address) fail(FaultKind::bad_protocol, last_value());
  fail(FaultKind::unexplained, here());
  end_block();
}

// The block is built and then dropped, with all that it says.
void Trace::second_connect_data() {
  const Frame &dropped = frames_[static_cast<std::size_t>(ended_)];
  if (dropped.item < 0) return;
  fail(FaultKind::second_connect_data, items_[static_cast<std::size_t>(dropped.item)].key.begin);
  if (fault_.kind == FaultKind::second_connect_data) fault_.item = dropped.item;
  KeySet left;
  for (const Frame &frame : frames_)
    if (frame.parent == dropped.parent && &frame != &dropped) left.add(frame.keys);
  frames_[static_cast<std::size_t>(dropped.parent)].inner_keys = left;
}

// Only the first fault counts; what follows is its consequence. System variables
// get over a key that is missing.
void Trace::fail(FaultKind kind, Offset at, KZCITnsTokenType met) {
  const bool soft = is_system_variables() &&
                    (kind == FaultKind::missing_key || kind == FaultKind::block_for_value ||
                     kind == FaultKind::missing_value);
  Fault &fault = soft ? soft_fault_ : fault_;
  if (fault.kind != FaultKind::none) return;
  fault = {kind, at, met, top_, static_cast<int>(items_.size()) - 1, ends_block_well()};
  // What system variables do not get over after all is reported by what it was.
  if (!soft && soft_fault_.kind != FaultKind::none && soft_fault_.at == at) fault_ = soft_fault_;
}

}  // namespace kztns
