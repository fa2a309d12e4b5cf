#pragma once

#include <string>
#include <utility>
#include <vector>

#include <xmptoolkit/patch/SourceTree.h>

namespace xmptoolkit {

// A part of a text, and what takes its place.
struct Edit {
  Span mSpan;
  std::string mText;
};

// The changes of one text.
class Edits {
 public:
  void Replace(Span span, std::string text) { mEdits.push_back({span, std::move(text)}); }
  void Insert(std::size_t position, std::string text) {
    Replace({position, position}, std::move(text));
  }
  void Erase(Span span) { Replace(span, {}); }

  // How many there are, and a return to so many.
  std::size_t Count() const { return mEdits.size(); }
  void Shrink(std::size_t count) { mEdits.resize(count); }

  // The edits in the order of the text; insertions at one place in the order in which they were
  // made. Those that overlap throw NotPatchable.
  std::vector<Edit> Take();

 private:
  std::vector<Edit> mEdits;
};

}  // namespace xmptoolkit
