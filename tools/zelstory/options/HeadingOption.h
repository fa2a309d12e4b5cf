#pragma once

#include <string>

#include <zelstoryparser/HeadingRules.h>

#include "options/CommandLine.h"

namespace zelstory {

// The option --headings of the commands that read headings.
class HeadingOption {
 public:
  // The object must outlive the parsing.
  void AddTo(Command& command);

  // Returns the rules that were chosen, reading their file if need be. Throws Error, with line and
  // column if the file has a fault.
  zelstoryparser::HeadingRules Rules() const;

 private:
  std::string mName = "common";
};

}  // namespace zelstory
