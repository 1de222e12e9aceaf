// Writes generated names files for tests that are not in C++: 0.ora, 1.ora and so on.
//
//   write_foreign_files FOLDER COUNT
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include "foreign_files.h"

int main(int argc, char **argv) {
  if (argc != 3) return EXIT_FAILURE;
  const std::string folder = argv[1];
  const unsigned long count = std::strtoul(argv[2], nullptr, 10);
  for (unsigned long seed = 0; seed < count; ++seed) {
    support::Random random(seed);
    std::ofstream file(folder + "/" + std::to_string(seed) + ".ora", std::ios::binary);
    if (!(file << support::random_foreign_file(random).text)) {
      std::fprintf(stderr, "cannot write in %s\n", folder.c_str());
      return EXIT_FAILURE;
    }
  }
  return EXIT_SUCCESS;
}
