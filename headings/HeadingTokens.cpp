#include "headings/HeadingTokens.h"

#include <algorithm>
#include <array>

#include <utf8proc.h>

#include "headings/UTF8.h"

namespace zelstoryparser {
namespace {

// The characters of a text, and one behind its end. Half a surrogate pair is a character.
std::vector<HeadingCharacter> CharactersOf(std::u16string_view text) {
  std::vector<HeadingCharacter> characters;
  characters.reserve(text.size() + 1);
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto is = [text](std::size_t at, unsigned half) {
      return at < text.size() && (text[at] & 0xFC00u) == half;
    };
    HeadingCharacter character{text[i], i};
    if (is(i, 0xD800) && is(i + 1, 0xDC00)) {
      character.mValue = 0x10000 + ((text[i] & 0x3FFu) << 10) + (text[i + 1] & 0x3FFu);
      ++i;
    }
    characters.push_back(character);
  }
  characters.push_back({0, text.size()});
  return characters;
}

utf8proc_category_t CategoryOf(char32_t c) {
  return utf8proc_category(static_cast<utf8proc_int32_t>(c));
}

bool IsDigit(char32_t c) {
  return c >= U'0' && c <= U'9';
}

bool IsWordCharacter(char32_t c) {
  if (c < 0x80) return IsDigit(c) || (c >= U'A' && c <= U'Z') || (c >= U'a' && c <= U'z');
  const utf8proc_category_t category = CategoryOf(c);
  return category >= UTF8PROC_CATEGORY_LU && category <= UTF8PROC_CATEGORY_NO;
}

// Invisible: it neither ends a word nor belongs to its spelling.
bool IsFormat(char32_t c) {
  return c >= 0x80 && CategoryOf(c) == UTF8PROC_CATEGORY_CF;
}

bool IsBlank(char32_t c) {
  if (c < 0x80) return c == U' ' || (c >= U'\t' && c <= U'\r');
  const utf8proc_category_t category = CategoryOf(c);
  return (category >= UTF8PROC_CATEGORY_ZS && category <= UTF8PROC_CATEGORY_ZP) || IsFormat(c);
}

bool IsApostrophe(char32_t c) {
  return c == U'\'' || c == U'\u2019';
}

bool IsHyphen(char32_t c) {
  return c == U'-' || c == U'\u2010' || c == U'\u2011';
}

bool IsDash(char32_t c) {
  return IsHyphen(c) || (c >= U'\u2012' && c <= U'\u2015') || c == U'\u2212';
}

TokenKind KindOf(char32_t c) {
  constexpr struct {
    std::u32string_view mCharacters;
    TokenKind mKind;
  } kKinds[] = {
      {U".", TokenKind::kStop},   {U"/\\&+", TokenKind::kSlash}, {U",", TokenKind::kComma},
      {U":", TokenKind::kColon},  {U"#", TokenKind::kHash},      {U"([", TokenKind::kOpen},
      {U")]", TokenKind::kClose},
  };
  for (const auto& row : kKinds) {
    if (row.mCharacters.find(c) != std::u32string_view::npos) return row.mKind;
  }
  return TokenKind::kOther;
}

// Appends a character without case and accents.
void AppendFolded(char32_t c, std::u32string& word) {
  if (c < 0x80) {
    if (!IsApostrophe(c)) word += c >= U'A' && c <= U'Z' ? c + 0x20 : c;
    return;
  }
  if (IsApostrophe(c) || IsFormat(c)) return;
  std::array<utf8proc_int32_t, 32> folded{};
  int boundary = 0;
  const utf8proc_ssize_t length = utf8proc_decompose_char(
      static_cast<utf8proc_int32_t>(c), folded.data(), folded.size(),
      static_cast<utf8proc_option_t>(UTF8PROC_DECOMPOSE | UTF8PROC_CASEFOLD | UTF8PROC_STRIPMARK),
      &boundary);
  for (utf8proc_ssize_t i = 0; i < std::min<utf8proc_ssize_t>(length, folded.size()); ++i) {
    word += static_cast<char32_t>(folded[static_cast<std::size_t>(i)]);
  }
}

// What a word with a digit at an end says, for clock times and scene numbers.
std::string NumberText(const std::u32string& folded) {
  if (folded.empty() || (!IsDigit(folded.front()) && !IsDigit(folded.back()))) return {};
  std::string text;
  for (const char32_t c : folded) text += c < 0x80 ? static_cast<char>(c) : '?';
  return text;
}

template <typename SymbolOf>
class Tokenizer {
 public:
  // `buffers` hold the characters; the tokens are put into them.
  Tokenizer(TokenBuffers& buffers, const HeadingTables& tables, SymbolOf symbolOf)
      : mBuffers(buffers), mTables(tables), mSymbolOf(symbolOf) {}

