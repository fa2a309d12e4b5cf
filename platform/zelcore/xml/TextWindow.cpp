#include <algorithm>

#include <zelcore/xml/TextWindow.h>

namespace zelcore::xml {
namespace {

// Counts bytes in blocks whose count fits a byte, so that compilers turn the loop into vector code.
template <typename Predicate>
std::int64_t CountBytes(std::string_view bytes, Predicate isCounted) {
  constexpr std::size_t kBlock = 128;
  std::int64_t count = 0;
  while (!bytes.empty()) {
    const std::string_view block = bytes.substr(0, kBlock);
    unsigned char inBlock = 0;
    for (const char byte : block) inBlock = static_cast<unsigned char>(inBlock + isCounted(byte));
    count += inBlock;
    bytes.remove_prefix(block.size());
  }
  return count;
}

// A column counts characters, so continuation bytes do not count.
std::int64_t CountCharacters(std::string_view bytes) {
  return CountBytes(bytes,
                    [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; });
}

}  // namespace

void TextWindow::Restart(std::size_t offset, Position position) {
  mText.clear();
  mIndex = 0;
  mBegin = mLast = {offset, position};
}

std::size_t TextWindow::Index(std::size_t offset) const {
  return std::min(mIndex + (offset - std::min(offset, mBegin.mOffset)), mText.size());
}

Position TextWindow::At(std::size_t offset) const {
  const Mark& from = mLast.mOffset <= offset ? mLast : mBegin;  // mLast is in the window
  const std::size_t begin = Index(from.mOffset);
  const auto passed = std::string_view(mText).substr(begin, Index(offset) - begin);
  Position position = from.mPosition;
  const std::size_t newline = passed.rfind('\n');
  if (newline == std::string_view::npos) {
    position.mColumn += CountCharacters(passed);
  } else {
    position.mLine += CountBytes(passed, [](char byte) { return byte == '\n'; });
    position.mColumn = 1 + CountCharacters(passed.substr(newline + 1));
  }
  mLast = {from.mOffset + passed.size(), position};
  return position;
}

void TextWindow::DropBefore(std::size_t offset) {
  const std::size_t index = Index(offset);
  mBegin = {mBegin.mOffset + (index - mIndex), At(offset)};
  mIndex = index;
  // The text is moved only when that halves it, so many small steps through a long one stay linear.
  if (mIndex < mText.size() / 2) return;
  mText.erase(0, mIndex);
  mIndex = 0;
}

std::size_t TextWindow::LastTagBefore(std::size_t offset) const {
  const std::size_t index = Index(offset);
  const std::size_t tag = index == 0 ? std::string::npos : mText.rfind('<', index - 1);
  return tag == std::string::npos || tag < mIndex ? offset : mBegin.mOffset + (tag - mIndex);
}

}  // namespace zelcore::xml
