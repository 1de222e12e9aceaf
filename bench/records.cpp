// What is done with a built service: showing it, reading its link string.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "kzoci/oci_tnsname.h"
#include "rows.h"
#include "support/names_file.h"

namespace bench {

namespace {

constexpr std::string_view example_name = "sales";

// The example service, built for as long as the object lives.
class Example {
 public:
  Example() {
    look_up_in(KZOCI_EXAMPLE_NAMES_FILE);
    KZCITnsInit(&tns_);
    boolean find = 0;
    KZCITnsBuild(&tns_, reinterpret_cast<const OraText *>(example_name.data()),
                 static_cast<ub4>(example_name.size()), &find);
    if (find == 0) fail("the example names file has no " + std::string(example_name));
  }
  ~Example() { KZCITnsClear(&tns_); }
  Example(const Example &) = delete;
  Example &operator=(const Example &) = delete;

  KZCITnsService *service() const { return tns_.tns_service; }

 private:
  KZCITns tns_;
};

// A stream that discards what is written to it.
class NullStream {
 public:
  NullStream() : file_(std::fopen("/dev/null", "w")) {
    if (file_ == nullptr) fail("cannot open /dev/null");
  }
  ~NullStream() { std::fclose(file_); }
  NullStream(const NullStream &) = delete;
  NullStream &operator=(const NullStream &) = delete;

  FILE *file() const { return file_; }

 private:
  FILE *file_;
};

// The lines of the display, each by itself and without its end.
std::vector<std::string> displayed_lines(KZCITnsService *service) {
  char *text = nullptr;
  std::size_t size = 0;
  FILE *const file = ::open_memstream(&text, &size);
  const sword status = KZCITnsServiceDisplay(service, file);
  std::fclose(file);
  if (status != 0) fail("the example service cannot be displayed");
  std::vector<std::string> lines;
  for (std::string_view rest(text, size); !rest.empty();) {
    const std::size_t length = rest.find('\n');
    lines.emplace_back(rest.substr(0, length));
    rest.remove_prefix(length + 1);
  }
  std::free(text);
  return lines;
}

Costs display_costs() {
  const auto example = std::make_shared<Example>();
  const auto stream = std::make_shared<NullStream>();
  const auto display = [example, stream] {
    if (KZCITnsServiceDisplay(example->service(), stream->file()) != 0) fail("no display");
  };
  const auto print = [stream, lines = displayed_lines(example->service())] {
    for (const std::string &line : lines)
      std::fprintf(stream->file(), "%.*s\n", static_cast<int>(line.size()), line.data());
  };
  return {cost_of(repeat(display)), cost_of(repeat(print))};
}

Costs link_string_costs() {
  const auto example = std::make_shared<Example>();
  const auto read = [example] {
    char link[KZCI_DBLINK_SIZE];
    sb4 length = 0;
    if (KZCITnsServiceDblinkGet(example->service(), link, &length) != 0) fail("no link string");
    benchmark::DoNotOptimize(link[0]);
  };
  const auto format = [example] {
    const KZCIDescription &des = *example->service()->description;
    const KZCIAddress &address = *des.address_list->address;
    const KZCIConnectData &data = *des.connect_data;
    char link[KZCI_DBLINK_SIZE];
    const int length =
        std::snprintf(link, sizeof link, "%.*s:%.*s/%.*s", static_cast<int>(address.host_len),
                      address.host, static_cast<int>(address.port_len), address.port,
                      static_cast<int>(data.service_name_len), data.service_name);
    if (length <= 0) fail("no link string");
    benchmark::DoNotOptimize(link[0]);
  };
  return {cost_of(repeat(read)), cost_of(repeat(format))};
}

// What a session is opened with, against the bare copies of its two texts.
Costs session_costs() {
  const auto example = std::make_shared<Example>();
  const auto read = [example] {
    char info[KZCI_EXTRA_INFO_SIZE];
    char variable[KZCI_SESSION_VARIABLE_SIZE];
    sb4 info_length = 0;
    sb4 mode = 0;
    sb4 variable_length = 0;
    if (KZCITnsServiceExtraInfoGet(example->service(), info, &info_length, &mode, variable,
                                   &variable_length) != 0)
      fail("no session data");
    benchmark::DoNotOptimize(info[0]);
    benchmark::DoNotOptimize(variable[0]);
  };
  const auto copy = [example] {
    const KZCIConnectData &data = *example->service()->description->connect_data;
    char info[KZCI_EXTRA_INFO_SIZE];
    char variable[KZCI_SESSION_VARIABLE_SIZE];
    std::strncpy(info, data.user_extra_info, data.user_extra_info_len);
    std::strncpy(variable, data.session_variable, data.session_variable_len);
    benchmark::DoNotOptimize(info[0]);
    benchmark::DoNotOptimize(variable[0]);
  };
  return {cost_of(repeat(read)), cost_of(repeat(copy))};
}

}  // namespace

void add_record_rows() {
  add_row({.name = "display / one fprintf a line", .unit = "service", .setup = display_costs});
  add_row({.name = "link string / snprintf", .unit = "call", .setup = link_string_costs});
  add_row({.name = "session data / two strncpy", .unit = "call", .setup = session_costs});
}

}  // namespace bench
