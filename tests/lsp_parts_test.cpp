// The parts of the language server that need no messages: framing, documents with their
// positions, and what stands at a place.
#include <gtest/gtest.h>

#include <string>

#include "lsp/context.h"
#include "lsp/document.h"
#include "lsp/framing.h"
#include "lsp/key_documents.h"
#include "lsp/outline.h"
#include "support/random.h"
#include "text/uri.h"

using namespace kztns::lsp;
using kztns::Block;
using kztns::Offset;

namespace {

std::vector<std::string> bodies_in(const std::string &stream, bool *broken = nullptr) {
  MessageReader reader;
  reader.add(stream);
  std::vector<std::string> bodies;
  while (auto body = reader.next()) bodies.push_back(*body);
  if (broken != nullptr) *broken = reader.is_broken();
  return bodies;
}

bool breaks(const std::string &stream) {
  bool broken = false;
  bodies_in(stream, &broken);
  return broken;
}

using Bodies = std::vector<std::string>;

}  // namespace

TEST(LspFraming, ReadsMessagesOneAfterTheOther) {
  EXPECT_EQ(bodies_in("Content-Length: 2\r\n\r\n{}Content-Length: 3\r\n\r\n[1]"),
            (Bodies{"{}", "[1]"}));
  EXPECT_EQ(bodies_in("content-length:2\r\nContent-Type: x; charset=utf-8\r\n\r\n{}"),
            (Bodies{"{}"}));
  EXPECT_EQ(bodies_in("Content-Length: 0\r\n\r\n"), (Bodies{""}));
  EXPECT_EQ(framed("{}"), "Content-Length: 2\r\n\r\n{}");
}

TEST(LspFraming, WaitsForTheRest) {
  MessageReader reader;
  const std::string stream = framed("{\"a\":1}");
  for (const char c : stream.substr(0, stream.size() - 1)) {
    reader.add(std::string(1, c));
    EXPECT_FALSE(reader.next());
  }
  reader.add(stream.substr(stream.size() - 1));
  EXPECT_EQ(reader.next(), "{\"a\":1}");
  EXPECT_FALSE(reader.is_broken());
}

TEST(LspFraming, RefusesOtherHeaders) {
  EXPECT_TRUE(breaks("hello\r\n\r\n"));
  EXPECT_TRUE(breaks("Content-Type: x\r\n\r\n"));
  EXPECT_TRUE(breaks("Content-Length: -1\r\n\r\n"));
  EXPECT_TRUE(breaks("Content-Length: 1x\r\n\r\n"));
  EXPECT_TRUE(breaks("Content-Length: \r\n\r\n"));
  EXPECT_TRUE(breaks("Content-Length: 99999999999999999999\r\n\r\n"));
  EXPECT_TRUE(breaks("Content-Length: " + std::to_string(longest_message + 1) + "\r\n\r\n"));
  EXPECT_FALSE(breaks("Content-Length: " + std::to_string(longest_message) + "\r\n\r\n"));
  EXPECT_TRUE(breaks(std::string(longest_header + 1, 'x')));
  EXPECT_FALSE(breaks(std::string(longest_header, 'x')));
  // Nothing comes after that.
  EXPECT_EQ(bodies_in("hello\r\n\r\n" + framed("{}")), Bodies{});
}

// "ä" has two bytes and one unit, the smile four bytes and two units.
TEST(LspDocument, CountsInUtf16) {
  const Document document("a\xC3\xA4z\n\xF0\x9F\x98\x80x\r\ny\rz", 1, Encoding::utf_16);
  EXPECT_EQ(document.offset({0, 0}), 0u);
  EXPECT_EQ(document.offset({0, 2}), 3u);
  EXPECT_EQ(document.offset({0, 99}), 4u);
  EXPECT_EQ(document.offset({1, 1}), 5u);  // in the smile
  EXPECT_EQ(document.offset({1, 2}), 9u);
  EXPECT_EQ(document.offset({1, 99}), 10u);
  EXPECT_EQ(document.offset({2, 1}), 13u);
  EXPECT_EQ(document.offset({3, 1}), 15u);
  EXPECT_EQ(document.offset({4, 0}), 15u);
  EXPECT_EQ(document.position(3).character, 2u);
  EXPECT_EQ(document.position(9).line, 1u);
  EXPECT_EQ(document.position(9).character, 2u);
  EXPECT_EQ(document.position(14).line, 3u);
  EXPECT_EQ(document.position(99).line, 3u);
}

TEST(LspDocument, CountsInUtf8) {
  const Document document("a\xC3\xA4z\nx", 1, Encoding::utf_8);
  EXPECT_EQ(document.offset({0, 3}), 3u);
  EXPECT_EQ(document.offset({0, 2}), 1u);  // in the letter
  EXPECT_EQ(document.position(3).character, 3u);
}

