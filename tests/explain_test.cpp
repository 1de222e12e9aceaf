// Why a lookup leads nowhere, for programs: each outcome's record, field by field, its line,
// and that neither the program's platform nor its environment is touched.
#include "kzoci/explain.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <filesystem>
#include <latch>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "kzoci/oci_tnsname.h"
#include "kzoci/platform/memory.h"
#include "kzoci/platform/my_strtoll10.h"
#include "support/parsing.h"

extern char **environ;

// The platform that this program brings, for the module that it links.
static std::atomic<int> platform_calls = 0;
// A lookup that is refused leaves blocks allocated: they go all at once.
static std::set<void *> platform_blocks;

extern "C" {
void kzoci_log_inner(enum log_level, const char *, int, const char *, ...) { ++platform_calls; }

void *kzci_malloc(size_t size, const char *) {
  ++platform_calls;
  return *platform_blocks.insert(std::malloc(size)).first;
}

void kzci_free(void *pointer) {
  ++platform_calls;
  platform_blocks.erase(pointer);
  std::free(pointer);
}

sb8 my_strtoll10(const char *text, char **end, int *error) {
  ++platform_calls;
  *error = 0;
  return std::strtoll(text, end, 10);
}
}

namespace {

using std::string_literals::operator""s;

const std::string good =
    "(DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1)(WEIGHT = 2))(CONNECT_DATA = (SID = s)))\n";

constexpr char unknown_server[] = "DESCRIPTION/CONNECT_DATA: unknown key SERVER";
constexpr char server_remedy[] =
    "remove the item: nothing here depends on it (other readers of this file need it)";

struct Freed {
  void operator()(kzoci_explanation *explanation) const { kzoci_explanation_free(explanation); }
};
using Explanation = std::unique_ptr<kzoci_explanation, Freed>;

Explanation explained(const std::string &identifier, const char *path = nullptr) {
  // Of the exact size, so that a read after its end shows under the address sanitizer.
  const std::vector<char> bytes(identifier.begin(), identifier.end());
  kzoci_explanation *explanation = nullptr;
  const char *const data = bytes.empty() ? "" : bytes.data();
  EXPECT_EQ(kzoci_explain(data, bytes.size(), path, &explanation), 0);
  return Explanation(explanation);
}

std::string line_of(const std::string &identifier, const char *path, std::size_t size) {
  std::vector<char> line(size);
  EXPECT_EQ(
      kzoci_explain_line(identifier.data(), identifier.size(), path, line.data(), size, nullptr),
      0);
  EXPECT_EQ(line[std::string_view(line.data()).size()], '\0');
  return line.data();
}

std::string place_of(const kzoci_explanation &it) {
  return std::to_string(it.line) + ":" + std::to_string(it.column);
}

std::string entry_of(const kzoci_explanation &it) {
  return std::to_string(it.entry_line) + ":" + std::to_string(it.entry_column);
}

class Explain : public testing::Test {
 protected:
  void SetUp() override { platform_calls = 0; }
  void TearDown() override { EXPECT_EQ(platform_calls, 0); }

  // The file that the environment names from now on.
  std::string names_file(std::string_view text) {
    const std::string path = folder_.write("tnsnames.ora", text);
    environment_.set("TNS_ADMIN", folder_.path());
    return path;
  }

  std::string path(const std::string &name) const { return folder_.path() + "/" + name; }

  support::TemporaryFolder folder_;
  support::Environment environment_;
};

}  // namespace

TEST_F(Explain, Found) {
  const std::string path = names_file("other = " + good + "\nsales = " + good);
  const Explanation it = explained("sales");
  EXPECT_EQ(it->outcome, KZOCI_EXPLAIN_FOUND);
  EXPECT_EQ(it->is_literal, 0);
  EXPECT_EQ(it->message, "sales: found at " + path + ":3:1; the file is chosen by TNS_ADMIN");
  EXPECT_STREQ(it->identifier, "sales");
  EXPECT_EQ(it->file, path);
  EXPECT_STREQ(it->variable, "TNS_ADMIN");
  EXPECT_EQ(place_of(*it), "3:1");
  EXPECT_EQ(entry_of(*it), "3:1");
  EXPECT_STREQ(it->rule, "");
  EXPECT_STREQ(it->text, "");
  EXPECT_STREQ(it->remedy, "");
  EXPECT_STREQ(it->note, "");
  EXPECT_EQ(it->near_names, nullptr);
  EXPECT_EQ(it->near_names_count, 0u);
}

