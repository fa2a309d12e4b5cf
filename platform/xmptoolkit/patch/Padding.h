#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace xmptoolkit {

// The white space before a packet's trailer. It takes up the difference when the text before it
// gets longer or shorter, in such a way that undoing a change gives the old bytes.
//
// Most programs pad with lines of equal length. Their lengths then show what has happened: what is
// lent is missing in the first line (or in the first two), and what was gained makes the first line
// longer. When there is no room, the packet grows; the second line is then joined with the third,
// as a sign that the packet may get shorter again. Other padding of some length gets shorter and
// longer without such signs. Where there is next to none, there is no padding.
class Padding {
 public:
  explicit Padding(std::string_view space);

  // The padding after the text before it has grown by so many characters, or has lost so many.
  // Shorter or longer by that number; or as long as before, when the packet changes its length.
  std::string AfterGrowth(std::size_t count) const;
  std::string AfterLoss(std::size_t count) const;

 private:
  bool SplitLines();
  std::string LinesOf(std::size_t size, bool isWhole) const;
  std::string Line(std::size_t size) const;
  std::string WithLines(const std::string& lines) const;
  std::string WithLine(std::size_t line, std::size_t size) const;

  std::string_view mSpace;
  std::string_view mLineEnd;
  std::size_t mLead = 0;            // the line end at the beginning
  std::vector<std::size_t> mLines;  // their lengths, but for a shorter one at the end
  std::size_t mLineLength = 0;      // 0 for padding of another form
  std::size_t mSize = 0;            // of all these lines
};

}  // namespace xmptoolkit
