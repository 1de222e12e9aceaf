// Characters of UTF-8 and their room on a terminal.
#include <gtest/gtest.h>

#include "text/names_text.h"
#include "text/utf8.h"
#include "text/width.h"

using namespace std::string_view_literals;

TEST(Utf8, CodePoints) {
  EXPECT_EQ(kztns::code_point("A"), 0x41u);
  EXPECT_EQ(kztns::code_point("\xC3\xA9"), 0xE9u);
  EXPECT_EQ(kztns::code_point("\xE6\x97\xA5"), 0x65E5u);
  EXPECT_EQ(kztns::code_point("\xF0\x9F\x98\x80"), 0x1F600u);
}

TEST(Utf8, WholeTexts) {
  EXPECT_TRUE(kztns::is_utf8(""));
  EXPECT_TRUE(kztns::is_utf8("a\xC3\xA9\xF0\x9F\x98\x80"));
  EXPECT_FALSE(kztns::is_utf8("a\xC3"));
  EXPECT_FALSE(kztns::is_utf8("\xA9"));
}

TEST(Utf8, WhatACutLeavesOfACharacter) {
  EXPECT_EQ(kztns::cut_begin("\x97\xA5z"), 2u);
  EXPECT_EQ(kztns::cut_begin("z\x97"), 0u);
  EXPECT_EQ(kztns::cut_begin("\x80\x80\x80\x80z"), 3u);
  EXPECT_EQ(kztns::cut_begin(""), 0u);
  EXPECT_EQ(kztns::cut_end("z\xE6\x97"), 2u);
  EXPECT_EQ(kztns::cut_end("z\xE6\x97\xA5"), 0u);
  EXPECT_EQ(kztns::cut_end("z\xF0\x9F\x98"), 3u);
  EXPECT_EQ(kztns::cut_end("\xF0"), 1u);
  EXPECT_EQ(kztns::cut_end("z"), 0u);
  EXPECT_EQ(kztns::cut_end("z\x80\x80\x80\x80"), 0u);
  EXPECT_EQ(kztns::cut_end(""), 0u);
}

TEST(Width, OfLettersIdeographsAndMarks) {
  EXPECT_EQ(kztns::width_of(""), 0u);
  EXPECT_EQ(kztns::width_of("abc"), 3u);
  EXPECT_EQ(kztns::width_of("\xC3\xA9"), 1u);
  EXPECT_EQ(kztns::width_of("\xE6\x97\xA5\xE6\x9C\xAC"), 4u);  // two ideographs
  EXPECT_EQ(kztns::width_of("\xED\x95\x9C"), 2u);              // a syllable of Hangul
  EXPECT_EQ(kztns::width_of("\xEF\xBC\xA1\xEF\xBD\xB1"), 3u);  // full-width A, half-width kana
  EXPECT_EQ(kztns::width_of("\xF0\x9F\x98\x80"), 2u);          // a face
  EXPECT_EQ(kztns::width_of("e\xCC\x81"), 1u);                 // an accent of its own
  EXPECT_EQ(kztns::width_of("\xE3\x81\x8B\xE3\x82\x99"), 2u);  // kana and its voice mark
  EXPECT_EQ(kztns::width_of("\xFF\xFE"), 2u);                  // no characters
}

TEST(SourceLine, IsCutBetweenCharacters) {
  std::string content = "(";
  for (int i = 0; i < 100; ++i) content += "\xE6\x97\xA5";
  const kztns::NamesText text(content + "\n");
  std::size_t column = 0;
  // 60 bytes before the place, which is the beginning of a character, 1 + 3 * 40.
  std::string_view line = text.line_around(121, column);
  EXPECT_EQ(column, 60u);
  EXPECT_TRUE(kztns::is_utf8(line));
  EXPECT_EQ(line.size(), 120u);
  // 60 bytes before that one is in the middle of a character.
  line = text.line_around(122, column);
  EXPECT_EQ(column, 58u);
  EXPECT_TRUE(kztns::is_utf8(line));
}

TEST(SourceLine, KeepsWhatIsNoCharacterWhereItIsNotCut) {
  const kztns::NamesText text("a\xFFz\xE6\n\x97q");
  std::size_t column = 0;
  EXPECT_EQ(text.line_around(2, column), "a\xFFz\xE6");
  EXPECT_EQ(text.line_around(6, column), "\x97q");
}
