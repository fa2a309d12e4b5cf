#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include <zelcore/xml/Position.h>

namespace zelcore::xml {

// The part of a UTF-8 document that has been read but not yet been left behind, with the place of
// its beginning: tells the line and column of any byte in it. Offsets count the document's bytes.
class TextWindow {
 public:
  // Forgets everything; what follows begins at `offset`, whose place is given.
  void Restart(std::size_t offset, Position position);

  // Where the next byte belongs.
  std::size_t End() const { return mBegin.mOffset + (mText.size() - mIndex); }

  // Adds the bytes that follow.
  void Append(std::string_view bytes) { mText.append(bytes); }

  // Forgets everything before `offset`.
  void DropBefore(std::size_t offset);

  // The place of the byte at `offset`, which lies in the window or just behind it.
  Position At(std::size_t offset) const;

  // The offset of the last "<" in front of `offset`; `offset` itself when there is none.
  std::size_t LastTagBefore(std::size_t offset) const;

 private:
  // A place whose line and column are known.
  struct Mark {
    std::size_t mOffset = 0;
    Position mPosition;
  };

  std::size_t Index(std::size_t offset) const;

  std::string mText;       // bytes left behind, then the window
  std::size_t mIndex = 0;  // of the window's first byte
  Mark mBegin;             // the window's first byte
  // What was asked for last, never before mBegin: the next question is mostly a little further on.
  mutable Mark mLast;
};

}  // namespace zelcore::xml
