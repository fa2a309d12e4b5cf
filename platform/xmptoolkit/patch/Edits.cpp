#include <algorithm>

#include <xmptoolkit/patch/Edits.h>
#include <xmptoolkit/patch/NotPatchable.h>

namespace xmptoolkit {

std::vector<Edit> Edits::Take() {
  std::vector<Edit> edits = std::exchange(mEdits, {});
  // An insertion precedes what is replaced from the same place on.
  std::stable_sort(edits.begin(), edits.end(), [](const Edit& left, const Edit& right) {
    return std::pair(left.mSpan.mBegin, left.mSpan.mEnd) <
           std::pair(right.mSpan.mBegin, right.mSpan.mEnd);
  });
  std::size_t end = 0;
  for (const Edit& edit : edits) {
    if (edit.mSpan.mBegin < end) throw NotPatchable{"two of the changes overlap"};
    end = edit.mSpan.mEnd;
  }
  return edits;
}

}  // namespace xmptoolkit
