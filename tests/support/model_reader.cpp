#include "model_reader.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "model_blocks.h"
#include "model_words.h"

namespace model {
namespace {

constexpr std::string_view reserved_name = "KZCISYSTEMVARIABLES";
constexpr std::string_view literal_beginning = "(DESCRIPTION=";

// Reads one service.
class Reader {
 public:
  Reader(std::string_view text, Log log, Source source, Memory &memory, Prediction &out)
      : text_(text), log_(log), blocks_(text, log, source, memory), memory_(memory), out_(out) {}

  void look_up(std::string_view name);
  void read_literal();

 private:
  Step expect(Kind kind) { return blocks_.input().expect(kind); }
  std::string_view word() { return blocks_.input().word(); }
  bool is_closed() { return blocks_.input().last() == Kind::close; }

  bool allocate(std::size_t size);
  Step is_description();
  Step description(Service &service);
  Step setting(Service &service);
  Step block(Service &service, bool reserved);
  Step blocks(Service &service, bool &one_complete);
  sword build_service();
  sword build_entry(std::string_view name);
  Step skip_body(bool &stop);
  Step skip_entry(std::string_view name, bool &stop);
  Step scan(std::string_view name, bool &built);
  Step literal_body(Service &service);
  void build_literal();
  void log_names_file();
  void log_not_found(std::string_view name);
  void give(const Service &service, const std::string &block);
  sword lose(const Service &service, Step step);