TEST_F(Explain, NotFound) {
  const std::string path = names_file("a = " + good + "Sales = " + good + "SALES = " + good);
  const Explanation it = explained("sales");
  const std::string first = "there is an entry \"Sales\" at 2:1, which differs only in case";
  const std::string second = "there is an entry \"SALES\" at 3:1, which differs only in case";
  EXPECT_EQ(it->outcome, KZOCI_EXPLAIN_NOT_FOUND);
  EXPECT_EQ(it->message, "sales: not found in \"" + path + "\"; " + first + "; " + second +
                             "; the file is chosen by TNS_ADMIN");
  EXPECT_EQ(it->file, path);
  EXPECT_EQ(place_of(*it), "0:0");
  EXPECT_EQ(entry_of(*it), "0:0");
  EXPECT_STREQ(it->rule, "");
  EXPECT_STREQ(it->text, "the file has no entry of that name");
  EXPECT_STREQ(it->remedy, "");
  ASSERT_EQ(it->near_names_count, 2u);
  EXPECT_STREQ(it->near_names[0].name, "Sales");
  EXPECT_EQ(it->near_names[0].line, 2u);
  EXPECT_EQ(it->near_names[0].column, 1u);
  EXPECT_EQ(it->near_names[0].text, first);
  EXPECT_STREQ(it->near_names[1].name, "SALES");
  EXPECT_EQ(it->near_names[1].text, second);
}

TEST_F(Explain, NotFoundAfterTheReservedEntry) {
  names_file("a = " + good + "KZCISYSTEMVARIABLES = (LOG_COUNT = 1)\nsales = " + good);
  const Explanation it = explained("sales");
  EXPECT_EQ(it->outcome, KZOCI_EXPLAIN_NOT_FOUND);
  EXPECT_EQ(place_of(*it), "2:1");
  EXPECT_EQ(entry_of(*it), "0:0");
  EXPECT_STREQ(it->text, "KZCISYSTEMVARIABLES is the reserved name: the entries after it are lost");
  ASSERT_EQ(it->near_names_count, 1u);
  EXPECT_STREQ(it->near_names[0].text,
               "there is an entry \"sales\" at 3:1, after the entry \"KZCISYSTEMVARIABLES\", where "
               "every lookup ends");
}

TEST_F(Explain, TellsOfTheReservedEntryOnlyWhereAnEntryIsLost) {
  names_file("sales = " + good + "KZCISYSTEMVARIABLES = (LOG_COUNT = 1)\n");
  const Explanation it = explained("salse");
  EXPECT_EQ(it->outcome, KZOCI_EXPLAIN_NOT_FOUND);
  EXPECT_EQ(place_of(*it), "0:0");
  EXPECT_STREQ(it->text, "the file has no entry of that name");
  EXPECT_EQ(std::string_view(it->message).find("KZCISYSTEMVARIABLES"), std::string_view::npos);
}

// The lookup's status is 0: the file ends before the block does.
TEST_F(Explain, TheLineTellsTheRuleThatEndedALookupOfStatusZero) {
  const std::string path =
      names_file("a = (DESCRIPTION = (ADDRESS = (HOST = h)(PORT = 1))\ngood = " + good);
  const Explanation it = explained("good");
  EXPECT_EQ(it->outcome, KZOCI_EXPLAIN_NOT_FOUND);
  EXPECT_STREQ(it->rule, "unclosed-block");
  EXPECT_STRNE(it->text, "");
  EXPECT_STRNE(it->remedy, "");
  EXPECT_EQ(it->message, "good: not found in \"" + path + "\"; " + path + ":" + place_of(*it) +
                             ": " + it->text + "; " + it->remedy +
                             " [unclosed-block]; there is an entry \"good\" at 2:1, which no "
                             "lookup reaches; the file is chosen by TNS_ADMIN");
}

