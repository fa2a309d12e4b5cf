#include "StoryGenerator.h"

#include <array>
#include <random>

namespace {

constexpr std::array<const char*, 24> kWords{
    "the",       "rain",      "harbour", "night",       "she",   "walks",
    "caf\u00E9", "\u00E9lan", "slow",    "toward",      "&amp;", "over",
    "door",      "light",     "says",    "Anna&apos;s", "never", "\u201Cquotes\u201D",
    "again",     "letter",    "window",  "under",       "a",     "to"};
constexpr std::array<const char*, 6> kNames{"ANNA",        "JOSEF",   "IN\u00C8S",
                                            "MARA (V.O.)", "OLD MAN", "TOM"};
constexpr std::array<const char*, 4> kHeadings{"INT. HOUSE - NIGHT", "EXT. HARBOUR - DAY",
                                               "INT/EXT. CAR - MOVING - DUSK",
                                               "EXT. FIELD MORNING"};

class Generator {
 public:
  explicit Generator(std::uint32_t seed) : mRandom(seed) {}

  std::string Story(std::size_t bytes) {
    mText.reserve(bytes + 65536);
    mText +=
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<TavroStory version=\"1.0\" "
        "documentType=\"screenplay\" template=\"plain\">\n<document version=\"1.0\">\n"
        "<stream objID=\"body\" name=\"body\">\n<section objID=\"section\">\n";
    while (mText.size() < bytes) Scene();
    mText += "</section>\n</stream>\n</document>\n</TavroStory>\n";
    return std::move(mText);
  }

 private:
  // The standard engines give the same numbers everywhere; the distributions do not.
  std::size_t Below(std::size_t bound) { return mRandom() % bound; }

  std::string NextID() { return "objID=\"n" + std::to_string(++mIDs) + '"'; }

  void Paragraph(const std::string& element, const std::string& text) {
    mText += "  <paragraph " + NextID() + " element=\"" + element + "\"><textRun " + NextID() +
             ">" + text + "</textRun></paragraph>\n";
  }

  std::string Words(std::size_t count) {
    std::string words;
    for (std::size_t i = 0; i < count; ++i) {
      if (i > 0) words += ' ';
      words += kWords[Below(kWords.size())];
    }
    return words;
  }

  void Scene() {
    mText += " <scene " + NextID() + " sceneNumber=\"" + std::to_string(++mScenes) + "\">\n";
    Paragraph("SceneHeading\" shotDuration=\"0:01:30", kHeadings[Below(kHeadings.size())]);
    for (std::size_t beats = 2 + Below(11); beats > 0; --beats) {
      const std::size_t length = Below(50) == 0 ? 400 : 4 + Below(40);
      if (Below(3) == 0) {
        Paragraph("Action", Words(length));
        continue;
      }
      Paragraph("Character", kNames[Below(kNames.size())]);
      if (Below(5) == 0) Paragraph("Parenthetical", "(beat)");
      Paragraph("Dialog", Words(length));
    }
    mText += " </scene>\n";
  }

  std::mt19937 mRandom;
  std::string mText;
  std::size_t mIDs = 0;
  std::size_t mScenes = 0;
};

}  // namespace

std::string GenerateStory(std::size_t bytes, std::uint32_t seed) {
  return Generator(seed).Story(bytes);
}