  std::string_view text_;
  Log log_;
  BlockReader blocks_;
  Memory &memory_;
  Prediction &out_;
};

bool Reader::allocate(std::size_t size) {
  if (memory_.allocate()) return true;
  log_.error("malloc tns_service error, malloc size:", size);
  return false;
}

void Reader::give(const Service &service, const std::string &block) {
  log_.debug("success to build tns_service, description count:", service.descriptions.size());
  log_.debug("succ to call KZCITnsServiceBuild, service number:1");
  out_.status = 0;
  out_.find = 1;
  out_.tree = text_of(service);
  out_.live.push_back(block);
  append_blocks_below(service, out_.live);
}

sword Reader::lose(const Service &service, Step step) {
  log_.error("something error in build tns service, status:", status_of(step));
  append_blocks_below(service, memory_.lost);
  return -1;
}

Step Reader::is_description() {
  log_.debug("bulid_tns_service get key_type ", blocks_.type());
  if (blocks_.key() == "DESCRIPTION") return Step::good;
  log_.error("expect LB_DESCRIPTION:1 but get ", blocks_.type());
  return Step::wrong;
}

Step Reader::description(Service &service) {
  const Step step = blocks_.description(service);
  if (step != Step::good) log_.error("fail to build description, status:", status_of(step));
  return step;
}

// In the reserved entry an unknown or missing key is no fault.
Step Reader::setting(Service &service) {
  blocks_.key_word();
  Step step = expect(Kind::equal);
  if (step != Step::good) return step;
  step = blocks_.variable(service.variables);
  if (step != Step::good)
    log_.error("fail to call KZCISystemVariablesBuild, status:", status_of(step));
  return step;
}

// "(" KEY "=" value ")"
Step Reader::block(Service &service, bool reserved) {
  Step step = expect(Kind::open);
  if (step != Step::good) return step;
  if (reserved) {
    step = setting(service);
  } else {
    step = blocks_.key_word();
    if (step == Step::good) step = expect(Kind::equal);
    if (step == Step::good) step = is_description();
    if (step == Step::good) step = description(service);
  }
  return step == Step::good ? expect(Kind::close) : step;
}

// Blocks up to the first that is not good; whether there is a good one.
Step Reader::blocks(Service &service, bool &one_complete) {
  const bool reserved = stands_for(word(), reserved_name);
  if (reserved) log_.debug("parse system variables");
  Step step = block(service, reserved);
  while (step == Step::good) {
    one_complete = true;
    step = block(service, reserved);
  }
  return step;
}

// The blocks of an entry, its name being the word at hand.
sword Reader::build_service() {
  log_.debug("call KZCITnsServiceBuild with params [tns:PTR], [parse_params:PTR]");
  const std::size_t size = sizeof(KZCITnsService) + word().size();
  if (!allocate(size)) return -1;
  Service service;
  service.name = copied_as_string(word());
  bool one_complete = false;
  const Step step = blocks(service, one_complete);
  if (!one_complete || !is_closed()) return lose(service, step);
  give(service, block_of(size, "KZCITnsServiceBuild"));
  return 0;
}

sword Reader::build_entry(std::string_view name) {
  log_.debug("find tns service, dbname:", printed(name));
  const sword status = build_service();
  if (status != 0) log_.error("fail to call KZCITnsServiceBuild, status:", status);
  return status;
}

// The reserved entry, or one named by a leading part of its name, stops the lookup.
Step Reader::skip_body(bool &stop) {
  const std::string compared = std::string(reserved_name) + '\0';
  const std::string_view name = word().substr(0, compared.size());
  stop = compared.compare(0, name.size(), name) == 0;
  if (stop) return Step::good;
  const Step opened = expect(Kind::open);
  if (opened != Step::good) return opened;
  return blocks_.input().skip_block() ? Step::good : Step::end;
}

// The log has as much of the words held as the name sought is long.
Step Reader::skip_entry(std::string_view name, bool &stop) {
  const std::string_view held = blocks_.input().held();
  log_.debug("dbname is not equal to tns_service, dbname:", printed(name),
             ", key:", printed(held.substr(0, name.size())));
  const Step step = skip_body(stop);
  if (step != Step::good) log_.error("fail to call KZCITnsServiceSkip, status:", status_of(step));
  return step;
}

// The same length and the same characters, up to a zero byte.
bool same_name(std::string_view sought, std::string_view name) {
  return sought.size() == name.size() && printed(sought) == printed(name);
}

Step Reader::scan(std::string_view name, bool &built) {
  for (bool stop = false; !stop && !built;) {
    Step step = expect(Kind::word);
    if (step == Step::good) step = expect(Kind::equal);
    if (step != Step::good) return step;
    built = same_name(name, word());
    if (built)
      out_.status = build_entry(name);
    else
      step = skip_entry(name, stop);
    if (step != Step::good) return step;
  }
  return Step::good;
}

void Reader::log_names_file() {
  const char *const file = std::getenv("KZCI_TNS_FILE");
  log_.debug("get KZCI_TNS_FILE:", file == nullptr ? "" : file);
  log_.debug("get configure file:", file == nullptr ? "" : file);
}

void Reader::log_not_found(std::string_view name) {
  log_.debug("fail to find tns service, dbname:", printed(name));
}

void Reader::look_up(std::string_view name) {
  log_names_file();
  bool built = false;
  const Step step = scan(name, built);
  if (built) return;
  if (step == Step::end) log_not_found(name);
  out_.status = step == Step::wrong ? -1 : 0;
}

// The body, its ")" and only blanks and comments after it.
Step Reader::literal_body(Service &service) {
  Step step = description(service);
  if (step == Step::good) step = expect(Kind::close);
  if (step != Step::good) return step;
  return blocks_.input().skip_space() == Step::end ? Step::good : Step::wrong;
}

void Reader::build_literal() {
  Service service;
  service.name = word();
  const std::size_t size = sizeof(KZCITnsService) + service.name.size();
  const Step step = allocate(size) ? literal_body(service) : Step::wrong;
  if (step == Step::good)
    give(service, block_of(size, "KZCITnsBuildDes"));
  else
    lose(service, step);
}

// "(" DESCRIPTION "=" body
void Reader::read_literal() {
  log_.debug("call KZCITnsBuildDes with params [tns:PTR, ", printed(text_), "]");
  Step step = expect(Kind::open);
  if (step == Step::good) step = blocks_.key_word();
  if (step == Step::good) step = expect(Kind::equal);
  out_.status = step == Step::end ? 0 : -1;
  if (step == Step::end) log_not_found(text_);
  if (step == Step::good && is_description() == Step::good) build_literal();
}

// The first characters other than blanks decide.
bool is_literal(std::string_view identifier) {
  std::string first;
  for (const char c : identifier)
    if (c != ' ' && c != '\t' && c != '\n' && c != '\r' && first.size() < literal_beginning.size())
      first += c;
  return first.size() == literal_beginning.size() && stands_for(first, literal_beginning);
}

// What is lost is allocated still.
Prediction with_blocks(Prediction prediction, Memory memory) {
  prediction.allocations = memory.allocations;
  Blocks &live = prediction.live, &lost = prediction.lost;
  lost = std::move(memory.lost);
  live.insert(live.end(), lost.begin(), lost.end());
  std::sort(live.begin(), live.end());
  std::sort(lost.begin(), lost.end());
  return prediction;
}

}  // namespace

Prediction predict_literal(std::string_view text, const Fault &fault, Lines *log) {
  Prediction prediction;
  Memory memory = {.failing = fault.allocation};
  Reader(text.substr(0, fault.input_end), Log(log), Source::literal, memory, prediction)
      .read_literal();
  return with_blocks(std::move(prediction), std::move(memory));
}

Prediction predict(std::string_view identifier, std::string_view names_file, const Fault &fault,
                   Lines *log) {
  Log(log).debug("call KZCITnsBuild with params [tns:PTR]");
  if (is_literal(identifier))
    return predict_literal(identifier, {.allocation = fault.allocation}, log);
  Prediction prediction;
  Memory memory = {.failing = fault.allocation};
  Reader(names_file.substr(0, fault.input_end), Log(log), Source::file, memory, prediction)
      .look_up(identifier);
  return with_blocks(std::move(prediction), std::move(memory));
}

}  // namespace model
