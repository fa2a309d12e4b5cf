#include <array>
#include <cstddef>
#include <vector>

#include "formats/fountain/FountainSyntax.h"

namespace zelstoryhost::fountain {
namespace {

// A run of the same mark. Its marks lie at `mPlace` in the text that is being built.
struct Run {
  char mMark;
  std::size_t mPlace;
  std::size_t mLength;  // of what has no partner yet
  bool mOpens;
  bool mCloses;
};

// Whether a byte belongs to a letter or digit; any that is not ASCII may.
constexpr bool IsWordByte(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
         static_cast<unsigned char>(c) >= 0x80;
}

// Pairs runs of marks as Markdown does: a mark opens before something that is no blank, and closes
// after something that is none. The underscores in a_file_name are none of these marks, and neither
// are runs that no emphasis has.
class EmphasisRemover {
 public:
  explicit EmphasisRemover(std::string_view line) : mLine(line) {}

  std::string Remove() {
    for (std::size_t i = 0; i < mLine.size();) {
      if (mLine[i] == '\\' && IsEscapable(mLine.substr(i + 1))) {
        mText += mLine[i + 1];
        i += 2;
      } else if (mLine[i] == '*' || mLine[i] == '_') {
        i = TakeRun(i);
      } else {
        mText += mLine[i++];
      }
    }
    return mRemoved.empty() ? std::move(mText) : WithoutRemoved();
  }

  bool HasFound() const { return !mRemoved.empty(); }

 private:
  std::size_t TakeRun(std::size_t begin) {
    const char mark = mLine[begin];
    std::size_t end = mLine.find_first_not_of(mark, begin);
    if (end == std::string_view::npos) end = mLine.size();
    Run run{mark, mText.size(), end - begin, false, false};
    mText.append(run.mLength, mark);
    if (run.mLength > (mark == '*' ? 3U : 1U)) return end;
    const char before = begin == 0 ? ' ' : mLine[begin - 1];
    const char after = end == mLine.size() ? ' ' : mLine[end];
    run.mOpens = after != ' ' && (mark == '*' || !IsWordByte(before));
    run.mCloses = before != ' ' && (mark == '*' || !IsWordByte(after));
    if (run.mCloses) Close(run);
    if (run.mOpens && run.mLength > 0) Open(run);
    return end;
  }

  std::size_t& OpenRuns(char mark) { return mOpenRuns[mark == '*' ? 0 : 1]; }

  void Open(const Run& run) {
    mOpen.push_back(run);
    ++OpenRuns(run.mMark);
  }

  void Pop() {
    --OpenRuns(mOpen.back().mMark);
    mOpen.pop_back();
  }

  // Pairs the marks of a run with those that are open. Marks in between have no partner.
  void Close(Run& run) {
    while (run.mLength > 0 && OpenRuns(run.mMark) > 0) {
      while (mOpen.back().mMark != run.mMark) Pop();
      Run& opening = mOpen.back();
      const std::size_t count = std::min(opening.mLength, run.mLength);
      opening.mLength -= count;
      mRemoved.push_back({opening.mPlace + opening.mLength, count});
      mRemoved.push_back({run.mPlace, count});
      run.mPlace += count;
      run.mLength -= count;
      if (opening.mLength == 0) Pop();
    }
  }

  std::string WithoutRemoved() {
    std::vector<bool> isRemoved(mText.size());
    for (const auto& [place, count] : mRemoved) {
      for (std::size_t i = place; i < place + count; ++i) isRemoved[i] = true;
    }
    std::string text;
    for (std::size_t i = 0; i < mText.size(); ++i) {
      if (!isRemoved[i]) text += mText[i];
    }
    return text;
  }

  struct Removed {
    std::size_t mPlace;
    std::size_t mCount;
  };

  const std::string_view mLine;
  std::string mText;
  std::vector<Run> mOpen;
  std::array<std::size_t, 2> mOpenRuns{};  // of * and _
  std::vector<Removed> mRemoved;
};

}  // namespace

std::string WithoutMarks(std::string_view line, bool& found) {
  if (line.find_first_of("*_\\") == std::string_view::npos) return std::string(line);
  EmphasisRemover remover(line);
  std::string text = remover.Remove();
  found = found || remover.HasFound();
  return text;
}

}  // namespace zelstoryhost::fountain
