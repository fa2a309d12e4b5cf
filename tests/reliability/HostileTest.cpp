#include <istream>
#include <streambuf>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <zelcore/xml/Reader.h>
#include <zelstoryparser/zelstoryparser.h>

#include "support/PacketText.h"
#include "support/ScratchFolder.h"
#include "support/StoryBuilder.h"
#include "support/Table.h"

namespace zelstoryparser {
namespace {

// A document that never ends: a beginning, then a unit again and again, its "#" a running number.
class Endless : public std::streambuf {
 public:
  Endless(std::string begin, std::string unit) : mPiece(std::move(begin)), mUnit(std::move(unit)) {
    setg(mPiece.data(), mPiece.data(), mPiece.data() + mPiece.size());
  }
  std::size_t Delivered() const { return mDelivered; }

 protected:
  int_type underflow() override {
    mDelivered += mPiece.size();
    mPiece.clear();
    while (mPiece.size() < 4096) mPiece += Replaced(mUnit, {{"#", std::to_string(++mCount)}});
    setg(mPiece.data(), mPiece.data(), mPiece.data() + mPiece.size());
    return traits_type::to_int_type(mPiece.front());
  }

 private:
  std::string mPiece;
  const std::string mUnit;
  std::size_t mCount = 0;
  std::size_t mDelivered = 0;
};

TEST(Hostile, DocumentsWithoutEndAreRefusedSoon) {
  for (const Row& row : Rows(R"(
      <a b=' => x => limit ;; <a\s => b#='' => 10000 attributes ;; <a xmlns:x=' => u => limit ;; <!-- => - x => limit
      <a><![CDATA[ => x => limit ;; <?p\s => x => limit ;; <!DOCTYPE => \sx => . ;; <a>& => x => .
      => <u> => 10000 elements are open ;; < => x => limit ;; <a> => <n#/> => 250000 different names ;; <!DOCTYPE a [ => <!ENTITY e# 'x'> => .
      <!DOCTYPE a [<!ENTITY e ' => x => limit ;; <!DOCTYPE a [<!ENTITY e 'xxxxxxxxxxxxxxxxxxxxxxxxxxxx'>]><a> => &e; => .)")) {
    Endless bytes(row[0], row[1]);
    std::istream stream(&bytes);
    zelcore::xml::Reader reader;
    StoryParser parser;
    EXPECT_FALSE(reader.ParseStream(stream, "s", parser)) << row[0];
    EXPECT_THAT(reader.Error().mReason, testing::ContainsRegex(row[2])) << row[0];
    EXPECT_LT(bytes.Delivered(), 64u << 20) << row[0];
  }
}

TEST(Hostile, WhatIsCutOffAnywhereIsRefused) {
  const std::string story =
      ReadBytes(std::string(ZELSTORY_EXAMPLES_DIR) + "/stories/harbour_lights.quor");
  for (std::size_t length = 0; length < story.rfind('>'); ++length) {
    zelcore::xml::Reader reader;
    StoryParser parser;
    EXPECT_FALSE(reader.ParseBuffer(story.substr(0, length), "s", parser)) << length;
  }
  std::string packet;
  MakePacket("A:x; B:y; s:action=a").SerializeToBuffer(&packet);
  const Packet before = MakePacket("s:action=old");
  for (std::size_t length = 0; length < packet.size() - 2; ++length) {  // it may do without "?>"
    Packet metadata = before;
    EXPECT_THROW(metadata.ParseFromBuffer(packet.data(), static_cast<XMP_StringLen>(length)),
                 XMP_Error)
        << length;
    EXPECT_EQ(PacketText(metadata), PacketText(before));
  }
}

// A host may hand over any code units; a packet holds what XML can carry.
TEST(Hostile, TextsThatXMLCannotCarryLeaveAGoodPacket) {
  const ScenePtr scene = MakeScene("A#id:action / C:C / D:d", "1");
  scene->mParagraphs[0]->mTextRuns[0]->mText = u"a\xD800z\xDC00";
  scene->mParagraphs[2]->mTextRuns[0]->mText = UTF16String(u"nul\0\x1\xFFFF", 6);
  std::vector<ShotXMP> shots;
  GetSceneXMP({}, scene, 1, shots);
  EXPECT_EQ(
      PacketText(shots.at(0).mXMPPacket),
      "d:scene='1' d:shotName='1' s:action='a\uFFFDz\uFFFD' s:dialogSequence=[{character='C'}]");
}

}  // namespace
}  // namespace zelstoryparser