TEST_F(Explain, Refused) {
  const std::string path =
      names_file("a = " + good + "sales =\n  (DESCRIPTION = (CONNECT_DATA = (SERVER = SHARED)))\n");
  const Explanation it = explained("sales");
  EXPECT_EQ(it->outcome, KZOCI_EXPLAIN_REFUSED);
  EXPECT_EQ(place_of(*it), "3:35");
  EXPECT_EQ(entry_of(*it), "2:1");
  EXPECT_STREQ(it->rule, "unknown-key");
  EXPECT_STREQ(it->text, unknown_server);
  EXPECT_STREQ(it->remedy, server_remedy);
  EXPECT_EQ(it->message, "sales: malformed: " + path + ":3:35: " + unknown_server + "; " +
                             server_remedy + " [unknown-key]; the file is chosen by TNS_ADMIN");
}

TEST_F(Explain, EndedBeforeTheEntry) {
  const std::string path = names_file("a = " + good + "stray text\nsales = " + good);
  const Explanation it = explained("sales");
  const std::string text =
      "\"stray\" is read as a name, but no \"=\" follows: the entries after it are lost";
  const std::string remedy = "remove it, or begin each line with \"#\"";
  EXPECT_EQ(it->outcome, KZOCI_EXPLAIN_ENDED_BEFORE);
  EXPECT_EQ(place_of(*it), "2:1");
  EXPECT_EQ(entry_of(*it), "0:0");
  EXPECT_STREQ(it->rule, "stray-text");
  EXPECT_EQ(it->text, text);
  EXPECT_EQ(it->remedy, remedy);
  EXPECT_EQ(it->message, "sales: malformed: " + path + ":2:1: " + text + "; " + remedy +
                             " [stray-text]; the file is chosen by TNS_ADMIN");
  ASSERT_EQ(it->near_names_count, 1u);
  EXPECT_STREQ(it->near_names[0].text,
               "there is an entry \"sales\" at 3:1, which no lookup reaches");
}

TEST_F(Explain, NoFile) {
  const Explanation it = explained("sales");
  EXPECT_EQ(it->outcome, KZOCI_EXPLAIN_NO_FILE);
  EXPECT_EQ(it->file, nullptr);
  EXPECT_EQ(it->variable, nullptr);
  EXPECT_EQ(place_of(*it), "0:0");
  EXPECT_STREQ(it->text, "none of KZCI_TNS_FILE, TNS_ADMIN and ORACLE_HOME is set");
  EXPECT_STREQ(it->message,
               "sales: not found: none of KZCI_TNS_FILE, TNS_ADMIN and ORACLE_HOME is set");
}

TEST_F(Explain, MissingFile) {
  environment_.set("ORACLE_HOME", folder_.path());
  const std::string file = path("network/admin/tnsnames.ora");
  const Explanation it = explained("sales");
  EXPECT_EQ(it->outcome, KZOCI_EXPLAIN_MISSING_FILE);
  EXPECT_EQ(it->file, file);
  EXPECT_STREQ(it->variable, "ORACLE_HOME");
  EXPECT_STREQ(it->text, "cannot be read: No such file or directory");
  EXPECT_EQ(it->message, "sales: not found: \"" + file +
                             "\" cannot be read: No such file or directory; the file is chosen "
                             "by ORACLE_HOME");
}

TEST_F(Explain, UnreadableFile) {
  const Explanation it = explained("sales", folder_.path().c_str());
  EXPECT_EQ(it->outcome, KZOCI_EXPLAIN_UNREADABLE_FILE);
  EXPECT_EQ(it->file, folder_.path());
  EXPECT_EQ(it->variable, nullptr);
  EXPECT_STREQ(it->text, "is a directory");
  EXPECT_EQ(it->message, "sales: \"" + folder_.path() + "\" is a directory");
}