// Whatever is replaced, the lines are those of a document that is opened with the text.
TEST(LspDocument, KeepsItsLinesOverChanges) {
  constexpr const char *pieces[] = {"",     "a",    "\n",     "\r",    "\r\n",
                                    "b\nc", "\n\n", "x\r\ny", "\r\r\n"};
  for (std::uint64_t seed = 1; seed <= 300; ++seed) {
    SCOPED_TRACE(seed);
    support::Random random(seed);
    Document document("one\r\ntwo\nthree\rfour", 1, Encoding::utf_16);
    for (int change = 0; change < 20; ++change) {
      const auto size = static_cast<std::size_t>(document.size()) + 1;
      Offset begin = static_cast<Offset>(random.below(size));
      Offset end = static_cast<Offset>(random.below(size));
      if (begin > end) std::swap(begin, end);
      const LineRange range = document.range({begin, end});
      std::string expected = document.text();
      const kztns::Span span = document.span(range);
      const std::string piece = random.pick(pieces);
      expected.replace(span.begin, span.end - span.begin, piece);
      document.replace(range, piece);
      ASSERT_EQ(document.text(), expected);
      const Document fresh(expected, 1, Encoding::utf_16);
      for (Offset at = 0; at <= fresh.size(); ++at) {
        ASSERT_EQ(document.position(at).line, fresh.position(at).line) << at;
        ASSERT_EQ(document.position(at).character, fresh.position(at).character) << at;
      }
    }
  }
}

TEST(LspDocument, KnowsHowItsLinesEnd) {
  Document document("a\r\nb\n", 1, Encoding::utf_16);
  EXPECT_TRUE(document.has_crlf());
  document.replace({{0, 1}, {1, 0}}, "\n");
  EXPECT_FALSE(document.has_crlf());
  document.replace({{0, 1}, {0, 1}}, "\r");
  EXPECT_TRUE(document.has_crlf());
  document.set("a\rb\n");
  EXPECT_FALSE(document.has_crlf());
  document.set("a\nb\r\n");
  EXPECT_FALSE(document.has_crlf());
}

TEST(LspDocument, TakesARangeThatEndsBeforeItBegins) {
  Document document("abc", 1, Encoding::utf_8);
  document.replace({{0, 2}, {0, 1}}, "x");
  EXPECT_EQ(document.text(), "abxc");
}

namespace {

// The place at a "|" in a text.
Place place_in(std::string text, std::string &without_mark, bool whole_word = false) {
  const std::size_t at = text.find('|');
  text.erase(at, 1);
  without_mark = text;
  return place_at(without_mark, static_cast<Offset>(at), whole_word);
}

struct PlaceRow {
  const char *text;
  PlaceKind kind;
  const char *word;
  const char *key;  // of a value
  Block block;
};

const PlaceRow place_rows[] = {
    {"|", PlaceKind::none, "", "", Block::entry},
    {"# a|\n", PlaceKind::none, "", "", Block::entry},
    {"sal|es = (DESCRIPTION = ", PlaceKind::name, "sales", "", Block::entry},
    {"a = (|", PlaceKind::key, "", "", Block::entry},
    {"a = (DESC|", PlaceKind::key, "DESC", "", Block::entry},
    {"a = (DESCRIPTION = |", PlaceKind::item, "", "", Block::description},
    {"a = (DESCRIPTION = (|", PlaceKind::key, "", "", Block::description},
    {"a = (DESCRIPTION = (KZLB=ON)(|", PlaceKind::key, "", "", Block::description},
    {"a = (DESCRIPTION = (KZLB=ON) |", PlaceKind::item, "", "", Block::description},
    {"a = (DESCRIPTION = (KZLB = |", PlaceKind::value, "", "KZLB", Block::description},
    {"a = (DESCRIPTION = (KZLB = O|", PlaceKind::value, "O", "KZLB", Block::description},
    {"a = (description = (address_list = (KZLB_STRATEGY=R|)", PlaceKind::value, "R",
     "KZLB_STRATEGY", Block::address_list},
    {"a = (DESCRIPTION = (ADDRESS_LIST = (ADDRESS=(HOST=h)(PORT=1))(|", PlaceKind::key, "", "",
     Block::address_list},
    {"a = (DESCRIPTION = (ADDRESS_LIST = (ADDRESS=(HOST=h)(PORT=1)))(|", PlaceKind::key, "", "",
     Block::description},
    {"a = (DESCRIPTION = (ADDRESS = (HOST = h # |\n", PlaceKind::none, "", "", Block::entry},
    {"KZCISYSTEMVARIABLES = (|", PlaceKind::key, "", "", Block::system_variables},
    {"kz = (LOG_|", PlaceKind::key, "LOG_", "", Block::system_variables},
    {"a = (DESCRIPTION = (KZLB=ON))\nb|", PlaceKind::none, "", "", Block::entry},
};

}  // namespace

