#include "script/CharacterNames.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>
#include <new>

#include <utf8proc.h>

#include <zelstoryhost/Text.h>

#include "Letters.h"

namespace zelstoryhost {
namespace {

// What joins two names. The words are those of KeyOfName.
constexpr std::string_view kJoiningMarks = "/&+,";
constexpr std::array<std::string_view, 14> kJoiningWords{
    "and",  // English
    "und",  // German
    "et",   // French
    "y",    // Spanish
    "e",    // Italian, Portuguese
    "en",   // Dutch
    "och",  // Swedish
    "og",   // Danish, Norwegian
    "ja",   // Finnish
    "i",    // Polish, Catalan, Croatian
    "ve",   // Turkish
    "и",    // Russian
    "і",    // Ukrainian
    "και",  // Greek
};

bool IsBlank(char32_t character) {
  const auto category = utf8proc_category(static_cast<utf8proc_int32_t>(character));
  return category == UTF8PROC_CATEGORY_ZS || category == UTF8PROC_CATEGORY_ZL ||
         category == UTF8PROC_CATEGORY_ZP || (character >= U'\t' && character <= U'\r');
}

// Calls `take` with each character of a text: its value, and its bytes.
template <typename Take>
void ForEachCharacter(std::string_view text, Take take) {
  while (!text.empty()) {
    const Character character = FirstCharacter(text);
    take(character.mValue, text.substr(0, character.mLength));
    text.remove_prefix(character.mLength);
  }
}

std::string_view TrimEnd(std::string_view text) {
  while (!text.empty()) {
    std::size_t last = text.size() - 1;
    while (last > 0 && (static_cast<unsigned char>(text[last]) & 0xC0) == 0x80) --last;
    if (!IsBlank(FirstCharacter(text.substr(last)).mValue)) break;
    text = text.substr(0, last);
  }
  return text;
}

std::string_view Trim(std::string_view text) {
  while (!text.empty()) {
    const Character first = FirstCharacter(text);
    if (!IsBlank(first.mValue)) break;
    text.remove_prefix(first.mLength);
  }
  return TrimEnd(text);
}

// Case folded and composed, without the characters that nobody sees. A text that is too long for a
// name stays as it is: sorting many combining marks would take quadratic time.
std::string Folded(std::string_view text) {
  constexpr std::size_t kLongestName = 1000;  // in bytes
  if (text.size() > kLongestName) return std::string(text);
  constexpr auto kOptions = static_cast<utf8proc_option_t>(UTF8PROC_STABLE | UTF8PROC_COMPOSE |
                                                           UTF8PROC_CASEFOLD | UTF8PROC_IGNORE);
  utf8proc_uint8_t* folded = nullptr;
  const utf8proc_ssize_t size =
      utf8proc_map(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                   static_cast<utf8proc_ssize_t>(text.size()), &folded, kOptions);
  const std::unique_ptr<utf8proc_uint8_t, decltype(&std::free)> owner(folded, &std::free);
  if (size == UTF8PROC_ERROR_NOMEM) throw std::bad_alloc();
  if (size < 0) return std::string(text);
  return std::string(reinterpret_cast<const char*>(folded), static_cast<std::size_t>(size));
}

// A cue that joins more is taken for the name of a crowd.
constexpr std::size_t kMostJoined = 32;

// Where the parenthesis at a text's end opens; npos if there is none, or if it stands at the
// beginning, since a name is never empty: (A VOICE).
std::size_t OpeningOfLast(std::string_view text) {
  std::size_t depth = 0;
  for (std::size_t i = text.ends_with(')') ? text.size() : 0; i-- > 0;) {
    if (text[i] == ')') ++depth;
    if (text[i] == '(' && --depth == 0) return i == 0 ? std::string_view::npos : i;
  }
  return std::string_view::npos;
}

// The texts between marks and words that join names, and outside of parentheses. Those that are
// empty are left out.
class NameSplitter {
 public:
  explicit NameSplitter(std::string_view text) : mText(text) {}

  std::vector<std::string_view> Split() {
    int depth = 0;
    std::size_t place = 0;
    ForEachCharacter(mText, [&](char32_t character, std::string_view bytes) {
      if (character == U'(') ++depth;
      if (character == U')') depth = std::max(0, depth - 1);
      const bool isMark =
          bytes.size() == 1 && kJoiningMarks.find(bytes[0]) != std::string_view::npos;
      if (depth == 0 && (isMark || IsBlank(character))) {
        EndWord(place);
        if (isMark) Cut(place, place + 1);
        mWord = place + bytes.size();
      }
      place += bytes.size();
    });
    EndWord(place);
    Cut(place, place);
    return std::move(mParts);
  }

 private:
  // Cuts at a word that joins the names around it.
  void EndWord(std::size_t end) {
    constexpr std::size_t kLongestWord = 6;  // in bytes
    const std::size_t size = end - mWord;
    if (size == 0 || size > kLongestWord) return;
    const std::string word = Folded(mText.substr(mWord, size));
    if (std::ranges::find(kJoiningWords, word) != kJoiningWords.end()) Cut(mWord, end);
  }

