// The command's words: texts as they are shown, key words, log records, how far the work is.
#include <pty.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <string>
#include <thread>
#include <utility>

#include <gtest/gtest.h>

#include "io/progress.h"
#include "lookup/lookup_failure.h"
#include "rules/diagnosis.h"
#include "text/names_text.h"
#include "text/utf_16.h"
#include "trace/key_words.h"
#include "trace/log_records.h"
#include "trace/log_watch.h"

using namespace std::string_view_literals;

TEST(VisibleText, KeepsEveryCharacterThatCanBeSeen) {
  for (const std::string_view text :
       {"\xC2\xA1"sv, "\xDF\xBF"sv, "\xE0\xA0\x80"sv, "\xED\x9F\xBF"sv, "\xEE\x80\x80"sv,
        "\xE2\x80\x8A"sv, "\xE2\x80\x90"sv, "\xEF\xBB\xBE"sv, "\xF0\x90\x80\x80"sv,
        "\xF1\x80\x80\x80"sv, "\xF4\x8F\xBF\xBF"sv})
    EXPECT_EQ(kztns::visible(text), text);
}

TEST(VisibleText, EscapesWhatIsNoCharacter) {
  const std::pair<std::string_view, std::string_view> texts[] = {
      {"\x80", "\\x80"},                             // no first byte
      {"\xC1\xBF", "\\xc1\\xbf"},                    // overlong
      {"\xE0\x9F\xBF", "\\xe0\\x9f\\xbf"},           // overlong
      {"\xF0\x8F\xBF\xBF", "\\xf0\\x8f\\xbf\\xbf"},  // overlong
      {"\xED\xA0\x80", "\\xed\\xa0\\x80"},           // a surrogate
      {"\xF4\x90\x80\x80", "\\xf4\\x90\\x80\\x80"},  // after the last character
      {"\xF5\x80\x80\x80", "\\xf5\\x80\\x80\\x80"},  // no first byte
      {"\xC3x", "\\xc3x"},                           // a second byte that is none
      {"\xE2\x82x", "\\xe2\\x82x"},                  // a third
      {"\xF0\x90\x80", "\\xf0\\x90\\x80"}};          // the end
  for (const auto &[text, shown] : texts) EXPECT_EQ(kztns::visible(text), shown);
}

TEST(VisibleText, EscapesInvisibleCharacters) {
  const std::pair<std::string_view, std::string_view> texts[] = {
      {"\xC2\x80", "\\xc2\\x80"},
      {"\xC2\x9F", "\\xc2\\x9f"},
      {"\xC2\xA0", "\\xc2\\xa0"},
      {"\xE2\x80\x8B", "\\xe2\\x80\\x8b"},
      {"\xE2\x80\x8F", "\\xe2\\x80\\x8f"},
      {"\xD8\x9C", "\\xd8\\x9c"},           // the bidirectional controls
      {"\xE2\x80\xAA", "\\xe2\\x80\\xaa"},  //
      {"\xE2\x80\xAE", "\\xe2\\x80\\xae"},  //
      {"\xE2\x81\xA6", "\\xe2\\x81\\xa6"},  //
      {"\xE2\x81\xA9", "\\xe2\\x81\\xa9"},  //
      {"\xE2\x80\xA8", "\\xe2\\x80\\xa8"},  // line and paragraph separator
      {"\xE2\x80\xA9", "\\xe2\\x80\\xa9"},  //
      {"\n\r\t\x1B\x7F", "\\x0a\\x0d\\x09\\x1b\\x7f"},
      {"\xEF\xBF\xBF", "\\xef\\xbf\\xbf"}};
  for (const auto &[text, shown] : texts) EXPECT_EQ(kztns::visible(text), shown);
}

// What looks like an escape is reported from one.
TEST(VisibleText, EscapesABackslashOnlyBeforeTheLettersOfAnEscape) {
  const std::pair<std::string_view, std::string_view> texts[] = {
      {"C:\\x\\n", "C:\\x\\n"},  {"\\x4", "\\x4"},
      {"\\x4g", "\\x4g"},        {"\\X41", "\\X41"},
      {"\\xAB", "\\xAB"},        {"\\x41", "\\x5cx41"},
      {"\\\\x41", "\\\\x5cx41"}, {"\\x5cx41", "\\x5cx5cx41"},
      {"\\\xFF", "\\\\xff"}};
  for (const auto &[text, shown] : texts) {
    EXPECT_EQ(kztns::visible(text), shown);
    EXPECT_EQ(kztns::valid_utf8(text), shown);
  }
}

