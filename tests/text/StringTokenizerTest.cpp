#include <gtest/gtest.h>

#include "support/Table.h"
#include "text/StringTokenizer.h"

namespace zelstoryparser {
namespace {

// What is handed out: "[piece]" for each NextToken until exhausted, but after `calls` calls
// "{rest}" for RemainingText; "+" before a step at which HasMoreTokens.
std::string Pieces(const Row& row, bool skipRepeated, int calls) {
  const UTF16String text = Utf16(row[0]);
  UTF16String delimiters = Utf16(row[1]);
  StringTokenizer tokens(text, delimiters, skipRepeated);
  delimiters = u"-";  // the tokenizer has a copy
  std::string pieces = tokens.HasMoreTokens() ? "+" : "";
  for (; !tokens.IsExhausted(); pieces += tokens.HasMoreTokens() ? "+" : "") {
    pieces += calls-- > 0 ? "[" + Utf8(tokens.NextToken()) + "]"
                          : "{" + Utf8(tokens.RemainingText()) + "}";
  }
  EXPECT_EQ(Utf8(tokens.NextToken() + tokens.RemainingText()), "") << pieces;
  return pieces;
}

TEST(StringTokenizer, CutsAtDelimiters) {  // without and with skipping of repeated delimiters
  for (const Row& row : Rows(R"(
      1.0 => . => +[1][0] => +[1][0] ;; 1.0.7 => . => +[1]+[0][7] => +[1]+[0][7] ;; 1. => . => +[1] => +[1]
      1 => . => [1] => [1] ;; => . => [] => [] ;; . => . => +[] => +[] ;; ... => . => +[]+[]+[] => +[]
      A..B => . => +[A]+[][B] => +[A][B] ;; ..A => . => +[]+[][A] => +[][A] ;; ::5 => : => +[]+[][5] => +[][5]
      A...B.. => . => +[A]+[]+[]+[B]+[] => +[A]+[B] ;; a.b:c => .: => +[a]+[b][c] => +[a]+[b][c]
      a..b => .: => +[a]+[][b] => +[a]+[][b] ;; a.b => => [a.b] => [a.b] ;; é𝄞.ü => . => +[é𝄞][ü] => +[é𝄞][ü])")) {
    EXPECT_EQ(Pieces(row, false, 99), row[2]) << row[0];
    EXPECT_EQ(Pieces(row, true, 99), row[3]) << row[0];
  }
}

TEST(StringTokenizer, HandsOutTheRest) {  // at once, and after one call, skipping
  for (const Row& row : Rows(R"(KITCHEN. LATER => . => +{KITCHEN. LATER} => +[KITCHEN]{ LATER}
      HOUSE => . => {HOUSE} => [HOUSE] ;; A..B.C => . => +{A..B.C} => +[A]+{B.C} ;; => . => {} => [])")) {
    EXPECT_EQ(Pieces(row, true, 0), row[2]) << row[0];
    EXPECT_EQ(Pieces(row, true, 1), row[3]) << row[0];
  }
}

}  // namespace
}  // namespace zelstoryparser