TEST_F(Explain, TellsThatAPathIsCut) {
  const std::string fits = "/" + std::string(255, 'n');
  environment_.set("KZCI_TNS_FILE", fits);
  EXPECT_STREQ(explained("sales")->note, "");
  environment_.set("KZCI_TNS_FILE", fits + "x");
  const std::string note = "the path in KZCI_TNS_FILE is cut to 256 characters";
  const Explanation it = explained("sales");
  EXPECT_EQ(it->file, fits);
  EXPECT_EQ(it->note, note);
  EXPECT_NE(std::string_view(it->message).find("; " + note + ";"), std::string_view::npos)
      << it->message;
  // Of an identifier with a note of its own, after that.
  EXPECT_TRUE(std::string_view(explained("u/p@sales")->note).ends_with("\"@\"; " + note));
  EXPECT_STREQ(explained("sales", (fits + "x").c_str())->note, "");
  EXPECT_STREQ(explained(good)->note, "");
}

TEST_F(Explain, TellsThatAPathIsCutInItsSuffix) {
  environment_.set("TNS_ADMIN", "/" + std::string(242, 'n'));
  EXPECT_STREQ(explained("sales")->note, "");
  environment_.set("TNS_ADMIN", "/" + std::string(243, 'n'));
  const Explanation it = explained("sales");
  EXPECT_STREQ(it->note,
               "the path in TNS_ADMIN, with \"/tnsnames.ora\" after it, is cut to 256 characters");
}

// A cut path may lead to another file, or to what is no file.
TEST_F(Explain, TellsThatAPathIsCutWhateverItLeadsTo) {
  const std::string note =
      "; the path in KZCI_TNS_FILE is cut to 256 characters; the file is chosen";
  std::string folder = folder_.path() + "/";
  folder += std::string(128, '/');
  const std::string short_name(256 - folder.size(), 'n');
  const std::string path = folder_.write(short_name, "sales = " + good);
  environment_.set("KZCI_TNS_FILE", folder + short_name + ".ora");
  EXPECT_EQ(explained("sales")->outcome, KZOCI_EXPLAIN_FOUND);
  EXPECT_NE(std::string_view(explained("sales")->message).find(note), std::string_view::npos);
  EXPECT_NE(std::string_view(explained("other")->message).find(note), std::string_view::npos);
  std::filesystem::remove(path);
  std::filesystem::create_directory(path);
  EXPECT_EQ(explained("sales")->outcome, KZOCI_EXPLAIN_UNREADABLE_FILE);
  EXPECT_NE(std::string_view(explained("sales")->message).find(note), std::string_view::npos);
}

TEST_F(Explain, APipeIsNotWaitedFor) {
  ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);
  const Explanation it = explained("sales", path("pipe").c_str());
  EXPECT_EQ(it->outcome, KZOCI_EXPLAIN_UNREADABLE_FILE);
  EXPECT_STREQ(it->text, "is a pipe, which can be read only once");
}

TEST_F(Explain, AFileOfTooManyBytesIsNotRead) {
  const std::string file = folder_.write("large", "sales = " + good);
  std::filesystem::resize_file(file, 67108864);
  EXPECT_EQ(explained("sales", file.c_str())->outcome, KZOCI_EXPLAIN_FOUND);
  std::filesystem::resize_file(file, 67108865);
  const Explanation it = explained("sales", file.c_str());
  EXPECT_EQ(it->outcome, KZOCI_EXPLAIN_UNREADABLE_FILE);
  EXPECT_STREQ(it->text, "is larger than 67108864 bytes");
}

TEST_F(Explain, ALiteralThatIsBuilt) {
  environment_.set("KZCI_TNS_FILE", path("none"));
  const Explanation it = explained(good);
  EXPECT_EQ(it->outcome, KZOCI_EXPLAIN_FOUND);
  EXPECT_EQ(it->is_literal, 1);
  EXPECT_EQ(it->file, nullptr);
  EXPECT_EQ(it->variable, nullptr);
  EXPECT_EQ(place_of(*it), "0:0");
  EXPECT_STREQ(it->message, "literal descriptor: found");
}

