#include <istream>
#include <streambuf>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <zelcore/xml/Reader.h>
#include <zelstoryparser/StoryParser.h>

#include "support/Table.h"

namespace zelstoryparser {
namespace {

// A document that as good as never ends: a beginning, then a unit again and again, its "#" a
// running number.
class Endless : public std::streambuf {
 public:
  Endless(std::string begin, std::string unit) : mPiece(std::move(begin)), mUnit(std::move(unit)) {}
  static constexpr std::size_t kMost = 64u << 20;
  std::size_t mDelivered = 0;

 protected:
  int_type underflow() override {
    if (mDelivered >= kMost) return traits_type::eof();
    if (mDelivered > 0 || mPiece.empty()) {
      const std::string number = "#_" + std::to_string(mDelivered);
      mPiece = Repeated(Replaced(mUnit, {{"#", number}}), 1000);
    }
    mDelivered += mPiece.size();
    setg(mPiece.data(), mPiece.data(), mPiece.data() + mPiece.size());
    return traits_type::to_int_type(mPiece.front());
  }

 private:
  std::string mPiece;
  const std::string mUnit;
};

TEST(Hostile, DocumentsWithoutEndAreRefusedSoon) {
  for (const Row& row : Rows(R"(
      <a b=' => x => limit ;; <a\s => b#='' => 10000 attributes ;; <a xmlns:x=' => u => limit ;; <!-- => - x => limit
      <a><![CDATA[ => x => limit ;; <?p\s => x => limit ;; <!DOCTYPE => \sx => . ;; <a>& => x => .
      <?xml version='1.0' encoding='windows-1252'?><a>\x81 => x => not text in the document encoding
      => <u> => 10000 elements are open ;; < => x => limit ;; <a> => <n#/> => 250000 different names ;; <!DOCTYPE a [ => <!ENTITY e# 'x'> => .
      <!DOCTYPE a [<!ENTITY e ' => x => limit ;; <!DOCTYPE a [<!ENTITY e 'xxxxxxxxxxxxxxxxxxxxxxxxxxxx'>]><a> => &e; => .)")) {
    Endless bytes(row[0], row[1]);
    std::istream stream(&bytes);
    zelcore::xml::Reader reader;
    StoryParser parser;
    EXPECT_FALSE(reader.ParseStream(stream, "s", parser)) << row[0];
    EXPECT_THAT(reader.Error().mReason, testing::ContainsRegex(row[2])) << row[0];
    EXPECT_LT(bytes.mDelivered, Endless::kMost) << row[0];
  }
}

}  // namespace
}  // namespace zelstoryparser
