#include "Command.h"

#include "Batch.h"
#include "Console.h"
#include "ToolError.h"

namespace zelstory {

int ForEachFile(
    const std::vector<std::string>& files,
    const std::function<void(const std::string& file, const std::string& label)>& work) {
  int status = kDone;
  Batch batch(files.size());
  for (const std::string& file : files) {
    batch.Next();
    try {
      work(file, files.size() > 1 ? file + ": " : "");
    } catch (const ToolError& error) {
      PrintError(error.what());
      status = kRefused;
    }
  }
  return status;
}

}  // namespace zelstory
