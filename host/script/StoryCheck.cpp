#include <algorithm>
#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include <zelstoryhost/SceneFacts.h>
#include <zelstoryhost/Story.h>
#include <zelstoryhost/StoryCheck.h>
#include <zelstoryhost/Text.h>
#include <zelstoryparser/SceneText.h>

#include "Enumerate.h"
#include "Quoted.h"
#include "UTF16.h"
#include "formats/FindingList.h"
#include "script/CharacterNames.h"

namespace zelstoryhost {
namespace {

using namespace zelstoryparser;

// "the scene at position 2 has", or "2 scenes, at the positions 2, 3, have"
std::string ScenesHave(const std::vector<std::size_t>& positions) {
  if (positions.size() == 1) return "the scene at position " + Enumerate(positions) + " has";
  return std::to_string(positions.size()) + " scenes, at the positions " + Enumerate(positions) +
         ", have";
}

// What a heading was read as: setting "INT", location "HOUSE", time "NIGHT".
std::string PartsOf(const ParsedHeading& parts) {
  std::string text;
  const auto add = [&text](const char* name, const UTF16String& part) {
    if (!part.empty()) (text += text.empty() ? "" : ", ") += name + Quoted(ToUTF8(part));
  };
  add("setting ", parts.mSetting);
  add("location ", parts.mLocation);
  add("sub-location ", parts.mSubLocation);
  add("time ", parts.mTimeOfDay);
  for (const UTF16String& qualifier : parts.mQualifiers) add("qualifier ", qualifier);
  return text.empty() ? "nothing" : text;
}

bool AreSame(const UTF16String& left, const UTF16String& right) {
  return KeyOfName(ToUTF8(left)) == KeyOfName(ToUTF8(right));
}

// Whether the common rules know a setting or a time of day that another reading does not have.
// Their times are always words that they know.
bool KnowBetter(const ParsedHeading& common, const ParsedHeading& read) {
  return (common.mIsSettingKnown && !AreSame(common.mSetting, read.mSetting)) ||
         (!common.mTimeOfDay.empty() && !AreSame(common.mTimeOfDay, read.mTimeOfDay));
}

// A paragraph, or, with a paragraph of 0, a whole scene. Both count from 1.
struct Place {
  std::size_t mScene = 0;
  std::size_t mParagraph = 0;
};

// The spellings of names or extensions.
class Spelled {
 public:
  struct Group {
    std::vector<std::string> mTexts;  // all that differ, in order
    Place mPlace{};                   // of the second
  };

  void Add(const std::string& key, const std::string& text, const Place& place) {
    const auto [known, isNew] = mPlaces.try_emplace(key, mGroups.size());
    if (isNew) mGroups.emplace_back();
    Group& group = mGroups[known->second];
    if (!mTexts.insert(text).second) return;
    if (group.mTexts.size() == 1) group.mPlace = place;
    group.mTexts.push_back(text);
  }

  const std::vector<Group>& Groups() const { return mGroups; }

 private:
  std::vector<Group> mGroups;
  std::unordered_map<std::string, std::size_t> mPlaces;  // in mGroups, by key
  std::unordered_set<std::string> mTexts;
};

class StoryCheck {
 public:
  StoryCheck(const TavroStory& story, const HeadingRules& rules, const BodyPositions& positions)
      : mScenes(BodyScenes(story)), mRules(rules), mPositions(positions) {}

  std::vector<Finding> Check();

 private:
  void CheckHeading(const UTF16String& heading);
  void CheckScene(const Scene& scene);
  void CheckParagraph(const Paragraph& paragraph);
  void CheckName(const std::string& cue);
  void EndSpeech();
  void NoteNumber(const Scene& scene);
  void NoteIdentifier(const Scene& scene);
  void CheckNumbers();
  void CheckIdentifiers();
  void CheckSpelling(const Spelled& spelled, const char* what, FindingCode code);
  void Warn(FindingCode code, const std::string& text, const Place& place);
  std::string Describe(const Place& place) const;
  std::optional<zelcore::xml::Position> PositionOf(const Place& place) const;

  // Where the names and the dialogue of a scene lead, as CollectSceneText reads them.
  struct Speech {
    bool mHasName = false;
    bool mHasDialogue = false;
    Place mName{};                     // where it is
    std::optional<Place> mNameless{};  // where the first dialogue is that has no name yet
  };

