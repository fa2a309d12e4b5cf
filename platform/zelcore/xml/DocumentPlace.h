#pragma once

#include <cstddef>
#include <string_view>

#include <zelcore/xml/Position.h>
#include <zelcore/xml/TextWindow.h>

namespace zelcore::xml {

// The part of a document that the XML library holds at one moment, in UTF-8 whatever the document's
// encoding. Offsets count the bytes of the document in UTF-8.
struct HeldInput {
  std::size_t mOffset = 0;  // of the first byte held
  std::string_view mText;
  std::size_t mRead = 0;   // how many bytes of mText have been read
  Position mReadPosition;  // the line and column up to there, as the library counts

  std::size_t ReadOffset() const { return mOffset + mRead; }
};

// How far the XML library has read a document, as an exact line and column. The library's own
// columns are not exact after long lines, and it names the end of a tag, not its beginning; so the
// text that it holds is kept here too, and places are counted in it.
class DocumentPlace {
 public:
  // Begins to count, after the XML declaration: from there on the encoding stays the same.
  void Begin(const HeldInput& input);
  bool HasBegun() const { return mHasBegun; }

  // Takes over what the library has converted since the last call. Call it whenever the library
  // calls back or returns, since the library drops what it has read. Does nothing before Begin.
  void Follow(const HeldInput& input) {
    if (!mHasBegun) return;
    mRead = input.ReadOffset();
    if (mWindow.End() < input.mOffset + input.mText.size()) TakeNew(input);
  }

  // Forgets what has been read.
  void DropRead();

  // The place up to which the document has been read, and the place of the last "<" before it.
  // Only after Begin.
  Position Read() const { return mWindow.At(mRead); }
  Position LastTag() const { return mWindow.At(mWindow.LastTagBefore(mRead)); }

  // The place after all that is held; also before Begin.
  Position EndOf(const HeldInput& input);

 private:
  void TakeNew(const HeldInput& input);
  void Take(const HeldInput& input);

  TextWindow mWindow;
  std::size_t mRead = 0;  // the offset up to which the document has been read
  bool mHasBegun = false;
};

}  // namespace zelcore::xml
