#include <algorithm>

#include <zelcore/xml/DocumentPlace.h>

namespace zelcore::xml {

void DocumentPlace::Begin(const HeldInput& input) {
  mWindow.Restart(input.ReadOffset(), input.mReadPosition);
  mHasBegun = true;
}

void DocumentPlace::TakeNew(const HeldInput& input) {
  if (mWindow.End() < input.mOffset) {
    // The library skips white space outside the root element without a call, however much there is,
    // and may have dropped some of it unseen. Its lines are right, so the place of the first byte
    // that it still holds is found by going back from where it is.
    const std::string_view read = input.mText.substr(0, input.mRead);
    const auto newlines = std::count(read.begin(), read.end(), '\n');
    const auto column =
        newlines > 0 ? 1 : input.mReadPosition.mColumn - static_cast<std::int64_t>(read.size());
    mWindow.Restart(input.mOffset, {input.mReadPosition.mLine - newlines, column});
  }
  Take(input);
}

void DocumentPlace::DropRead() {
  if (mHasBegun) mWindow.DropBefore(mRead);
}

Position DocumentPlace::EndOf(const HeldInput& input) {
  // In the declaration that names the encoding, the library has already put aside what it has read.
  if (!mHasBegun) mWindow.Restart(input.mOffset, input.mReadPosition);
  Take(input);
  return mWindow.At(mWindow.End());
}

// Adds the bytes that the window does not have yet.
void DocumentPlace::Take(const HeldInput& input) {
  const std::size_t known = mWindow.End() - std::min(input.mOffset, mWindow.End());
  if (known < input.mText.size()) mWindow.Append(input.mText.substr(known));
}

}  // namespace zelcore::xml
