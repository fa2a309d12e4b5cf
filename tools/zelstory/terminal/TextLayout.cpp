#include "terminal/TextLayout.h"

#include <algorithm>

#include <utf8proc.h>

#include <zelstoryhost/Text.h>

#include "terminal/Escaped.h"

namespace zelstory {
namespace {

// Passes each character to `use`, with U+FFFD in place of ill-formed bytes.
template <typename Use>
void ForEachCharacter(std::string_view text, Use use) {
  while (!text.empty()) {
    const zelstoryhost::Character character = zelstoryhost::FirstCharacter(text);
    use(static_cast<utf8proc_int32_t>(character.mValue));
    text.remove_prefix(character.mLength);
  }
}

void Append(utf8proc_int32_t character, std::string& text) {
  utf8proc_uint8_t bytes[4];
  const utf8proc_ssize_t length = utf8proc_encode_char(character, bytes);
  text.append(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(length));
}

std::size_t ColumnsOf(utf8proc_int32_t character) {
  return static_cast<std::size_t>(std::max(utf8proc_charwidth(character), 0));
}

// Fills lines character by character. A word that would not fit moves to a new line as
// a whole.
class Wrapper {
 public:
  explicit Wrapper(std::size_t columns) : mColumns(std::max<std::size_t>(columns, 2)) {}

  void Add(utf8proc_int32_t character) {
    if (character == '\n') {
      EndWord();
      EndLine();
    } else if (character == ' ' || character == '\t') {
      EndWord();
      if (!mLine.empty()) mSpaces.push_back(' ');
    } else {
      AddToWord(character);
    }
  }

  std::vector<std::string> Finish() {
    EndWord();
    EndLine();
    return std::move(mLines);
  }

 private:
  void AddToWord(utf8proc_int32_t character) {
    if (mWordColumns + ColumnsOf(character) > mColumns) EndWord();
    Append(character, mWord);
    mWordColumns += ColumnsOf(character);
  }

  void EndWord() {
    if (mWord.empty()) return;
    if (!mLine.empty() && mLineColumns + mSpaces.size() + mWordColumns > mColumns) EndLine();
    mLine += mSpaces + mWord;
    mLineColumns += mSpaces.size() + mWordColumns;
    mSpaces.clear();
    mWord.clear();
    mWordColumns = 0;
  }

  void EndLine() {
    mLines.push_back(std::move(mLine));
    mLine.clear();
    mSpaces.clear();
    mLineColumns = 0;
  }

  std::size_t mColumns;
  std::vector<std::string> mLines;
  std::string mLine;
  std::string mSpaces;  // after the line's last word
  std::string mWord;
  std::size_t mLineColumns = 0;
  std::size_t mWordColumns = 0;
};

}  // namespace

std::size_t ColumnsOf(std::string_view text) {
  std::size_t columns = 0;
  ForEachCharacter(text,
                   [&columns](utf8proc_int32_t character) { columns += ColumnsOf(character); });
  return columns;
}

std::string InCapitals(std::string_view text) {
  std::string capitals;
  ForEachCharacter(text, [&capitals](utf8proc_int32_t character) {
    Append(utf8proc_toupper(character), capitals);
  });
  return capitals;
}

std::vector<std::string> WrapText(std::string_view text, std::size_t columns) {
  Wrapper wrapper(columns);
  ForEachCharacter(Escaped(text, "\n\t"),
                   [&wrapper](utf8proc_int32_t character) { wrapper.Add(character); });
  return wrapper.Finish();
}

std::string Shortened(const std::string& text, std::size_t columns) {
  std::string line = WrapText(text, static_cast<std::size_t>(-1)).front();
  if (ColumnsOf(line) <= columns) return line;
  return WrapText(line, columns - 1).front() + "\xE2\x80\xA6";  // an ellipsis
}

}  // namespace zelstory