TEST(Excerpt, EndsInFrontOfACharacterOfAnyLength) {
  for (const std::string_view character : {"\xC3\xA4"sv, "\xE2\x82\xAC"sv, "\xF0\x9F\x90\x98"sv})
    for (std::size_t left = 1; left < character.size(); ++left) {
      const std::string before(40 - left, 'x');
      EXPECT_EQ(kztns::excerpt(before + std::string(character) + "yyyy"), before + "...");
    }
  // Bytes that continue no character are cut anywhere.
  EXPECT_EQ(kztns::excerpt(std::string(50, '\x80')).substr(37 * 4), "...");
}

TEST(Utf16, IsToldByItsFirstTwoBytes) {
  EXPECT_TRUE(
      kztns::is_utf_16("\xFF\xFE"
                       "a\0"sv));
  EXPECT_TRUE(kztns::is_utf_16("\xFE\xFF\0a"sv));
  EXPECT_FALSE(kztns::is_utf_16("\xFF"));
  EXPECT_FALSE(kztns::is_utf_16("a"));
  EXPECT_FALSE(kztns::is_utf_16(""));
}

TEST(OddCharacter, IsTheFirstThatNobodySees) {
  EXPECT_EQ(kztns::odd_character("name"), "");
  EXPECT_EQ(kztns::odd_character("a\fb"), "\f");
  EXPECT_EQ(kztns::odd_character("a\x7F"), "\x7F");
  EXPECT_EQ(kztns::odd_character("\xE3\x80\x80x"), "\xE3\x80\x80");
  EXPECT_EQ(kztns::odd_character("\xA0x"), "\xA0");
  EXPECT_EQ(kztns::odd_character("x\xA0"), "\xA0");
  EXPECT_EQ(kztns::odd_character("\xC3\xA0"), "");  // the end of a letter
}

TEST(KeyWords, HaveTheirPlaces) {
  EXPECT_EQ(kztns::places_of(LB_ADDRESS), "DESCRIPTION or ADDRESS_LIST");
  EXPECT_EQ(kztns::places_of(LB_RETRY_TIMES), "APPEND_STRATEGY");
  EXPECT_EQ(kztns::places_of(LB_DESCRIPTION), "an entry itself");
  EXPECT_EQ(kztns::places_of(LB_LOG_SIZE), "KZCISYSTEMVARIABLES");
  EXPECT_EQ(kztns::places_of(LB_ERROR_KEY), "");
}

TEST(KeyWords, OpenBlocks) {
  EXPECT_EQ(kztns::opening_key(kztns::Block::connect_data), "CONNECT_DATA");
  EXPECT_EQ(kztns::opening_key(kztns::Block::blacklist), "KZLB_BLACKLIST");
  EXPECT_EQ(kztns::opening_key(kztns::Block::entry), "");
}

TEST(KeyWords, TakeTheWordsOfTheirBlock) {
  const auto choices = [](kztns::Block block, KZCILBKeyType type) {
    return kztns::choices(*kzoci::tns::key_of(block, type));
  };
  EXPECT_EQ(choices(kztns::Block::description, LB_KZLB), (std::vector{"ON"sv, "OFF"sv}));
  EXPECT_EQ(choices(kztns::Block::remove_strategy, LB_NAME), std::vector{"TIMEOUT"sv});
  EXPECT_EQ(choices(kztns::Block::append_strategy, LB_NAME), std::vector{"RETRYDURATION"sv});
  EXPECT_TRUE(choices(kztns::Block::address, LB_HOST).empty());
}

// As the library reads them: the first word that begins with the value.
TEST(KeyWords, AreReadWhenTheyAreAbbreviated) {
  const auto read_as = [](KZCILBKeyType type, std::string_view value) {
    return kztns::word_read_as(*kzoci::tns::key_of(kztns::Block::description, type), value);
  };
  EXPECT_EQ(read_as(LB_KZLB, "OFF"), "OFF");
  EXPECT_EQ(read_as(LB_KZLB, "of"), "OFF");
  EXPECT_EQ(read_as(LB_KZLB, "o"), "ON");
  EXPECT_EQ(read_as(LB_KZLB, ""), "ON");
  EXPECT_EQ(read_as(LB_KZLB, "OFFS"), "");
  EXPECT_EQ(read_as(LB_CONNECT_DATA, "ON"), "");
}