TEST_F(Explain, ALiteralThatIsRefused) {
  const Explanation it = explained("(DESCRIPTION=(CONNECT_DATA=(SERVER=SHARED)))");
  EXPECT_EQ(it->outcome, KZOCI_EXPLAIN_REFUSED);
  EXPECT_EQ(it->is_literal, 1);
  EXPECT_EQ(it->file, nullptr);
  EXPECT_EQ(place_of(*it), "1:29");
  EXPECT_EQ(entry_of(*it), "0:0");
  EXPECT_STREQ(it->rule, "unknown-key");
  EXPECT_STREQ(it->text, unknown_server);
  EXPECT_STREQ(it->remedy, server_remedy);
  EXPECT_EQ(it->message, "literal descriptor: malformed: 1:29: "s + unknown_server + "; " +
                             server_remedy + " [unknown-key]");
}

TEST_F(Explain, TheFirstVariableChooses) {
  names_file("sales = " + good);
  environment_.set("KZCI_TNS_FILE", folder_.write("first", "other = " + good));
  const Explanation it = explained("sales");
  EXPECT_EQ(it->outcome, KZOCI_EXPLAIN_NOT_FOUND);
  EXPECT_STREQ(it->variable, "KZCI_TNS_FILE");
}

TEST_F(Explain, AGivenPathLeavesTheEnvironmentAlone) {
  names_file("other = " + good);
  environment_.set("KZCI_TNS_FILE", path("none"));
  const std::string given = folder_.write("given", "sales = " + good);
  std::vector<std::string> before;
  for (char **variable = environ; *variable != nullptr; ++variable) before.emplace_back(*variable);
  const Explanation it = explained("sales", given.c_str());
  EXPECT_EQ(it->outcome, KZOCI_EXPLAIN_FOUND);
  EXPECT_EQ(it->file, given);
  EXPECT_EQ(it->variable, nullptr);
  EXPECT_EQ(it->message, "sales: found at " + given + ":1:1");
  std::size_t count = 0;
  for (char **variable = environ; *variable != nullptr; ++variable)
    EXPECT_EQ(*variable, before.at(count++));
  EXPECT_EQ(count, before.size());
}

TEST_F(Explain, HidesAPassword) {
  names_file("sales = " + good);
  const Explanation it = explained("user/secret@sales");
  EXPECT_EQ(it->outcome, KZOCI_EXPLAIN_NOT_FOUND);
  EXPECT_STREQ(it->identifier, "user/***@sales");
  EXPECT_STREQ(it->note,
               "USER/PASSWORD@NAME is looked up as a name; give what comes after the \"@\"");
  EXPECT_TRUE(std::string_view(it->message).starts_with("user/***@sales: not found in "));
  for (const char *const text : {it->message, it->identifier, it->text, it->remedy, it->note})
    EXPECT_EQ(std::string_view(text).find("secret"), std::string_view::npos) << text;
  ASSERT_EQ(it->near_names_count, 1u);
  EXPECT_STREQ(it->near_names[0].name, "sales");
}

TEST_F(Explain, HidesPasswordsInOtherForms) {
  const std::string file = folder_.write("names", "sales = " + good);
  const char *const rows[][2] = {
      {"user:secret@h", "user:***@h"},        {"user:secret/secret@h", "user:***@h"},
      {"user/secret@secret@h", "user/***@h"}, {"user/secret", "user/***"},
      {"user/secret as admin", "user/***"},   {" user/secret", " user/***"},
      {"user:x/secret", "user:x/***"},        {"u1:/secret", "u1:/***"},
      {"user//secret", "user/***"},
  };
  for (const auto &row : rows) {
    const Explanation it = explained(row[0], file.c_str());
    EXPECT_STREQ(it->identifier, row[1]);
    EXPECT_EQ(std::string_view(it->message).find("secret"), std::string_view::npos) << it->message;
  }
}

TEST_F(Explain, ShowsWhatIsNoPassword) {
  const std::string file = folder_.write("names", "sales = " + good);
  for (const char *const identifier : {"h:1521/s", "[::1]:1521/s", "//h/s", "//h:1521/s",
                                       "tcps://h:1521/s", "user@sales", "user@sales/x", "h:1521"})
    EXPECT_STREQ(explained(identifier, file.c_str())->identifier, identifier);
}

