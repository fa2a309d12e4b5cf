#include "Command.h"

#include <xmptoolkit/XMP.h>

#include "Console.h"
#include "ToolError.h"

namespace zelstory {

int ForEachFile(
    const std::vector<std::string>& files,
    const std::function<void(const std::string& file, const std::string& label)>& work) {
  int status = kDone;
  for (const std::string& file : files) {
    try {
      work(file, files.size() > 1 ? file + ": " : "");
    } catch (const UsageError&) {
      throw;
    } catch (const ToolError& error) {
      PrintError(error.what());
      status = kRefused;
    } catch (const XMP_Error& error) {
      PrintError(ToolError(file, error.GetErrMsg()).what());
      status = kRefused;
    }
  }
  return status;
}

}  // namespace zelstory
