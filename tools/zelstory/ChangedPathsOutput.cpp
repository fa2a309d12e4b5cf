#include "ChangedPathsOutput.h"

#include "Console.h"

namespace zelstory {

void PrintOutcome(const std::string& label, bool changed,
                  const std::vector<zelmetadata::Path>& changedPaths) {
  if (!changed) return PrintLine(label + "unchanged");
  for (const zelmetadata::Path& path : changedPaths) {
    const zelmetadata::UTF8String text = path.AsString();
    PrintLine(label + std::string(text.data(), text.size()));
  }
}

}  // namespace zelstory
