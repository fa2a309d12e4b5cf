#include <algorithm>
#include <numeric>

#include <xmptoolkit/patch/Padding.h>

namespace xmptoolkit {

namespace {

// Less than this is not padding, but white space that happens to be there.
constexpr std::size_t kShortestRun = 32;
constexpr std::size_t kShortestLine = 10;
constexpr std::size_t kFewestLines = 4;

std::string_view FirstLineEnd(std::string_view space) {
  const std::size_t end = space.find_first_of("\r\n");
  if (end == std::string_view::npos) return {};
  return space.substr(end, space.substr(end).starts_with("\r\n") ? 2 : 1);
}

// The longest sequence of spaces.
std::string_view LongestRun(std::string_view space) {
  std::string_view longest = space.substr(space.size());
  for (std::size_t begin = 0; (begin = space.find(' ', begin)) != std::string_view::npos;) {
    const std::size_t end = std::min(space.find_first_not_of(' ', begin), space.size());
    if (end - begin > longest.size()) longest = space.substr(begin, end - begin);
    begin = end;
  }
  return longest;
}

}  // namespace

Padding::Padding(std::string_view space) : mSpace(space), mLineEnd(FirstLineEnd(space)) {
  if (!SplitLines()) mLineLength = 0;
}

// Returns false for padding of another form than lines.
bool Padding::SplitLines() {
  if (mLineEnd.empty()) return false;
  mLead = mSpace.starts_with(mLineEnd) ? mLineEnd.size() : 0;
  std::size_t begin = mLead;
  for (std::size_t end; (end = mSpace.find(mLineEnd, begin)) != std::string_view::npos;) {
    if (mSpace.substr(begin, end - begin).find_first_not_of(' ') != std::string_view::npos)
      return false;
    mLines.push_back(end + mLineEnd.size() - begin);
    begin = end + mLineEnd.size();
  }
  if (mLines.size() < kFewestLines) return false;
  mLineLength = *(mLines.end() - 2);
  if (mLines.back() < mLineLength) mLines.pop_back();
  mSize = std::accumulate(mLines.begin(), mLines.end(), std::size_t{0});
  const bool isHalf = mLines[0] < mLineLength && mLines[1] < mLineLength;
  const bool isSecondFit = mLines[1] == mLineLength || mLines[1] == 2 * mLineLength || isHalf;
  return mLineLength >= kShortestLine && isSecondFit &&
         std::all_of(mLines.begin() + 2, mLines.end(),
                     [&](std::size_t line) { return line == mLineLength; });
}

std::string Padding::Line(std::size_t size) const {
  return std::string(size - mLineEnd.size(), ' ').append(mLineEnd);
}

// Whole lines, preceded by one or two that are shorter unless these are enough.
std::string Padding::LinesOf(std::size_t size, bool isWhole) const {
  const std::size_t rest = size % mLineLength;
  std::string lines;
  if (rest > mLineEnd.size()) {  // a bare line end would be one that the padding begins with
    lines = Line(rest);
  } else if (!isWhole || rest > 0) {
    const std::size_t both = mLineLength + rest;
    lines = Line(both / 2) + Line(both - both / 2);
  }
  while (lines.size() < size) lines += Line(mLineLength);
  return lines;
}

std::string Padding::WithLines(const std::string& lines) const {
  return std::string(mSpace).replace(mLead, mSize, lines);
}

// Gives one of the first two lines another length.
std::string Padding::WithLine(std::size_t line, std::size_t size) const {
  return std::string(mSpace).replace(mLead + (line == 0 ? 0 : mLines[0]), mLines[line], Line(size));
}

std::string Padding::AfterGrowth(std::size_t count) const {
  if (mLineLength == 0) {
    const std::string_view run = LongestRun(mSpace);
    const bool hasRoom = run.size() >= count + kShortestRun;
    return std::string(mSpace).erase(static_cast<std::size_t>(run.data() - mSpace.data()),
                                     hasRoom ? count : 0);
  }
  const bool hasGrown = mLines[1] > mLineLength;
  if (hasGrown) return std::string(mSpace);
  if (mLines[0] >= mLineLength + count) return WithLine(0, mLines[0] - count);
  if (mSize >= count + (kFewestLines - 1) * mLineLength) {
    return WithLines(LinesOf(mSize - count, false));
  }
  if (mLines[1] < mLineLength || mLines.size() <= kFewestLines) return std::string(mSpace);
  return std::string(mSpace).replace(mLead + mLines[0], 2 * mLineLength, Line(2 * mLineLength));
}

std::string Padding::AfterLoss(std::size_t count) const {
  if (mLineLength == 0) {
    const std::string_view run = LongestRun(mSpace);
    const bool isPadding = run.size() >= kShortestRun;
    return std::string(mSpace).insert(static_cast<std::size_t>(run.data() - mSpace.data()),
                                      isPadding ? count : 0, ' ');
  }
  const bool hasGrown = mLines[1] > mLineLength;
  if (hasGrown) {
    return std::string(mSpace).replace(mLead + mLines[0], 2 * mLineLength,
                                       Line(mLineLength) + Line(mLineLength));
  }
  if (mLines[0] < mLineLength) return WithLines(LinesOf(mSize + count, true));
  return WithLine(0, mLines[0] + count);
}

}  // namespace xmptoolkit
