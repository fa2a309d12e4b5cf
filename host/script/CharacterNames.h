#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <zelstoryhost/SceneFacts.h>

namespace zelstoryhost {

// A cue as its parts, such as ANNA (V.O.) (CONT'D). The texts are as the script has them, without
// the blanks around them and without the parentheses. A mark of dual dialogue is no part.
struct Cue {
  std::string mName;
  std::vector<std::string> mExtensions;
};

Cue ReadCue(std::string_view text);

// The same text for all spellings of a name: those that differ in case, in blanks, in the form of
// apostrophes, or in how Unicode composes letters.
std::string KeyOfName(std::string_view name);

// Likewise for extensions, of which only letters and digits count: V.O. is VO.
std::string KeyOfExtension(std::string_view extension);

// Finds the usual spelling among several of the same thing.
class Spellings {
 public:
  void Add(const std::string& key, const std::string& text);

  bool Has(const std::string& key) const { return mUsual.contains(key); }

  // The spelling that was added most often, the earliest one of several. The key must be known.
  const std::string& UsualOf(const std::string& key) const { return mUsual.at(key)->mText; }

 private:
  struct Spelling {
    std::string mText;
    std::size_t mCount = 0;
    std::size_t mOrder = 0;  // earlier ones have less
  };

  std::unordered_map<std::string, Spelling> mAll;           // by their text
  std::unordered_map<std::string, const Spelling*> mUsual;  // in mAll, by key
};

// Tells who speaks under the cues of a story. Add all of its cues, in their order, and then ask.
// The time is linear in the length of the cues.
class CharacterNames {
 public:
  // Adds a cue, and returns the number by which SpeakersOf knows it. Equal cues have one number.
  std::size_t Add(const std::string& cue);

  // The character or, where a cue joins the names of several who also speak alone (ANNA AND BEN),
  // each of them once.
  std::vector<Speaker> SpeakersOf(std::size_t number) const;

 private:
  // A name in a cue, and the keys of its parts.
  struct Part {
    Cue mCue;
    std::string mKey;
    std::vector<std::string> mExtensionKeys;
  };

  struct KnownCue {
    Part mWhole;
    std::vector<Part> mJoined;  // two or more; none in a cue that joins no names
  };

  static Part ReadPart(std::string_view text);
  static KnownCue Read(std::string_view text);
  void CountExtensions(const Part& part);
  Speaker SpeakerOf(const Part& part) const;

  std::unordered_map<std::string, std::size_t> mNumbers;
  std::vector<KnownCue> mCues;
  Spellings mNames;
  Spellings mExtensions;
};

}  // namespace zelstoryhost
