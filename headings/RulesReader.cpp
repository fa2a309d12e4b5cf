#include "headings/RulesReader.h"

#include <algorithm>
#include <optional>
#include <string>

#include <utf8proc.h>

#include "headings/HeadingTokens.h"
#include "headings/Languages.h"
#include "headings/UTF8.h"

namespace zelstoryparser {
namespace {

// Refuses spellings that are sentences, so that matching takes linear time.
constexpr std::size_t kMostWords = 8;

constexpr std::size_t kNone = std::string_view::npos;

constexpr struct {
  std::string_view mKey;
  WordClass mClass;
} kKeys[] = {{"setting", kSettingWord}, {"time", kTimeWord},           {"modifier", kTimeModifier},
             {"clock", kClockWord},     {"qualifier", kQualifierWord}, {"scene", kSceneWord}};

constexpr std::string_view kKnownKeys =
    "language, use, setting, time, modifier, clock, qualifier, scene or separator";

std::string_view Trimmed(std::string_view text) {
  constexpr std::string_view kBlanks = " \t\r";
  const std::size_t begin = std::min(text.find_first_not_of(kBlanks), text.size());
  return text.substr(begin, text.find_last_not_of(kBlanks) + 1 - begin);
}

// The place of the first ill-formed byte; kNone if there is none.
std::size_t FindIllFormed(std::string_view text) {
  char32_t character = 0;
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t length = LengthOfFirst(text.substr(at), character);
    if (length == 0) return at;
    at += length;
  }
  return kNone;
}

class RulesReader {
 public:
  RulesReader(HeadingTables& tables, HeadingRulesFault& fault) : mTables(tables), mFault(fault) {}

  bool Read(std::string_view text) {
    if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
    while (!text.empty()) {
      const std::size_t end = std::min(text.find('\n'), text.size());
      ++mNumber;
      mLine = text.substr(0, end);
      if (!ReadLine()) return false;
      text.remove_prefix(std::min(end + 1, text.size()));
    }
    return true;
  }

 private:
  // `place` is a part of the line.
  bool Refuse(std::string_view place, std::string reason) {
    const auto isFirstByte = [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; };
    const char* const begin = mLine.data();
    mFault.mLine = mNumber;
    mFault.mColumn = 1 + static_cast<std::size_t>(std::count_if(begin, place.data(), isFirstByte));
    mFault.mReason = std::move(reason);
    return false;
  }

  bool ReadLine() {
    const std::size_t illFormed = FindIllFormed(mLine);
    if (illFormed != kNone) return Refuse(mLine.substr(illFormed), "is not UTF-8");
    const std::string_view line = Trimmed(mLine.substr(0, mLine.find('#')));
    if (line.empty()) return true;
    const std::size_t colon = line.find(':');
    if (colon == kNone) return Refuse(line, "a colon is missing after the key");
    const std::string_view key = Trimmed(line.substr(0, colon));
    const std::string_view values = Trimmed(line.substr(colon + 1));
    if (values.empty()) return Refuse(values, "nothing follows the key " + std::string(key));
    if (key == "language") return AddLanguage(values);
    if (key == "separator") return AddSeparators(values);
    if (key == "use") return ForEachValue(values, [this](auto name) { return Use(name); });
    for (const auto& known : kKeys) {
      if (key != known.mKey) continue;
      return ForEachValue(values, [&](auto value) { return AddSpelling(value, known.mClass); });
    }
    return Refuse(key, "unknown key " + std::string(key) + ": use " + std::string(kKnownKeys));
  }

  template <typename Add>
  bool ForEachValue(std::string_view values, Add add) {
    for (std::size_t comma = 0; comma != kNone;) {
      comma = values.find(',');
      const std::string_view value = Trimmed(values.substr(0, comma));
      if (value.empty()) return Refuse(values, "a value is empty");
      if (!add(value)) return false;
      if (comma != kNone) values.remove_prefix(comma + 1);
    }
    return true;
  }

  bool AddLanguage(std::string_view name) {
    mTables.AddLanguage(std::string(name));
    return true;
  }

  bool AddSeparators(std::string_view values) {
    while (!values.empty()) {
      char32_t character = 0;
      const std::size_t length = LengthOfFirst(values, character);
      const utf8proc_category_t category =
          utf8proc_category(static_cast<utf8proc_int32_t>(character));
      if (category >= UTF8PROC_CATEGORY_LU && category <= UTF8PROC_CATEGORY_NO) {
        return Refuse(values, "a letter or digit cannot be a separator");
      }
      if (character > 0x20) mTables.AddSeparator(character);
      values.remove_prefix(length);
    }
    return true;
  }

  bool Use(std::string_view name) {
    const auto isSame = [name](const LanguageFile& file) {
      return std::equal(name.begin(), name.end(), file.mName.begin(), file.mName.end(),
                        [](char a, char b) { return (a >= 'A' && a <= 'Z' ? a + 32 : a) == b; });
    };
    bool isFound = false;
    for (const LanguageFile& file : LanguageFiles()) {
      if (name != "all" && !isSame(file)) continue;
      isFound = true;
      if (!ReadRules(file.mText, mTables, mFault)) return false;
    }
    return isFound || Refuse(name, "no language " + std::string(name) + " is built in");
  }

  bool AddSpelling(std::string_view value, WordClass wordClass) {
    std::vector<HeadingTables::Symbol>& symbols = mSymbols;
    symbols.clear();
    const HeadingTokens& tokens = TokensOfSpelling(value, mTables, mBuffers);
    for (const HeadingToken& token : tokens) {
      if (token.mSymbol != HeadingTables::kUnknown) symbols.push_back(token.mSymbol);
    }
    const bool hasWord = std::any_of(tokens.begin(), tokens.end(), [](const HeadingToken& token) {
      return token.mKind == TokenKind::kWord;
    });
    if (!hasWord) return Refuse(value, "a spelling needs a letter or digit");
    if (tokens.front().mKind != TokenKind::kWord) {
      return Refuse(value, "a spelling begins with a letter or digit");
    }
    if (symbols.size() > kMostWords) return Refuse(value, "a spelling has at most eight words");
    const bool needsStop = tokens.back().mKind == TokenKind::kStop;
    mTables.AddSpelling(symbols, wordClass, needsStop);
    return true;
  }

  HeadingTables& mTables;
  HeadingRulesFault& mFault;
  std::string_view mLine;
  std::size_t mNumber = 0;
  TokenBuffers mBuffers;
  std::vector<HeadingTables::Symbol> mSymbols;  // of one spelling
};

}  // namespace

bool ReadRules(std::string_view text, HeadingTables& tables, HeadingRulesFault& fault) {
  return RulesReader(tables, fault).Read(text);
}

}  // namespace zelstoryparser
