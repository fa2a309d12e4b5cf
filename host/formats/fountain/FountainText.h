#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <zelcore/xml/Position.h>

#include "formats/FindingList.h"

namespace zelstoryhost::fountain {

// A note or a boneyard, which was taken out of the text.
struct Remark {
  bool mIsBoneyard;
  std::string mText;       // without its marks
  std::size_t mLineCount;  // of the lines that begin before it; it stands in the last of them
};

// A Fountain script as lines without notes and boneyards. A line that held nothing else is no line.
// Tabs are four blanks.
class FountainText {
 public:
  // `text` comes from DecodeText. Unclosed notes and boneyards are kept as text, with a finding for
  // the first.
  FountainText(std::string_view text, FindingList& findings);

  std::size_t CountLines() const { return mLines.size(); }
  std::string_view Line(std::size_t index) const;

  // The line's number in the script, from 1.
  std::int64_t NumberOf(std::size_t index) const { return mLines[index].mNumber; }

  // In order.
  const std::vector<Remark>& Remarks() const { return mRemarks; }

 private:
  struct LinePlace {
    std::size_t mBegin, mEnd;  // in mText
    std::int64_t mNumber;
  };

  void TakeCharacter();
  void EndLine();
  bool TakeBoneyard();
  bool TakeNote();
  void Remove(bool isBoneyard, std::size_t end);
  void ReportUnclosed(std::string_view what);
  std::size_t EndOfBlock();
  void JoinBlanks();

  FindingList& mFindings;
  const std::string_view mSource;
  std::size_t mNext = 0;        // in mSource
  std::int64_t mNumber = 1;     // of the line of mSource
  std::size_t mSourceLine = 0;  // where that line begins
  std::size_t mNoteEnd = 0;     // the first ]] that was found last, or npos
  std::size_t mBlockEnd = 0;    // the empty line that was found last, or npos
  bool mHasBoneyardEnd = true;  // a */ may follow
  bool mHasUnclosedNote = false;
  std::int64_t mLineNumber = 1;  // of the line being built
  bool mHasRemark = false;       // so has it
  std::size_t mLineBegin = 0;    // where it begins in mText
  std::string mText;
  std::vector<LinePlace> mLines;
  std::vector<Remark> mRemarks;
};

}  // namespace zelstoryhost::fountain
