// Texts with changes: where what is left of them was before.
#include <gtest/gtest.h>

#include "check/apply_fixes.h"
#include "scan/item_text.h"
#include "support/safe_edits.h"
#include "text/names_text.h"

using kztns::Edit;
using kztns::EditedText;

TEST(EditedText, WithoutEditsIsTheText) {
  const EditedText text("abc", 10);
  EXPECT_EQ(text.text(), "abc");
  EXPECT_EQ(text.origin(0), 10u);
  EXPECT_EQ(text.origin(2), 12u);
  EXPECT_EQ(text.origin(3), 13u);
}

TEST(EditedText, KnowsWhereWhatIsLeftWas) {
  EditedText text("0123456789");
  text.apply({{2, 4, "xyz"}, {6, 6, "+"}, {9, 10, ""}});
  EXPECT_EQ(text.text(), "01xyz45+678");
  EXPECT_EQ(text.origin(1), 1u);
  EXPECT_EQ(text.origin(5), 4u);
  EXPECT_EQ(text.origin(6), 5u);
  EXPECT_EQ(text.origin(8), 6u);
  EXPECT_EQ(text.origin(10), 8u);
}

TEST(EditedText, PlacesInsertedTextWhereItWasInserted) {
  EditedText text("0123");
  text.apply({{2, 2, "ab"}});
  EXPECT_EQ(text.origin(2), 2u);
  EXPECT_EQ(text.origin(3), 2u);
  EXPECT_EQ(text.origin(4), 2u);
  text.apply({{5, 6, "end"}});
  EXPECT_EQ(text.text(), "01ab2end");
  EXPECT_EQ(text.origin(5), 4u);
}

TEST(EditedText, IsEditedAgain) {
  EditedText text("0123456789");
  text.apply({{0, 5, ""}});
  text.apply({{0, 0, "<"}, {2, 3, ">"}});
  EXPECT_EQ(text.text(), "<56>89");
  EXPECT_EQ(text.origin(0), 5u);
  EXPECT_EQ(text.origin(1), 5u);
  EXPECT_EQ(text.origin(2), 6u);
  EXPECT_EQ(text.origin(4), 8u);
}

TEST(EditedText, MayLoseAllOfIt) {
  EditedText text("abc", 5);
  text.apply({{0, 3, ""}});
  EXPECT_EQ(text.text(), "");
  EXPECT_EQ(text.origin(0), 8u);
}

TEST(EditedText, KnowsWhichEditsAreOfTheTextBefore) {
  using Edits = std::vector<Edit>;
  EditedText text("0123456789");
  text.apply({{2, 4, "xyz"}, {6, 6, "+"}});  // 01xyz45+6789
  EXPECT_EQ(text.to_origin({0, 2, "a"}), (Edits{{0, 2, "a"}}));
  EXPECT_EQ(text.to_origin({5, 7, ""}), (Edits{{4, 6, ""}}));
  EXPECT_EQ(text.to_origin({8, 8, "a"}), (Edits{{6, 6, "a"}}));
  EXPECT_EQ(text.to_origin({12, 12, "a"}), (Edits{{10, 10, "a"}}));
  EXPECT_EQ(text.to_origin({2, 5, ""}), Edits());
  EXPECT_EQ(text.to_origin({1, 3, ""}), Edits());
  EXPECT_EQ(text.to_origin({3, 3, "a"}), Edits());
  EXPECT_EQ(text.to_origin({6, 9, ""}), Edits());
}

TEST(EditedText, AnEditOverWhatIsRemovedIsSeveralOfTheTextBefore) {
  using Edits = std::vector<Edit>;
  EditedText text("0123456789");
  text.apply({{2, 4, ""}, {6, 7, ""}});  // 0145789
  EXPECT_EQ(text.to_origin({1, 5, "a"}), (Edits{{1, 2, "a"}, {4, 6, ""}, {7, 8, ""}}));
  EXPECT_EQ(text.to_origin({2, 2, "a"}), (Edits{{4, 4, "a"}}));
  EXPECT_EQ(text.to_origin({6, 8, ""}), Edits());
  EditedText turned("abcd");
  turned.apply({{0, 0, "cd", 2}, {2, 4, ""}});  // cdab
  EXPECT_EQ(turned.to_origin({1, 3, ""}), Edits());
}

TEST(Edits, AreSortedAndToldWhereTheyOverlap) {
  std::vector<Edit> edits = {{4, 6, "b"}, {1, 1, "first"}, {1, 1, "second"}, {1, 4, "a"}};
  kztns::sort_edits(edits);
  EXPECT_EQ(edits,
            (std::vector<Edit>{{1, 1, "first"}, {1, 1, "second"}, {1, 4, "a"}, {4, 6, "b"}}));
  EXPECT_FALSE(kztns::overlap(edits));
  edits.push_back({5, 7, "c"});
  EXPECT_TRUE(kztns::overlap(edits));
}

