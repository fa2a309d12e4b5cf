#include "formats/fountain/FountainText.h"

#include <algorithm>
#include <utility>

#include "formats/Lines.h"
#include "formats/fountain/FountainSyntax.h"

namespace zelstoryhost::fountain {
namespace {

constexpr std::size_t kNone = std::string_view::npos;

// The text of a note or boneyard, without the blanks that connect its paragraphs.
std::string TextOfRemark(std::string_view inside) {
  std::string text;
  ForEachLine(inside, [&text](std::string_view line) { (text += TrimEnd(line)) += '\n'; });
  text.erase(0, std::min(text.find_first_not_of(" \n"), text.size()));
  text.resize(text.find_last_not_of('\n') + 1);
  return text;
}

}  // namespace

FountainText::FountainText(std::string_view text, FindingList& findings)
    : mFindings(findings), mSource(text) {
  mText.reserve(text.size());
  while (mNext < mSource.size()) TakeCharacter();
  EndLine();
}

std::string_view FountainText::Line(std::size_t index) const {
  const LinePlace& line = mLines[index];
  return std::string_view(mText).substr(line.mBegin, line.mEnd - line.mBegin);
}

void FountainText::TakeCharacter() {
  const char c = mSource[mNext];
  switch (c) {
    case '\n':
      EndLine();
      ++mNext;
      mSourceLine = mNext;
      mLineNumber = ++mNumber;
      return;
    case '\t':
      mText += "    ";
      break;
    case '\f':  // the page break and the tab of a printer
    case '\v':
      break;
    case '\\':
      mText += c;
      if (!IsEscapable(mSource.substr(mNext + 1, 4))) break;
      mText += mSource[++mNext];
      break;
    case '/':
      if (TakeBoneyard()) return;
      mText += c;
      break;
    case '[':
      if (TakeNote()) return;
      mText += c;
      break;
    default:
      mText += c;
  }
  ++mNext;
}

void FountainText::EndLine() {
  const std::string_view line = std::string_view(mText).substr(mLineBegin);
  if (mHasRemark) mText.resize(mLineBegin + TrimEnd(line).size());
  const bool isDropped = std::exchange(mHasRemark, false) && mText.size() == mLineBegin;
  if (!isDropped) mLines.push_back({mLineBegin, mText.size(), mLineNumber});
  for (auto remark = mRemarks.rbegin(); isDropped && remark != mRemarks.rend(); ++remark) {
    if (remark->mLineCount <= mLines.size()) break;
    remark->mLineCount = mLines.size();
  }
  mLineBegin = mText.size();
}

bool FountainText::TakeBoneyard() {
  if (!mSource.substr(mNext).starts_with("/*")) return false;
  const std::size_t end = mHasBoneyardEnd ? mSource.find("*/", mNext + 2) : kNone;
  if (end == kNone) {
    if (std::exchange(mHasBoneyardEnd, false)) ReportUnclosed("a boneyard (/*)");
    return false;
  }
  Remove(true, end);
  return true;
}

// The place of the next empty line, which no note can contain. A line of two blanks is not empty.
std::size_t FountainText::EndOfBlock() {
  if (mBlockEnd > mNext) return mBlockEnd;
  mBlockEnd = mSource.find('\n', mNext);
  while (mBlockEnd != kNone) {
    const std::size_t next = mSource.find('\n', mBlockEnd + 1);
    const std::string_view line = mSource.substr(mBlockEnd + 1, next - mBlockEnd - 1);
    if (line.empty() || line == " ") break;
    mBlockEnd = next;
  }
  return mBlockEnd;
}

bool FountainText::TakeNote() {
  if (!mSource.substr(mNext).starts_with("[[")) return false;
  if (mNoteEnd != kNone && mNoteEnd < mNext + 2) mNoteEnd = mSource.find("]]", mNext + 2);
  if (mNoteEnd == kNone || mNoteEnd > EndOfBlock()) {
    if (!std::exchange(mHasUnclosedNote, true)) ReportUnclosed("a note ([[)");
    return false;
  }
  Remove(false, mNoteEnd);
  return true;
}

void FountainText::ReportUnclosed(std::string_view what) {
  const std::string_view before = mSource.substr(mSourceLine, mNext - mSourceLine);
  const auto column = 1 + std::ranges::count_if(before, [](char c) { return (c & 0xC0) != 0x80; });
  mFindings.Add(Severity::kNote, std::string(what) + " has no end and is kept as text",
                zelcore::xml::Position{mNumber, static_cast<std::int64_t>(column)});
}

// Removes what begins here and whose closing mark is at `end`. All marks have two characters.
void FountainText::Remove(bool isBoneyard, std::size_t end) {
  const std::string_view inside = mSource.substr(mNext + 2, end - mNext - 2);
  mRemarks.push_back({isBoneyard, TextOfRemark(inside), mLines.size() + 1});
  mHasRemark = true;
  mNumber += std::ranges::count(inside, '\n');
  if (const std::size_t lineEnd = inside.rfind('\n'); lineEnd != kNone) {
    mSourceLine = mNext + 2 + lineEnd + 1;
  }
  mNext = end + 2;
  JoinBlanks();
}

// Of the blanks before and after what was removed, one is enough; at the start of a line, none.
void FountainText::JoinBlanks() {
  const bool isStart = IsBlank(std::string_view(mText).substr(mLineBegin));
  if (isStart) mText.resize(mLineBegin);
  if (!isStart && mText.back() != ' ') return;
  while (mNext < mSource.size() && mSource[mNext] == ' ') {
    ++mNext;
    if (!isStart) return;
  }
}

}  // namespace zelstoryhost::fountain
