#pragma once

#include <stdexcept>
#include <string>
#include <utility>

namespace zelstory {

// A refusal, shown to the user as one line: PLACE: error: REASON. Ends a command with status 1.
class ToolError : public std::runtime_error {
 public:
  // A line that is complete already.
  explicit ToolError(const std::string& line) : std::runtime_error(line), mReason(line) {}

  // `place` is a file, or FILE:LINE:COLUMN; both texts are UTF-8.
  ToolError(const std::string& place, const std::string& reason)
      : std::runtime_error(place + ": error: " + reason), mPlace(place), mReason(reason) {}

  // Both parts, the place empty where the line was complete already.
  const std::string& Place() const { return mPlace; }
  const std::string& Reason() const { return mReason; }

 private:
  std::string mPlace;
  std::string mReason;
};

// A command line that asks for what cannot be. Ends the tool with status 2.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace zelstory
