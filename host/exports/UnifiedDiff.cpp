#include <algorithm>
#include <cstddef>
#include <vector>

#include <zelcore/CommonSequence.h>
#include <zelstoryhost/UnifiedDiff.h>

namespace zelstoryhost {
namespace {

constexpr std::size_t kContext = 3;

struct Line {
  char mMark;  // blank, - or +
  std::string_view mText;
};

std::vector<std::string_view> SplitLines(std::string_view text) {
  std::vector<std::string_view> lines;
  while (!text.empty()) {
    const std::size_t size = std::min(text.find('\n'), text.size() - 1) + 1;
    lines.push_back(text.substr(0, size));
    text.remove_prefix(size);
  }
  return lines;
}

// All lines of both texts; between equal ones, those that are gone before those that are new.
std::vector<Line> Compare(const std::vector<std::string_view>& before,
                          const std::vector<std::string_view>& after) {
  auto equal = zelcore::utility::CommonElements(before, after);
  equal.emplace_back(before.size(), after.size());
  std::vector<Line> lines;
  std::size_t inBefore = 0;
  std::size_t inAfter = 0;
  for (const auto& [endBefore, endAfter] : equal) {
    while (inBefore < endBefore) lines.push_back({'-', before[inBefore++]});
    while (inAfter < endAfter) lines.push_back({'+', after[inAfter++]});
    if (endBefore < before.size()) lines.push_back({' ', before[endBefore]});
    inBefore = endBefore + 1;
    inAfter = endAfter + 1;
  }
  return lines;
}

// The part of a hunk's header about one text: the first line, and how many there are unless one.
std::string Range(std::size_t linesBefore, std::size_t count) {
  const std::string first = std::to_string(count == 0 ? linesBefore : linesBefore + 1);
  return count == 1 ? first : first + ',' + std::to_string(count);
}

class HunkWriter {
 public:
  explicit HunkWriter(const std::vector<Line>& lines) : mLines(lines) {}

  std::string Write() {
    for (std::size_t i = 0; i < mLines.size(); ++i) {
      if (mLines[i].mMark == ' ') continue;
      const std::size_t begin = std::max(i, mWritten + kContext) - kContext;
      i = EndOfHunk(i);
      WriteHunk(begin, std::min(i + kContext, mLines.size()));
    }
    return std::move(mDiff);
  }

 private:
  // The line after the last change that shares its context with the one at `change`.
  std::size_t EndOfHunk(std::size_t change) const {
    std::size_t end = change;
    for (std::size_t i = change; i < mLines.size() && i < end + 2 * kContext + 1; ++i) {
      if (mLines[i].mMark != ' ') end = i + 1;
    }
    return end;
  }

  void WriteHunk(std::size_t begin, std::size_t end) {
    Count(mWritten, begin, mBefore, mAfter);
    std::size_t countBefore = 0;
    std::size_t countAfter = 0;
    Count(begin, end, countBefore, countAfter);
    mDiff += "@@ -" + Range(mBefore, countBefore) + " +" + Range(mAfter, countAfter) + " @@\n";
    for (std::size_t i = begin; i < end; ++i) {
      mDiff += mLines[i].mMark;
      mDiff += mLines[i].mText;
      if (!mLines[i].mText.ends_with('\n')) mDiff += "\n\\ No newline at end of file\n";
    }
    mBefore += countBefore;
    mAfter += countAfter;
    mWritten = end;
  }

  void Count(std::size_t begin, std::size_t end, std::size_t& before, std::size_t& after) const {
    for (std::size_t i = begin; i < end; ++i) {
      if (mLines[i].mMark != '+') ++before;
      if (mLines[i].mMark != '-') ++after;
    }
  }

  const std::vector<Line>& mLines;
  std::string mDiff;
  std::size_t mWritten = 0;  // lines of the list that are done
  std::size_t mBefore = 0;   // lines of the texts
  std::size_t mAfter = 0;
};

std::string Header(const char* mark, const std::string& name) {
  return std::string(mark) + ' ' + name + (name.find(' ') == std::string::npos ? "\n" : "\t\n");
}

}  // namespace

std::string UnifiedDiff(std::string_view before, std::string_view after,
                        const std::string& nameBefore, const std::string& nameAfter) {
  if (before == after) return {};
  const std::vector<Line> lines = Compare(SplitLines(before), SplitLines(after));
  return Header("---", nameBefore) + Header("+++", nameAfter) + HunkWriter(lines).Write();
}

}  // namespace zelstoryhost