TEST(LogRecords, AreRecognisedByTheAddressOfTheirFormat) {
  for (const kzoci::tns::MessageRow &row : kzoci::tns::messages) {
    EXPECT_EQ(kztns::message_of(row.format), row.id) << row.name;
    const std::string same_text = row.format;
    EXPECT_EQ(kztns::message_of(same_text.c_str()), std::nullopt) << row.name;
  }
  EXPECT_EQ(kztns::message_of("%s"), std::nullopt);
}

TEST(Failure, WithoutAFaultIsToldInTheLogsWords) {
  kztns::Lookup lookup = {};
  lookup.outcome = kztns::Outcome::malformed;
  lookup.fault = "some words\n";
  EXPECT_EQ(kztns::describe_failure(lookup, {}), "malformed: some words\\x0a");
}

namespace {

// Standard error is a terminal for the time of its life.
class ErrorTerminal {
 public:
  ErrorTerminal() {
    int terminal = -1;
    if (openpty(&far_end_, &terminal, nullptr, nullptr, nullptr) != 0) return;
    std::fflush(stderr);
    before_ = dup(STDERR_FILENO);
    dup2(terminal, STDERR_FILENO);
    close(terminal);
  }
  ~ErrorTerminal() { restore(); }

  bool works() const { return before_ != -1; }

  // What was printed; standard error is what it was.
  std::string printed() {
    std::fflush(stderr);
    std::fputs("END", stderr);
    std::string text;
    std::array<char, 256> buffer = {};
    while (text.find("END") == std::string::npos) {
      const ssize_t count = read(far_end_, buffer.data(), buffer.size());
      if (count <= 0) break;
      text.append(buffer.data(), static_cast<std::size_t>(count));
    }
    restore();
    return text.substr(0, text.find("END"));
  }

 private:
  void restore() {
    if (before_ == -1) return;
    dup2(before_, STDERR_FILENO);
    close(before_);
    close(far_end_);
    before_ = -1;
  }

  int far_end_ = -1;
  int before_ = -1;
};

}  // namespace

TEST(Progress, IsToldAfterASecondAndRemoved) {
  ErrorTerminal terminal;
  ASSERT_TRUE(terminal.works());
  {
    kztns::Progress progress(200);
    std::this_thread::sleep_for(std::chrono::milliseconds(1050));
    progress.at(199);
  }
  EXPECT_EQ(terminal.printed(), "\rchecking:  99 %\r\x1b[K");
}

TEST(Progress, IsNotToldOfShortWork) {
  ErrorTerminal terminal;
  ASSERT_TRUE(terminal.works());
  {
    kztns::Progress progress(0);
    progress.at(0);
  }
  EXPECT_EQ(terminal.printed(), "");
}

TEST(Utf16, BecomesUtf8) {
  const auto little = [](std::u16string_view units) {
    std::string text = "\xFF\xFE";
    for (const char16_t unit : units) {
      text += static_cast<char>(unit & 0xFF);
      text += static_cast<char>(unit >> 8);
    }
    return text;
  };
  EXPECT_EQ(kztns::utf_8_of_utf_16(little(u"a\u00E4\u20AC\U0001F418")),
            "a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x90\x98");
  // Halves of a character alone, at the end, too.
  const std::string none = "\xEF\xBF\xBD";
  const char16_t low_first[] = {0xDC00, u'a', 0};
  const char16_t high_alone[] = {0xD800, u'b', 0xD800, 0};
  EXPECT_EQ(kztns::utf_8_of_utf_16(little(low_first)), none + "a");
  EXPECT_EQ(kztns::utf_8_of_utf_16(little(high_alone)), none + "b" + none);
  // Half a unit at the end is what another program appended.
  EXPECT_EQ(kztns::utf_8_of_utf_16(little(u"a") + "\n"), "a\n");
  EXPECT_EQ(kztns::utf_8_of_utf_16(little(u"a") + std::string(1, '\0')), "a");
}

TEST(Utf16, IsToldByItsZeros) {
  EXPECT_TRUE(kztns::is_utf_16("a\0b\0"sv));
  EXPECT_TRUE(kztns::is_utf_16("\0a\0b"sv));
  EXPECT_FALSE(kztns::is_utf_16("\0\0\0\0"sv));
  EXPECT_FALSE(kztns::is_utf_16("\0aab"sv));
}