TEST_F(Explain, WritesWhatIsUnseenAsEscapes) {
  const std::string file = folder_.write("line\nfeed",
                                         "s\x1b"
                                         "ales = " +
                                             good);
  const Explanation it = explained("sales\n", file.c_str());
  EXPECT_STREQ(it->identifier, "sales\\x0a");
  EXPECT_EQ(it->file, path("line\\x0afeed"));
  ASSERT_EQ(it->near_names_count, 1u);
  EXPECT_STREQ(it->near_names[0].name, "s\\x1bales");
  EXPECT_TRUE(std::string_view(it->message).starts_with("sales\\x0a: not found in \""));
  for (const char c : std::string_view(it->message)) EXPECT_GE(c, ' ');
}

TEST_F(Explain, GoesOnAfterAZeroByteLikeALookup) {
  const std::string file =
      folder_.write("names", "a = (DESCRIPTION = (ADDRESS = (HOST = \"x\0y\")))\nsales = "s + good);
  EXPECT_EQ(explained("sales", file.c_str())->outcome, KZOCI_EXPLAIN_FOUND);
}

TEST_F(Explain, AnEmptyFileAndAnEmptyName) {
  const std::string file = folder_.write("names", "");
  EXPECT_EQ(explained("", file.c_str())->outcome, KZOCI_EXPLAIN_NOT_FOUND);
  EXPECT_EQ(explained("", file.c_str())->message, "\"\": not found in \"" + file + "\"");
}

TEST_F(Explain, LineIsTheMessage) {
  const std::string file = folder_.write("names", "Sales = " + good);
  const std::string message = explained("sales", file.c_str())->message;
  EXPECT_EQ(line_of("sales", file.c_str(), message.size() + 1), message);
  EXPECT_EQ(line_of("sales", file.c_str(), message.size() + 2), message);
  EXPECT_EQ(line_of("sales", file.c_str(), message.size()), message.substr(0, message.size() - 1));
  EXPECT_EQ(line_of("sales", file.c_str(), 1), "");
}

TEST_F(Explain, LineIsCutBetweenCharacters) {
  const std::string euro = "\xE2\x82\xAC";
  const std::string full = "x" + euro + euro + ": not found";
  EXPECT_TRUE(line_of("x" + euro + euro, nullptr, 512).starts_with(full));
  const std::array<std::string, 9> cut = {"",
                                          "x",
                                          "x",
                                          "x",
                                          "x" + euro,
                                          "x" + euro,
                                          "x" + euro,
                                          "x" + euro + euro,
                                          "x" + euro + euro + ":"};
  for (std::size_t i = 0; i < cut.size(); ++i)
    EXPECT_EQ(line_of("x" + euro + euro, nullptr, i + 1), cut[i]) << i;
}

TEST_F(Explain, LineOfNoSizeTellsItsLength) {
  const std::string message = explained("sales")->message;
  char untouched = 'u';
  std::size_t length = 0;
  EXPECT_EQ(kzoci_explain_line("sales", 5, nullptr, &untouched, 0, &length), 0);
  EXPECT_EQ(untouched, 'u');
  EXPECT_EQ(length, message.size());
  char cut[8];
  EXPECT_EQ(kzoci_explain_line("sales", 5, nullptr, cut, sizeof cut, &length), 0);
  EXPECT_STREQ(cut, "sales: ");
  EXPECT_EQ(length, message.size());
}

TEST_F(Explain, RefusesArgumentsThatAreNoIdentifier) {
  char line[] = "untouched";
  std::size_t length = 7;
  auto *const untouched = reinterpret_cast<kzoci_explanation *>(line);
  kzoci_explanation *explanation = untouched;
  EXPECT_EQ(kzoci_explain(nullptr, 0, nullptr, &explanation), -2);
  EXPECT_EQ(kzoci_explain("sales", std::size_t{INT_MAX} + 1, nullptr, &explanation), -2);
  EXPECT_EQ(explanation, untouched);
  EXPECT_EQ(kzoci_explain("sales", 5, nullptr, nullptr), -2);
  EXPECT_EQ(kzoci_explain_line(nullptr, 5, nullptr, line, sizeof line, &length), -2);
  EXPECT_EQ(kzoci_explain_line("sales", 5, nullptr, nullptr, sizeof line, &length), -2);
  EXPECT_EQ(
      kzoci_explain_line("sales", std::size_t{INT_MAX} + 1, nullptr, line, sizeof line, &length),
      -2);
  EXPECT_STREQ(line, "untouched");
  EXPECT_EQ(length, 7u);
  kzoci_explanation_free(nullptr);
}