  void Run() {
    mTokens.clear();
    mOpen.clear();
    while (mAt + 1 < mCharacters.size()) {
      const char32_t c = Value(mAt);
      if (IsWordCharacter(c)) {
        AddWord();
      } else if (IsDash(c) || mTables.IsSeparator(c)) {
        AddDashes();
      } else if (IsBlank(c)) {
        ++mAt;
      } else {
        AddMark(KindOf(c));
      }
    }
  }

 private:
  char32_t Value(std::size_t at) const { return mCharacters[at].mValue; }
  bool IsWordAt(std::size_t at) const { return IsWordCharacter(Value(at)); }

  HeadingToken& Add(TokenKind kind, std::size_t end) {
    HeadingToken token;
    token.mKind = kind;
    token.mBegin = mCharacters[mAt].mBegin;
    token.mEnd = mCharacters[end].mBegin;
    mTokens.push_back(token);
    mAt = end;
    return mTokens.back();
  }

  void AddWord() {
    std::u32string& folded = mBuffers.mWord;
    folded.clear();
    std::size_t end = mAt;
    std::size_t next = mAt;
    while (IsWordAt(next) || IsFormat(Value(next)) || (IsApostrophe(Value(next)) && end == next)) {
      AppendFolded(Value(next), folded);
      if (IsWordAt(next++)) end = next;
    }
    HeadingToken& word = Add(TokenKind::kWord, end);
    word.mSymbol = mSymbolOf(folded);
    word.mText = NumberText(folded);
  }

  // One dash between two word characters binds them, unless it is a long one between letters.
  void AddDashes() {
    std::size_t end = mAt;
    while (IsDash(Value(end)) || mTables.IsSeparator(Value(end))) ++end;
    const bool isTight = end == mAt + 1 && mAt > 0 && IsWordAt(mAt - 1) && IsWordAt(end);
    const bool isRange = isTight && IsDigit(Value(mAt - 1)) && IsDigit(Value(end));
    const bool binds = IsHyphen(Value(mAt)) ? isTight : isRange && IsDash(Value(mAt));
    Add(binds && !mTables.IsSeparator(Value(mAt)) ? TokenKind::kHyphen : TokenKind::kSeparator,
        end);
  }

  void AddMark(TokenKind kind) {
    HeadingToken& mark = Add(kind, mAt + 1);
    const std::size_t index = mTokens.size() - 1;
    if (kind == TokenKind::kSlash) mark.mSymbol = HeadingTables::kSlash;
    if (kind == TokenKind::kOpen) mOpen.push_back(index);
    if (kind != TokenKind::kClose || mOpen.empty()) return;
    mTokens[mOpen.back()].mPartner = index;
    mark.mPartner = mOpen.back();
    mOpen.pop_back();
  }

  TokenBuffers& mBuffers;
  const std::vector<HeadingCharacter>& mCharacters = mBuffers.mCharacters;
  HeadingTokens& mTokens = mBuffers.mTokens;
  std::vector<std::size_t>& mOpen = mBuffers.mOpen;
  const HeadingTables& mTables;
  SymbolOf mSymbolOf;
  std::size_t mAt = 0;  // in mCharacters
};

}  // namespace

HeadingTokens TokensOf(std::u16string_view text, const HeadingTables& tables) {
  TokenBuffers buffers;
  buffers.mCharacters = CharactersOf(text);
  Tokenizer(buffers, tables, [&tables](std::u32string_view word) {
    return tables.Find(word);
  }).Run();
  return std::move(buffers.mTokens);
}

const HeadingTokens& TokensOfSpelling(std::string_view text, HeadingTables& tables,
                                      TokenBuffers& buffers) {
  buffers.mCharacters.clear();
  std::size_t at = 0;
  while (at < text.size()) {
    HeadingCharacter character{0, at};
    at += std::max<std::size_t>(LengthOfFirst(text.substr(at), character.mValue), 1);
    buffers.mCharacters.push_back(character);
  }
  buffers.mCharacters.push_back({0, at});
  Tokenizer(buffers, tables, [&tables](std::u32string_view word) {
    return tables.Add(word);
  }).Run();
  return buffers.mTokens;
}

}  // namespace zelstoryparser
