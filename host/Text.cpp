#include <sstream>

#include <zelstoryhost/Text.h>

#include <zelcore/String.h>

namespace zelstoryhost {

std::string ToUTF8(std::u16string_view text) {
  const zelcore::UTF8String bytes = zelcore::utility::UTF16to8(text);
  return std::string(bytes.data(), bytes.size());
}

std::string TextOf(const zelstoryparser::Paragraph& paragraph) {
  std::string text;
  for (const auto& run : paragraph.mTextRuns) {
    if (run) text += ToUTF8(run->mText);
  }
  return text;
}

std::int64_t CountWords(const std::string& text) {
  std::istringstream words(text);
  std::int64_t count = 0;
  for (std::string word; words >> word;) ++count;
  return count;
}

}  // namespace zelstoryhost