  const std::vector<boost::intrusive_ptr<Scene>> mScenes;
  const HeadingRules& mRules;
  const BodyPositions& mPositions;
  FindingList mFindings;
  Place mHere;
  UTF16String mHeading;  // of the scene, and where it is
  Place mHeadingPlace;
  Speech mSpeech;
  std::unordered_set<std::string> mCues;
  Spelled mNames;
  Spelled mExtensions;
  std::vector<std::pair<std::string, std::vector<std::size_t>>> mNumbers;  // with their scenes
  std::unordered_map<std::string, std::size_t> mNumberPlaces;              // in mNumbers
  std::vector<std::size_t> mUnnumbered;                                    // scenes with a heading
  std::vector<std::size_t> mUnidentified;                                  // scenes with a text
};

std::vector<Finding> StoryCheck::Check() {
  for (const auto& scene : mScenes) {
    ++mHere.mScene;
    if (scene) CheckScene(*scene);
  }
  CheckNumbers();
  CheckIdentifiers();
  CheckSpelling(mNames, "one name is spelled ", FindingCode::kNameSpelling);
  CheckSpelling(mExtensions, "one extension of names is spelled ", FindingCode::kExtensionSpelling);
  return mFindings.Take();
}

void StoryCheck::Warn(FindingCode code, const std::string& text, const Place& place) {
  mFindings.Add(Severity::kWarning, text, PositionOf(place), Describe(place), code);
}

// As StoryPlace does, but never long.
std::string StoryCheck::Describe(const Place& place) const {
  if (place.mParagraph == 0) return {};
  const std::string number = ToUTF8(mScenes[place.mScene - 1]->mSceneNumber);
  const bool isName = !number.empty() && number.size() <= kLongestSceneName;
  return "body, scene " + (isName ? number : "at position " + std::to_string(place.mScene)) +
         ", paragraph " + std::to_string(place.mParagraph);
}

std::optional<zelcore::xml::Position> StoryCheck::PositionOf(const Place& place) const {
  const std::size_t paragraph = std::max<std::size_t>(place.mParagraph, 1);
  if (place.mScene > mPositions.size() || paragraph > mPositions[place.mScene - 1].size()) {
    return std::nullopt;
  }
  return mPositions[place.mScene - 1][paragraph - 1];
}

void StoryCheck::CheckScene(const Scene& scene) {
  mHere.mParagraph = 0;
  mSpeech = {};
  mHeading.clear();
  for (const auto& paragraph : scene.mParagraphs) {
    ++mHere.mParagraph;
    if (paragraph) CheckParagraph(*paragraph);
  }
  if (!mHeading.empty()) CheckHeading(mHeading);
  EndSpeech();
  if (mSpeech.mNameless) {
    Warn(FindingCode::kDialogueWithoutName,
         "dialogue in a scene without names is left out of the metadata: add a name before it",
         *mSpeech.mNameless);
  }
  NoteNumber(scene);
  NoteIdentifier(scene);
}

// What the exact rule splits well, it need not know: the common rules know more words.
void StoryCheck::CheckHeading(const UTF16String& heading) {
  const ParsedHeading read = ParseHeading(heading, mRules);
  const ParsedHeading common =
      mRules.IsExact() ? ParseHeading(heading, CommonHeadingRules()) : read;
  const std::string start = "the heading " + Quoted(ToUTF8(heading));
  const std::string result = "read as " + PartsOf(read);
  if (mRules.IsExact() && KnowBetter(common, read)) {
    return Warn(FindingCode::kOtherReading,
                start + " is " + result + "; the common rules read " + PartsOf(common),
                mHeadingPlace);
  }
  const bool hasGuess = !read.mSetting.empty() || !read.mLocation.empty();
  if (hasGuess && !read.mIsSettingKnown && !common.mIsSettingKnown) {
    Warn(FindingCode::kUnknownSetting,
         start + " begins with no known setting, such as INT or EXT; " + result, mHeadingPlace);
  }
  const bool isTimeKnown = read.mIsTimeOfDayKnown || !common.mTimeOfDay.empty();
  if (!read.mTimeOfDay.empty() && !isTimeKnown) {
    Warn(FindingCode::kUnknownTime, start + " has no known time of day; " + result, mHeadingPlace);
  }
}

void StoryCheck::CheckParagraph(const Paragraph& paragraph) {
  if (paragraph.mElementType == kSceneHeading) {  // the last one counts
    mHeading = JoinedText(paragraph);
    mHeadingPlace = mHere;
  } else if (paragraph.mElementType == kCharacter) {
    CheckName(TextOf(paragraph));
  } else if (paragraph.mElementType == kDialog && !TextOf(paragraph).empty()) {
    if (mSpeech.mHasName) {
      mSpeech.mHasDialogue = true;
    } else if (!mSpeech.mNameless) {
      mSpeech.mNameless = mHere;
    }
  }
}

void StoryCheck::CheckName(const std::string& cue) {
  EndSpeech();
  if (cue.empty()) return;
  mSpeech.mHasName = true;
  mSpeech.mName = mHere;
  if (mSpeech.mNameless) {
    mSpeech.mHasDialogue = true;
    Warn(FindingCode::kDialogueWithoutName,
         "dialogue before a scene's first name becomes part of that name's speech: add a name "
         "before it",
         *std::exchange(mSpeech.mNameless, std::nullopt));
  }
  if (!mCues.insert(cue).second) return;
  const Cue parts = ReadCue(cue);
  mNames.Add(KeyOfName(parts.mName), parts.mName, mSpeech.mName);
  for (const std::string& extension : parts.mExtensions) {
    mExtensions.Add(KeyOfExtension(extension), extension, mSpeech.mName);
  }
}

void StoryCheck::EndSpeech() {
  if (mSpeech.mHasName && !mSpeech.mHasDialogue) {
    Warn(FindingCode::kNameWithoutDialogue,
         "a name without dialogue is left out of the metadata: add dialogue after it",
         mSpeech.mName);
  }
  mSpeech.mHasName = mSpeech.mHasDialogue = false;
}

void StoryCheck::NoteNumber(const Scene& scene) {
  const std::string number = ToUTF8(scene.mSceneNumber);
  if (IsNumber(number)) {
    const auto [known, isNew] = mNumberPlaces.try_emplace(number, mNumbers.size());
    if (isNew) mNumbers.push_back({number, {}});
    mNumbers[known->second].second.push_back(mHere.mScene);
  } else if (std::ranges::any_of(scene.mParagraphs, [](const auto& paragraph) {
               return paragraph && paragraph->mElementType == kSceneHeading;
             })) {
    mUnnumbered.push_back(mHere.mScene);
  }
}

void StoryCheck::NoteIdentifier(const Scene& scene) {
  const auto first = std::ranges::find_if(
      scene.mParagraphs, [](const auto& paragraph) { return paragraph != nullptr; });
  if (first == scene.mParagraphs.end() || !(*first)->mObjectID.AsString().empty()) return;
  const SceneText text = CollectSceneText(scene);
  if (!text.mHeading.empty() || !text.mAction.empty() || !text.mPairs.empty()) {
    mUnidentified.push_back(mHere.mScene);
  }
}

void StoryCheck::CheckNumbers() {
  for (const auto& [number, positions] : mNumbers) {
    if (positions.size() == 1) continue;
    Warn(FindingCode::kDuplicateSceneNumber,
         ScenesHave(positions) + " the number " + Quoted(number) +
             ": give each its own, or choose them by position",
         {positions[1], 0});
  }
  if (mNumbers.empty() || mUnnumbered.empty()) return;
  Warn(FindingCode::kMissingSceneNumber,
       ScenesHave(mUnnumbered) +
           " no number, while others have one: number all, or choose them by position",
       {mUnnumbered.front(), 0});
}

void StoryCheck::CheckSpelling(const Spelled& spelled, const char* what, FindingCode code) {
  for (const Spelled::Group& group : spelled.Groups()) {
    if (group.mTexts.size() == 1) continue;
    Warn(code, what + Enumerate(group.mTexts) + ": they count as one; the metadata keeps each",
         group.mPlace);
  }
}

void StoryCheck::CheckIdentifiers() {
  if (mUnidentified.empty()) return;
  Warn(FindingCode::kMissingIdentifier,
       ScenesHave(mUnidentified) +
           " no identifier (objID) in the first paragraph, so that no packet is made for a shot: "
           "add one",
       {mUnidentified.front(), 0});
}

}  // namespace

std::vector<Finding> CheckStory(const TavroStory& story, const HeadingRules& rules,
                                const BodyPositions& positions) {
  return StoryCheck(story, rules, positions).Check();
}

}  // namespace zelstoryhost
