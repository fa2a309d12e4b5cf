#include <algorithm>

#include <zelcore/xml/TextWindow.h>

namespace zelcore::xml {
namespace {

// A column counts characters; continuation bytes are not their beginnings, and a byte-order mark at
// the document's start is none.
std::int64_t CountCharacters(std::string_view bytes, bool atDocumentStart) {
  if (atDocumentStart && bytes.substr(0, 3) == "\xEF\xBB\xBF") bytes.remove_prefix(3);
  return std::count_if(bytes.begin(), bytes.end(),
                       [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; });
}

}  // namespace

std::size_t TextWindow::Index(std::size_t offset) const {
  return std::min(mBegin + (offset - std::min(offset, mOffset)), mText.size());
}

Position TextWindow::At(std::size_t offset) const {
  const auto passed = std::string_view(mText).substr(mBegin, Index(offset) - mBegin);
  const std::size_t newline = passed.rfind('\n');
  if (newline == std::string_view::npos) {
    return {mPosition.mLine, mPosition.mColumn + CountCharacters(passed, mOffset == 0)};
  }
  return {mPosition.mLine + std::count(passed.begin(), passed.end(), '\n'),
          1 + CountCharacters(passed.substr(newline + 1), false)};
}

void TextWindow::DropBefore(std::size_t offset) {
  const std::size_t index = Index(offset);
  mPosition = At(offset);
  mOffset += index - mBegin;
  mBegin = index;
  // Moved only when it halves the text, so that many small steps through a long one stay linear.
  if (mBegin < mText.size() / 2) return;
  mText.erase(0, mBegin);
  mBegin = 0;
}

std::size_t TextWindow::LastTagBefore(std::size_t offset) const {
  const std::size_t index = Index(offset);
  const std::size_t tag = index == 0 ? std::string::npos : mText.rfind('<', index - 1);
  return tag == std::string::npos || tag < mBegin ? offset : mOffset + (tag - mBegin);
}

}  // namespace zelcore::xml