TEST(Positions, OfACopyAreThoseOfTheText) {
  const kztns::NamesText whole("first\nsecond\nthird\n");
  EditedText part(std::string_view(whole.text()).substr(6), 6);
  part.apply({{0, 3, "a longer beginning\n"}});
  const kztns::NamesText text(part, whole);
  EXPECT_EQ(text.text(), "a longer beginning\nond\nthird\n");
  EXPECT_EQ(text.place(19), "2:4");
  EXPECT_EQ(text.place(23), "3:1");
  std::size_t column = 0;
  EXPECT_EQ(text.line_around(19, column), "second");
  EXPECT_EQ(column, 3u);
}

namespace {

kztns::Finding with(kztns::Fix fix) {
  kztns::Finding finding = {};
  finding.fix = std::move(fix);
  return finding;
}

}  // namespace

TEST(Fixes, OfTwoThatChangeTheSameTheFirstApplies) {
  const std::vector<kztns::Finding> findings = {
      with(kztns::safe_fix({{4, 6, "a"}})),
      with(kztns::unsafe_fix({{0, 1, "b"}, {5, 5, "in a"}})),
      with(kztns::unsafe_fix({{6, 6, "after a"}})),
      with({}),
      with(kztns::safe_fix({{2, 5, ""}})),
      with(kztns::safe_fix({{4, 4, "before a"}}))};
  std::vector<bool> applied;
  EXPECT_EQ(kztns::edits_of(findings, &applied),
            (std::vector<Edit>{{4, 4, "before a"}, {4, 6, "a"}, {6, 6, "after a"}}));
  EXPECT_EQ(applied, (std::vector<bool>{true, false, true, false, false, true}));
  EXPECT_EQ(support::safe_edits_of(findings), (std::vector<Edit>{{4, 4, "before a"}, {4, 6, "a"}}));
}

TEST(Fixes, WhatIsCopiedIsCopiedWithItsFixes) {
  const std::string text = "a, b = (wrong)(odd)\n";
  const std::vector<kztns::Finding> findings = {
      with(kztns::safe_fix({{1, 4, " ="}, {4, 4, "(wrong)(odd)", 7}, {4, 6, "\nb ="}})),
      with(kztns::safe_fix({{8, 13, "right"}})), with(kztns::safe_fix({{14, 19, ""}}))};
  EditedText edited(text);
  edited.apply(kztns::edits_of(findings));
  EXPECT_EQ(edited.text(), "a =(right)\nb = (right)\n");
  EXPECT_EQ(edited.origin(3), 7u);
  EXPECT_EQ(edited.origin(9), 13u);
}

TEST(Fixes, APartIsNotRemovedAroundAnInsertion) {
  const std::vector<kztns::Finding> findings = {with(kztns::safe_fix({{5, 5, "new"}})),
                                                with(kztns::safe_fix({{3, 8, ""}}))};
  EXPECT_EQ(support::safe_edits_of(findings), (std::vector<Edit>{{5, 5, "new"}}));
}

namespace {

// The text without the item whose "(" is marked with "|".
std::string without(std::string text) {
  const std::size_t at = text.find('|');
  text.erase(at, 1);
  const auto item = kztns::item_to_remove(text, static_cast<kztns::Offset>(at));
  if (!item) return "kept";
  return text.erase(item->begin, item->end - item->begin);
}

}  // namespace

TEST(ItemText, IsRemoved) {
  EXPECT_EQ(without("N = (D = (A = 1)|(B = \")\")(C = 3))"), "N = (D = (A = 1)(C = 3))");
  EXPECT_EQ(without("N = (D =\n  (A = 1)\n  |(B = 2)\n  (C = 3))\n"),
            "N = (D =\n  (A = 1)\n  (C = 3))\n");
}

TEST(ItemText, IsRemovedWithTheBlockThatHasNoOther) {
  EXPECT_EQ(without("N = (D = (A = 1)(B = |(C = 3)))"), "N = (D = (A = 1))");
  EXPECT_EQ(without("N = (D = (A = (B = |(C = 3)))(E = 5))"), "N = (D = (E = 5))");
}

TEST(ItemText, IsKeptWhereNothingWouldBeLeft) {
  EXPECT_EQ(without("M = (D = (A = 1))\nN = (D = |(A = 1))"), "kept");
  EXPECT_EQ(without("N = |(D = (A = 1))\nM = (D = (A = 1))"), "kept");
}

TEST(ItemText, IsAllOfItsBlockWhereNothingElseIsInThat) {
  EXPECT_EQ(without("N = (D = (C = |(A = 1))(B = 2))"), "N = (D = (B = 2))");
  for (const std::string rest : {"= (B = 2)", "words (B = 2)", "words", "(B = 2)"})
    EXPECT_EQ(without("N = (D = (C = |(A = 1)" + rest + "))"), "N = (D = (C = " + rest + "))");
}

TEST(ItemText, IsKeptWhereItHasNoEnd) { EXPECT_EQ(without("N = (D = |(A = 1 (B = 2)"), "kept"); }
