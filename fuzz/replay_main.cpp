// Replays a corpus through a target without the fuzzer: every file as it is, and
// cut off at every length up to a limit.
//
//   fuzz_replay_<target> FOLDER...
//
// Each file is replayed in a process of its own, so that a finding names the file
// and the length and does not hide the files after it.
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/support/target.h"

namespace {

namespace fs = std::filesystem;

constexpr std::size_t longest_cut = 300;

std::vector<fs::path> files_of(const fs::path &folder) {
  std::vector<fs::path> files;
  for (const fs::directory_entry &entry : fs::directory_iterator(folder))
    if (entry.is_regular_file()) files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  return files;
}

std::string contents_of(const fs::path &file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

void run_target(std::string_view input) {
  const auto copy = std::make_unique<std::uint8_t[]>(input.size());
  if (!input.empty()) std::memcpy(copy.get(), input.data(), input.size());
  LLVMFuzzerTestOneInput(copy.get(), input.size());
}

// Notes in *length what is being replayed.
void replay_contents(std::string_view contents, volatile std::size_t *length) {
  *length = contents.size();
  run_target(contents);
  for (std::size_t cut = 0; cut < std::min(contents.size(), longest_cut + 1); ++cut) {
    *length = cut;
    run_target(contents.substr(0, cut));
  }
}

// Where a child process notes what it is replaying.
volatile std::size_t *shared_length() {
  void *const memory =
      mmap(nullptr, sizeof(std::size_t), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (memory != MAP_FAILED) return static_cast<std::size_t *>(memory);
  std::perror("mmap");
  std::exit(EXIT_FAILURE);
}

bool replay(const fs::path &file, volatile std::size_t *length) {
  const std::string contents = contents_of(file);
  const pid_t child = fork();
  if (child == -1) {
    std::perror("fork");
    return false;
  }
  if (child == 0) {
    replay_contents(contents, length);
    std::exit(EXIT_SUCCESS);
  }
  int status = 0;
  waitpid(child, &status, 0);
  if (WIFEXITED(status) && WEXITSTATUS(status) == EXIT_SUCCESS) return true;
  std::fprintf(stderr, "finding in %s, the first %zu of %zu bytes\n", file.c_str(), *length,
               contents.size());
  return false;
}

}  // namespace

int main(int argc, char **argv) {
  volatile std::size_t *const length = shared_length();
  std::size_t replayed = 0;
  std::size_t failed = 0;
  for (int i = 1; i < argc; ++i) {
    for (const fs::path &file : files_of(argv[i])) {
      ++replayed;
      if (!replay(file, length)) ++failed;
    }
  }
  std::printf("%zu files replayed, %zu with findings\n", replayed, failed);
  return replayed > 0 && failed == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
