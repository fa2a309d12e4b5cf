#pragma once

#include <string>
#include <string_view>
#include <utility>

namespace zelcore::xml {

// The CDATA section that is being read. The XML library delivers a section in pieces, unchanged:
// the line ends are still those of the document, so a CR LF may even be split between two pieces.
class CDATAText {
 public:
  // Open returns whether a section begins, not only another piece of it; Close whether one ends.
  bool Open() { return !std::exchange(mIsOpen, true); }
  bool Close() {
    mEndsInCR = false;
    return std::exchange(mIsOpen, false);
  }

  // The next piece with its line ends as line feeds: as it is, or in a buffer that lives until the
  // next call.
  std::string_view Normalise(std::string_view piece);

 private:
  bool mIsOpen = false;
  bool mEndsInCR = false;  // the piece before, so that a line feed at the next one's start is its
  std::string mNormalised;
};

}  // namespace zelcore::xml