TEST(LspPlace, IsWhatMayStandThere) {
  for (const PlaceRow &row : place_rows) {
    SCOPED_TRACE(row.text);
    std::string text;
    const Place place = place_in(row.text, text);
    EXPECT_EQ(place.kind, row.kind);
    if (place.kind == PlaceKind::none) continue;
    EXPECT_EQ(text.substr(place.word.begin, place.word.end - place.word.begin), row.word);
    if (place.kind == PlaceKind::name) continue;
    EXPECT_EQ(place.around, kztns::content_of(row.block));
    EXPECT_EQ(place.kind == PlaceKind::value ? place.key : "", row.key);
  }
}

TEST(LspPlace, TakesTheWholeWord) {
  std::string text;
  Place place = place_in("a = (DESCRIPTION = (KZ|LB = OFF))", text, true);
  EXPECT_EQ(place.kind, PlaceKind::key);
  EXPECT_EQ(text.substr(place.word.begin, place.word.end - place.word.begin), "KZLB");
  place = place_in("a = (DESCRIPTION = (KZLB = |OFF))", text, true);
  EXPECT_EQ(place.kind, PlaceKind::value);
  EXPECT_EQ(text.substr(place.word.begin, place.word.end - place.word.begin), "OFF");
}

TEST(LspKeys, HaveTheirDocuments) {
  for (const kztns::Key &key : kzoci::tns::grammar) {
    const KeyDocument document = document_of(key.block, key.word);
    EXPECT_FALSE(document.meaning.empty()) << key.word;
    EXPECT_FALSE(document.value.empty()) << key.word;
  }
  const KeyDocument weight = document_of(Block::address, "WEIGHT");
  EXPECT_EQ(weight.value, "integer");
  EXPECT_EQ(weight.by_default, "1");
  EXPECT_EQ(weight.meaning, "share of the load");
  EXPECT_EQ(document_of(Block::address, "LOG_SIZE").meaning, "");
  EXPECT_EQ(document_of(Block::address_list, "KZLB").by_default, "`ON`");
  EXPECT_EQ(document_of(Block::description, "KZLB").by_default, "`OFF`");
}

TEST(LspOutline, HasBlocksAlone) {
  const std::string text =
      "a = (DESCRIPTION = (ADDRESS_LIST = (KZLB = ON)(ADDRESS = (HOST = h)))\n"
      "  (CONNECT_DATA = (SID = s)))\nb = (DESCRIPTION = (ADDRESS = ";
  const std::vector<Outline> entries = outline_of(text);
  ASSERT_EQ(entries.size(), 2u);
  ASSERT_EQ(entries[0].inner.size(), 1u);
  const Outline &description = entries[0].inner[0];
  EXPECT_EQ(text.substr(description.name.begin, 11), "DESCRIPTION");
  EXPECT_EQ(description.whole.end, text.find("\nb"));
  ASSERT_EQ(description.inner.size(), 2u);
  EXPECT_EQ(description.inner[0].inner.size(), 1u);
  EXPECT_EQ(description.inner[1].inner.size(), 0u);
  // What is not closed ends with what is there.
  ASSERT_EQ(entries[1].inner.size(), 1u);
  EXPECT_EQ(entries[1].inner[0].inner.size(), 1u);
}

TEST(LspOutline, HasALimitOfDepth) {
  std::string text = "a = ";
  for (int depth = 0; depth < 100; ++depth) text += "(DESCRIPTION = ";
  const std::vector<Outline> entries = outline_of(text + std::string(100, ')'));
  ASSERT_EQ(entries.size(), 1u);
  std::size_t depth = 0;
  for (const Outline *at = &entries[0]; !at->inner.empty(); at = &at->inner[0]) ++depth;
  EXPECT_EQ(depth, 15u);
  EXPECT_EQ(entries[0].whole.end, text.size() + 100);
}

TEST(LspOutline, HasRunsOfComments) {
  const auto runs = comment_runs("# a\n # b\n\nx\n# c");
  ASSERT_EQ(runs.size(), 2u);
  EXPECT_EQ(runs[0].begin, 0u);
  EXPECT_EQ(runs[0].end, 8u);
  EXPECT_EQ(runs[1].begin, 12u);
}

TEST(Uris, AreThoseOfPaths) {
  EXPECT_EQ(kztns::uri_of("/a b/\xC3\xA4.ora"), "file:///a%20b/%C3%A4.ora");
  EXPECT_EQ(kztns::uri_of("a.ora"), "a.ora");
  EXPECT_EQ(kztns::path_of("file:///a%20b/%C3%A4.ora"), "/a b/\xC3\xA4.ora");
  EXPECT_EQ(kztns::path_of("file://localhost/a"), "/a");
  EXPECT_EQ(kztns::path_of("file:///a%2"), "/a%2");
  EXPECT_EQ(kztns::path_of("file:///a%zz"), "/a%zz");
  EXPECT_EQ(kztns::path_of("untitled:one"), std::nullopt);
}
