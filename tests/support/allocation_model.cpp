#include "allocation_model.h"

#include <cctype>
#include <string_view>
#include <utility>

#include "model_input.h"

namespace support {
namespace {

enum class Kind { service, description, list, address, data };

// A record that is being built, with the blocks that have joined it.
struct OpenRecord {
  Kind kind;
  Block block;
  std::vector<Block> below = {};
  bool has_list = false;
  bool has_data = false;
};

void append(std::vector<Block> &to, const std::vector<Block> &more) {
  to.insert(to.end(), more.begin(), more.end());
}

std::string upper(std::string text) {
  for (char &c : text) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return text;
}

class Model {
 public:
  Model(const Sample &sample, const Harm &harm) : sample_(sample), harm_(harm) {}

  Prediction run(std::string_view entry) {
    model::Input input(entry);
    for (bool goes_on = true; goes_on;) {
      const model::Kind before = input.last();
      if (input.next() != model::Step::good) break;
      const model::Kind kind = input.last();
      if (kind == model::Kind::word) item_key_ = before == model::Kind::open;
      if (kind == model::Kind::open) item_records_.push_back(0);
      if (kind == model::Kind::close) end_item();
      if (kind == model::Kind::equal) goes_on = begin_value(std::string(input.word()));
    }
    closed_ = input.last() == model::Kind::close;
    finish();
    return std::move(result_);
  }

 private:
  bool in_file() const { return sample_.source == Source::file; }

  // Behind "=": opens the records of the block, if it has any. False when there is
  // no memory for one.
  bool begin_value(const std::string &word) {
    if (open_.empty()) return begin_service(word);
    if (reserved_ || !item_key_ || item_records_.empty()) return true;
    const Kind parent = open_.back().kind;
    const std::string name = upper(word);
    if (parent == Kind::service && name == "DESCRIPTION") return open(Kind::description);
    if (parent == Kind::list && name == "ADDRESS") return open(Kind::address);
    if (parent != Kind::description) return true;
    if (name == "ADDRESS_LIST") return open(Kind::list);
    if (name == "CONNECT_DATA") return open(Kind::data);
    // A bare address has a list of its own, and may only be the first.
    if (name == "ADDRESS" && !open_.back().has_list) return open(Kind::list) && open(Kind::address);
    return true;
  }

  bool begin_service(const std::string &name) {
    if (in_file()) {
      const std::string reserved_name = "KZCISYSTEMVARIABLES";
      reserved_ = reserved_name.compare(0, name.size(), upper(name)) == 0;
      return open_block(Kind::service,
                        {"KZCITnsServiceBuild", sizeof(KZCITnsService) + name.size()});
    }
    if (upper(name) != "DESCRIPTION") return true;
    return open_block(Kind::service, {"KZCITnsBuildDes", sizeof(KZCITnsService) + name.size()}) &&
           open(Kind::description);
  }

  bool open(Kind kind) {
    ++item_records_.back();
    switch (kind) {
      case Kind::description:
        return open_block(kind, {"KZCIDescription", sizeof(KZCIDescription)});
      case Kind::list:
        return open_block(kind, {"address_list", sizeof(KZCIAddressList)});
      case Kind::address:
        return open_block(kind, {"address", sizeof(KZCIAddress)});
      default:
        return open_block(kind, {"KZCIConnectData", sizeof(KZCIConnectData)});
    }
  }

  bool open_block(Kind kind, const Block &block) {
    if (++result_.allocations == harm_.allocation) return false;
    open_.push_back({kind, block});
    return true;
  }

  void end_item() {
    if (item_records_.empty()) return;
    // A second CONNECT_DATA ends its description as well, in front of the ")".
    if (item_records_.back() > 0 && second_data()) {
      join_parent();
      item_records_.pop_back();
    }
    for (; item_records_.back() > 0; --item_records_.back()) join_parent();
    item_records_.pop_back();
    if (open_.size() == 1 && item_records_.empty()) one_completed_ = true;
  }

  bool second_data() const {
    return open_.size() > 1 && open_.back().kind == Kind::data && open_[open_.size() - 2].has_data;
  }

  // The innermost record joins the one around it. Second connect data are released.
  void join_parent() {
    const bool released = second_data();
    const OpenRecord child = std::move(open_.back());
    open_.pop_back();
    if (released) return;
    OpenRecord &parent = open_.back();
    parent.has_list = parent.has_list || child.kind == Kind::list;
    parent.has_data = parent.has_data || child.kind == Kind::data;
    parent.below.push_back(child.block);
    append(parent.below, child.below);
  }

  bool only_blanks_behind() const {
    return in_file() || model::Input(sample_.rest).skip_space() == model::Step::end;
  }

  void finish() {
    const bool has_service = !open_.empty() || result_.allocations > 0;
    const bool content = closed_;
    while (content && open_.size() > 1) join_parent();
    if (content && one_completed_ && only_blanks_behind() && !open_.empty()) {
      result_.outcome = {0, 1};
      result_.kept = {open_.back().block};
      append(result_.kept, open_.back().below);
      return;
    }
    for (const OpenRecord &record : open_) append(result_.lost, record.below);
    result_.outcome = {has_service ? -1 : 0, 0};
  }

  const Sample &sample_;
  const Harm &harm_;
  Prediction result_;
  std::vector<OpenRecord> open_;
  std::vector<int> item_records_;  // For each open parenthesis, the records it opened.
  bool closed_ = false;            // Whether a ")" is the last token.
  bool item_key_ = false;          // Whether the last key stands behind a "(".
  bool reserved_ = false;
  bool one_completed_ = false;
};

}  // namespace

Prediction predict(const Sample &sample, const Harm &harm) {
  const std::size_t front = sample.before.size();
  if (sample.source == Source::file && harm.input_end <= front) return {{0, 0}};
  std::string entry = sample.entry;
  if (sample.source == Source::file && harm.input_end - front < entry.size())
    entry.resize(harm.input_end - front);
  Prediction result = Model(sample, harm).run(entry);
  // Without a record, a whole input fails for reasons of its own.
  if (result.allocations == 0 && entry == sample.entry) result.outcome = sample.outcome;
  return result;
}

}  // namespace support
