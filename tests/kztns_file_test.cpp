// Which names file the command reads, and what it makes of what stands there.
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "io/names_file.h"
#include "io/progress.h"
#include "io/read_file.h"
#include "support/parsing.h"
#include "trace/platform.h"

#include "kzoci/oci_tnsname.h"

namespace {

// The file that the library's log names.
class NamedFile : public kztns::LogListener {
 public:
  std::string name;

 private:
  void record(log_level, const char *format, std::va_list arguments) override {
    if (std::string_view(format) != "get configure file:%s") return;
    std::va_list again;
    va_copy(again, arguments);
    name = va_arg(again, const char *);
    va_end(again);
  }
};

std::string file_of_the_library() {
  NamedFile file;
  const kztns::Listening listening(file);
  KZCITns tns;
  boolean find = 0;
  KZCITnsInit(&tns);
  KZCITnsBuild(&tns, reinterpret_cast<const OraText *>("x"), 1, &find);
  KZCITnsClear(&tns);
  return file.name;
}

// What reading says; empty when all was read.
std::string fault_of(const std::string &path, std::uint64_t max_size = kztns::default_max_size) {
  kztns::ReadFault fault;
  return kztns::read_file(path, max_size, fault) ? "" : fault.text;
}

std::string make_socket(const std::string &path) {
  sockaddr_un address = {};
  address.sun_family = AF_UNIX;
  std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
  const int end = socket(AF_UNIX, SOCK_STREAM, 0);
  bind(end, reinterpret_cast<const sockaddr *>(&address), sizeof address);
  close(end);
  return path;
}

}  // namespace

TEST(FileChoice, IsThatOfTheLibrary) {
  const std::string lengths[] = {"", "/nowhere", "/" + std::string(250, 'd'),
                                 "/" + std::string(255, 'd'), "/" + std::string(256, 'd')};
  for (const std::string &value : lengths)
    for (const char *const variable : {"KZCI_TNS_FILE", "TNS_ADMIN", "ORACLE_HOME"}) {
      support::Environment environment;
      environment.set(variable, value);
      EXPECT_EQ(kztns::choose_file({})->path, file_of_the_library()) << variable << "=" << value;
      EXPECT_EQ(kztns::choose_file({})->variable, variable);
    }
}

TEST(FileChoice, TakesTheFirstVariableAndNoneWithoutAny) {
  support::Environment environment;
  EXPECT_FALSE(kztns::choose_file({}).has_value());
  environment.set("ORACLE_HOME", "/o");
  environment.set("TNS_ADMIN", "/t");
  EXPECT_EQ(kztns::choose_file({})->path, file_of_the_library());
  environment.set("KZCI_TNS_FILE", "");
  EXPECT_EQ(kztns::choose_file({})->variable, "KZCI_TNS_FILE");
  EXPECT_EQ(kztns::choose_file("given")->path, "given");
}

TEST(ReadFile, NamesTheKindOfWhatIsNoFile) {
  const support::TemporaryFolder folder;
  EXPECT_EQ(fault_of(folder.path()), "is a directory");
  EXPECT_EQ(fault_of("/dev/zero"), "is a character device");
  EXPECT_EQ(fault_of(make_socket(folder.path() + "/s")), "is a socket");
  EXPECT_EQ(fault_of("/dev/null"), "");
}

TEST(ReadFile, ThatIsNotThere) {
  kztns::ReadFault fault;
  EXPECT_FALSE(kztns::read_file("/nowhere/names", 1, fault).has_value());
  EXPECT_TRUE(fault.missing);
  EXPECT_EQ(fault.text, "cannot be read: No such file or directory");
}

TEST(ReadFile, UpToTheLimit) {
  const support::TemporaryFolder folder;
  for (const std::size_t limit : {1u, 65535u, 65536u, 65537u}) {
    const std::string path = folder.write("names", std::string(limit, 'x'));
    EXPECT_EQ(fault_of(path, limit + 1), "");
    EXPECT_EQ(fault_of(path, limit), "");
    EXPECT_EQ(fault_of(path, limit - 1),
              "is larger than " + std::to_string(limit - 1) + " bytes; --max-size allows more");
  }
}

// Each piece that is taken makes the file longer by a piece.
TEST(ReadFile, ThatGrowsEndsAtTheLimit) {
  const support::TemporaryFolder folder;
  const std::string piece(65536, 'x');
  const std::string path = folder.write("names", piece);
  std::uint64_t taken = 0;
  const auto fault = kztns::read_pieces(path, 1 << 20, [&](std::string_view bytes) {
    taken += bytes.size();
    std::FILE *const file = std::fopen(path.c_str(), "a");
    std::fwrite(piece.data(), 1, piece.size(), file);
    std::fclose(file);
    return true;
  });
  ASSERT_TRUE(fault.has_value());
  EXPECT_EQ(fault->text, "is larger than 1048576 bytes; --max-size allows more");
  EXPECT_EQ(taken, std::uint64_t{1} << 20);
}

TEST(ReadFile, OfAPipeThatIsWaitedFor) {
  const support::TemporaryFolder folder;
  const std::string path = folder.path() + "/pipe";
  ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
  std::thread writer([&] {
    std::FILE *const file = std::fopen(path.c_str(), "w");
    std::fputs("text", file);
    std::fclose(file);
  });
  kztns::ReadFault fault;
  EXPECT_EQ(kztns::read_file(path, 4, fault), "text");
  writer.join();
}

namespace {

std::string told(const std::function<void()> &run) {
  testing::internal::CaptureStderr();
  run();
  return testing::internal::GetCapturedStderr();
}

// Long enough for the line to be due, then places that come too early for another one.
void take_long(bool on_terminal) {
  kztns::Progress progress(200, on_terminal);
  progress.at(10);
  std::this_thread::sleep_for(std::chrono::milliseconds(1010));
  progress.at(50);
  progress.at(60);
}

}  // namespace

TEST(Progress, IsShownAfterASecondAndTakenAway) {
  EXPECT_EQ(told([] { take_long(true); }), "\rchecking:  25 %\r\x1b[K");
}

TEST(Progress, IsNotShownWithoutATerminal) {
  EXPECT_EQ(told([] { take_long(false); }), "");
}

TEST(Progress, ThatEndsSoonIsNotShown) {
  EXPECT_EQ(told([] { kztns::Progress(200, true).at(50); }), "");
}

TEST(ReadFile, BelowWhatIsNoFolderIsMissing) {
  const support::TemporaryFolder folder;
  const std::string path = folder.write("names", "") + "/names";
  kztns::ReadFault fault;
  EXPECT_FALSE(kztns::read_file(path, 1, fault).has_value());
  EXPECT_TRUE(fault.missing);
  EXPECT_EQ(fault.text, "cannot be read: Not a directory");
}

TEST(ReadFile, EndsWhereTheReaderHasEnough) {
  const support::TemporaryFolder folder;
  const std::string path = folder.write("names", std::string(200'000, 'x'));
  int pieces = 0;
  EXPECT_FALSE(kztns::read_pieces(path, 1 << 20, [&](std::string_view) { return ++pieces < 2; }));
  EXPECT_EQ(pieces, 2);
}