  void Cut(std::size_t end, std::size_t next) {
    const std::string_view part = Trim(mText.substr(mPart, end - mPart));
    if (!part.empty()) mParts.push_back(part);
    mPart = next;
  }

  const std::string_view mText;
  std::size_t mPart = 0;  // where the name begins
  std::size_t mWord = 0;  // where the word begins
  std::vector<std::string_view> mParts;
};

}  // namespace

Cue ReadCue(std::string_view text) {
  Cue cue;
  text = Trim(text);
  while (text.size() > 1) {
    const std::size_t open = OpeningOfLast(text);
    if (text.ends_with('^')) {
      text.remove_suffix(1);
    } else if (open != std::string_view::npos) {
      const std::string_view extension = Trim(text.substr(open + 1, text.size() - open - 2));
      if (!extension.empty()) cue.mExtensions.emplace_back(extension);
      text = text.substr(0, open);
    } else {
      break;
    }
    text = TrimEnd(text);
  }
  std::ranges::reverse(cue.mExtensions);
  cue.mName = text;
  return cue;
}

std::string KeyOfName(std::string_view name) {
  std::string key;
  bool isAfterBlank = false;
  const std::string folded = Folded(name);
  ForEachCharacter(folded, [&](char32_t character, std::string_view bytes) {
    if (IsBlank(character)) {
      isAfterBlank = true;
      return;
    }
    if (isAfterBlank && !key.empty()) key += ' ';
    isAfterBlank = false;
    key += character == U'\u2019' ? "'" : bytes;
  });
  return key;
}

std::string KeyOfExtension(std::string_view extension) {
  std::string key;
  std::string folded = KeyOfName(extension);
  ForEachCharacter(folded, [&](char32_t character, std::string_view bytes) {
    if (IsLetterOrDigit(character)) key += bytes;
  });
  return key.empty() ? folded : key;
}

void Spellings::Add(const std::string& key, const std::string& text) {
  const auto [known, isNew] = mAll.try_emplace(text);
  Spelling& added = known->second;
  if (isNew) added = {text, 0, mAll.size()};
  ++added.mCount;
  const Spelling*& usual = mUsual.try_emplace(key, &added).first->second;
  const bool isAsUsual = added.mCount == usual->mCount && added.mOrder < usual->mOrder;
  if (added.mCount > usual->mCount || isAsUsual) usual = &added;
}

std::size_t CharacterNames::Add(const std::string& cue) {
  const auto [known, isNew] = mNumbers.try_emplace(cue, mCues.size());
  if (isNew) mCues.push_back(Read(cue));
  const KnownCue& added = mCues[known->second];
  mNames.Add(added.mWhole.mKey, added.mWhole.mCue.mName);
  if (added.mJoined.empty()) CountExtensions(added.mWhole);
  for (const Part& part : added.mJoined) CountExtensions(part);
  return known->second;
}

std::vector<Speaker> CharacterNames::SpeakersOf(std::size_t number) const {
  const KnownCue& cue = mCues[number];
  const bool areKnown =
      std::ranges::all_of(cue.mJoined, [this](const Part& part) { return mNames.Has(part.mKey); });
  if (cue.mJoined.empty() || !areKnown) return {SpeakerOf(cue.mWhole)};
  std::vector<Speaker> speakers;
  for (const Part& part : cue.mJoined) {
    Speaker speaker = SpeakerOf(part);
    if (std::ranges::find(speakers, speaker.mName, &Speaker::mName) == speakers.end()) {
      speakers.push_back(std::move(speaker));
    }
  }
  return speakers;
}

CharacterNames::Part CharacterNames::ReadPart(std::string_view text) {
  Part part{ReadCue(text), {}, {}};
  part.mKey = KeyOfName(part.mCue.mName);
  for (const std::string& extension : part.mCue.mExtensions) {
    part.mExtensionKeys.push_back(KeyOfExtension(extension));
  }
  return part;
}

// An extension after the last of several names belongs to all, unless another has its own.
CharacterNames::KnownCue CharacterNames::Read(std::string_view text) {
  KnownCue cue{ReadPart(text), {}};
  const std::vector<std::string_view> names = NameSplitter(text).Split();
  if (names.size() < 2 || names.size() > kMostJoined) return cue;
  for (const std::string_view name : names) cue.mJoined.push_back(ReadPart(name));
  const Part& last = cue.mJoined.back();
  const bool isLastOnly = std::all_of(cue.mJoined.begin(), cue.mJoined.end() - 1,
                                      [](const Part& part) { return part.mExtensionKeys.empty(); });
  for (Part& part : cue.mJoined) {
    if (isLastOnly) part.mExtensionKeys = last.mExtensionKeys;
  }
  return cue;
}

void CharacterNames::CountExtensions(const Part& part) {
  for (std::size_t i = 0; i < part.mCue.mExtensions.size(); ++i) {
    mExtensions.Add(part.mExtensionKeys[i], part.mCue.mExtensions[i]);
  }
}

Speaker CharacterNames::SpeakerOf(const Part& part) const {
  Speaker speaker{mNames.UsualOf(part.mKey), {}};
  for (const std::string& key : part.mExtensionKeys) {
    speaker.mExtensions.push_back(mExtensions.UsualOf(key));
  }
  return speaker;
}

}  // namespace zelstoryhost