TEST_F(Explain, KeepsErrno) {
  errno = EADDRINUSE;
  const Explanation it = explained("sales", path("none").c_str());
  EXPECT_EQ(errno, EADDRINUSE);
  line_of("sales", path("none").c_str(), 100);
  EXPECT_EQ(errno, EADDRINUSE);
}

// What a program's own lookup does, with its own module and platform.
TEST_F(Explain, AgreesWithTheLookup) {
  struct Row {
    std::string identifier;
    std::string text;
  };
  const Row rows[] = {
      {"sales", "sales = " + good},
      {"sales", "a = " + good},
      {"sales", "KZCISYSTEMVARIABLES = (LOG_COUNT = 1)\nsales = " + good},
      {"KZCISYSTEMVARIABLES", "KZCISYSTEMVARIABLES = (LOG_COUNT = 1)\n"},
      {"sales", "sales = (DESCRIPTION = (SERVER = x))"},
      {"sales", ") sales = " + good},
      {"sales", "a = (x\nsales = " + good},
      {"sales", "a"},
      {"sales", ""},
      {"sales", "a\0b = "s + good + "sales = " + good},
      {good, ""},
      {good + ")", ""},
      {"(DESCRIPTION=", ""},
      {"(DESCRIPTION_LIST=" + good + ")", ""},
  };
  for (const Row &row : rows) {
    SCOPED_TRACE(row.identifier + "\n" + row.text);
    names_file(row.text);
    const Explanation it = explained(row.identifier);
    EXPECT_EQ(platform_calls, 0);
    KZCITns tns;
    KZCITnsInit(&tns);
    const support::Outcome built = support::build(tns, row.identifier);
    KZCITnsClear(&tns);
    for (void *const block : platform_blocks) std::free(block);
    platform_blocks.clear();
    EXPECT_GT(platform_calls, 0);
    platform_calls = 0;
    const bool failed =
        it->outcome == KZOCI_EXPLAIN_REFUSED || it->outcome == KZOCI_EXPLAIN_ENDED_BEFORE;
    EXPECT_EQ(built.status != 0, failed) << it->message;
    EXPECT_EQ(built.find != 0, it->outcome == KZOCI_EXPLAIN_FOUND) << it->message;
    EXPECT_EQ(*it->text == '\0', it->outcome == KZOCI_EXPLAIN_FOUND) << it->message;
  }
}

// Each thread has a file of its own, and sees what a single one sees.
TEST_F(Explain, ManyThreadsAtOnce) {
  const std::string texts[] = {"sales = " + good, "Sales = " + good,
                               "sales = (DESCRIPTION = (SERVER = x))", ") sales = " + good};
  constexpr int thread_count = 8;
  constexpr int rounds = 200;
  std::vector<std::string> files;
  std::vector<std::string> messages;
  for (int i = 0; i < thread_count; ++i) {
    files.push_back(folder_.write("names" + std::to_string(i), texts[i % 4]));
    messages.emplace_back(explained("sales", files.back().c_str())->message);
  }
  std::array<int, thread_count> surprises = {};
  std::latch start(thread_count);
  std::vector<std::thread> threads;
  for (std::size_t i = 0; i < thread_count; ++i)
    threads.emplace_back([&, i] {
      start.arrive_and_wait();
      for (int round = 0; round < rounds; ++round)
        surprises[i] += explained("sales", files[i].c_str())->message != messages[i];
    });
  for (std::thread &thread : threads) thread.join();
  EXPECT_EQ(surprises, (std::array<int, thread_count>{}));
}
