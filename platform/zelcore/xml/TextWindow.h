#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include <zelcore/xml/Position.h>

namespace zelcore::xml {

// A part of a UTF-8 document with the place of its beginning, which gives the line and column of
// any byte in it. Offsets count the document's bytes.
class TextWindow {
 public:
  // Forgets everything and begins again, empty, at `offset`, whose place is given.
  void Restart(std::size_t offset, Position position);

  // The offset of the next byte to append.
  std::size_t End() const { return mBegin.mOffset + (mText.size() - mIndex); }

  // Adds the bytes that follow.
  void Append(std::string_view bytes) { mText.append(bytes); }

  // Forgets everything before `offset`.
  void DropBefore(std::size_t offset);

  // The place of the byte at `offset`, which is in the window or at its end.
  Position At(std::size_t offset) const;

  // The offset of the last "<" before `offset`; `offset` itself when there is none.
  std::size_t LastTagBefore(std::size_t offset) const;

 private:
  // A place whose line and column are known.
  struct Mark {
    std::size_t mOffset = 0;
    Position mPosition;
  };

  std::size_t Index(std::size_t offset) const;

  std::string mText;       // bytes dropped already, then the window
  std::size_t mIndex = 0;  // of the window's first byte
  Mark mBegin;             // the window's first byte
  mutable Mark mLast;      // the last result of At; the next is usually a little further on
};

}  // namespace zelcore::xml
