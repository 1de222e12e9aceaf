// Ratios: each row of the benchmark is what one thing costs over what another
// costs, both measured in turn in one process, so that the machine's speed and
// most of its changes cancel out.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace bench {

// What the command line says.
struct Options {
  std::filesystem::path files;  // folder of the generated names files
  bool quick = false;           // fewer entries and shorter measurements
};

const Options &options();

// Prints on standard error what went wrong and ends the program: a figure of work
// that was not done is worse than none.
[[noreturn]] void fail(const std::string &what);

// Work that can be done any number of times in a row.
using Work = std::function<void(long times)>;

template <class Once>
Work repeat(Once once) {
  return [once](long times) {
    for (; times > 0; --times) once();
  };
}

// Nanoseconds of something, or bytes; every call measures anew.
using Cost = std::function<double()>;

// What one unit of the work costs, doing it once being so many units. The first
// call finds out how many times fill a measurement.
Cost cost_of(Work work, double units = 1);

struct Costs {
  Cost a;
  Cost b;
};

// Bounds of a ratio; 0: none.
struct Target {
  double must = 0;
  double goal = 0;
};

enum class Better { lower, higher };

// Rows of one group measure the same at several sizes. From any size to a larger
// one their ratios are to go up by no more than a factor.
struct Growth {
  std::string group = "";
  double size = 0;
  double must = 0;  // the factor; 0: no bound
};

struct Row {
  std::string name;              // reads as the ratio: "last of 100 / R"
  std::string unit;              // what a and b are of: "lookup", "entry"; "bytes": are bytes
  std::function<Costs()> setup;  // prepares the two; called before the first measurement
  Target target = {};
  Better better = Better::lower;  // higher: the ratio is that of throughputs, b over a
  Growth growth = {};
  int repetitions = 0;  // 0: as many as usual
};

void add_row(Row row);

// "1,000,000"
std::string with_commas(long number);

// Runs the rows that were added; the program's main function. add_rows is called
// once the options are known.
int run_rows(int argc, char **argv, const std::function<void()> &add_rows);

}  // namespace bench
