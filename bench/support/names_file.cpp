#include "support/names_file.h"

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "kzoci/oci_tnsname.h"
#include "support/parentheses.h"

namespace bench {

namespace {

// A lookup may come right after one in another file, so the variable is set
// before each measurement, outside its loop of lookups.
Work lookups(const std::filesystem::path &file, const std::string &name, bool expected) {
  return [file, name, expected](long times) {
    look_up_in(file);
    for (; times > 0; --times) look_up(name, expected);
  };
}

// As many opening as closing parentheses: the files are well-formed.
void count_file(const std::filesystem::path &path) {
  const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (file == -1) fail("cannot open " + path.string());
  static std::array<char, 65536> buffer;
  Parentheses total;
  for (ssize_t length; (length = ::read(file, buffer.data(), buffer.size())) > 0;)
    total += count_parentheses({buffer.data(), static_cast<std::size_t>(length)});
  ::close(file);
  if (total.opening == 0 || total.opening != total.closing)
    fail(path.string() + " is not what it should be");
}

}  // namespace

std::vector<long> file_sizes() {
  std::vector<long> sizes = {100, 1000, 10000, 100000};
  if (!options().quick) sizes.push_back(1000000);
  return sizes;
}

long largest_size() { return file_sizes().back(); }

std::filesystem::path names_file(long entries) {
  return options().files / ("names_" + std::to_string(entries) + ".ora");
}

std::filesystem::path service_file(long entries) {
  return options().files / ("service_" + std::to_string(entries) + ".conf");
}

std::string service_name(long index) {
  char name[32];
  std::snprintf(name, sizeof name, "svc%07ld", index);
  return name;
}

std::string last_service(long entries) { return service_name(entries - 1); }
std::string absent_service() { return service_name(9999999); }

void look_up_in(const std::filesystem::path &file) { ::setenv("KZCI_TNS_FILE", file.c_str(), 1); }

void look_up(const std::string &name, bool expected) {
  KZCITns tns;
  boolean find = 0;
  KZCITnsInit(&tns);
  const sword status = KZCITnsBuild(&tns, reinterpret_cast<const OraText *>(name.c_str()),
                                    static_cast<ub4>(name.size()), &find);
  if (status != 0 || (find != 0) != expected) fail("the lookup of " + name + " goes wrong");
  KZCITnsClear(&tns);
}

void read_stream(const std::filesystem::path &path) {
  FILE *const file = std::fopen(path.c_str(), "r");
  if (file == nullptr) fail("cannot open " + path.string());
  char buffer[1024];
  while (std::fread(buffer, 1, sizeof buffer, file) == sizeof buffer)
    benchmark::DoNotOptimize(buffer[0]);
  std::fclose(file);
}

Cost lookup_cost(const std::filesystem::path &file, const std::string &name, double units) {
  return cost_of(lookups(file, name, true), units);
}

Cost absent_cost(const std::filesystem::path &file) {
  return cost_of(lookups(file, absent_service(), false));
}

Cost read_cost(const std::filesystem::path &file, double units) {
  return cost_of(repeat([file] { read_stream(file); }), units);
}

Cost count_cost(const std::filesystem::path &file) {
  return cost_of(repeat([file] { count_file(file); }));
}

}  // namespace bench
