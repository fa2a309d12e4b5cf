#include <csignal>
#include <exception>
#include <functional>
#include <iostream>
#include <new>
#include <string>
#include <system_error>

#include <zelstoryhost/Error.h>
#include <zelstoryparser/Version.h>

#include "commands/Commands.h"
#include "terminal/Batch.h"
#include "terminal/Console.h"
#include "terminal/Memory.h"

namespace {

using namespace zelstory;

constexpr const char* kFooter =
    "First steps:\n"
    "  zelstory check STORY                      is it a valid story?\n"
    "  zelstory scenes STORY                     which scenes does it have?\n"
    "  zelstory write STORY --scene 2 A001.mov   scene 2 into the sidecar of a clip\n"
    "  zelstory tag STORY --table clips.csv      the clips of a folder; clips.csv contains,\n"
    "                                            for example,\n"
    "                                              clip,scene\n"
    "                                              A001.mov,2\n"
    "\n"
    "zelstory COMMAND --help explains the options of a command.\n"
    "As a file name, - means standard input or output. Text is UTF-8.\n"
    "Exit status: 0 done (or yes), 1 refused (or no), 2 wrong usage.";

void AddCommands(CommandLine& tool) {
  AddCheckCommand(tool);
  AddShowCommand(tool);
  AddWriteCommand(tool);
  AddClearCommand(tool);
  AddHasCommand(tool);
  AddXMPCommand(tool);
  AddShotsCommand(tool);
  AddTagCommand(tool);
  AddListCommands(tool);
  AddReportCommand(tool);
  AddConvertCommand(tool);
  AddDumpCommand(tool);
}

int Run(int argc, char** argv) {
  CommandLine tool("Writes screenplay scenes into the XMP metadata of clips.",
                   (std::string("zelstory ") + zelstoryparser::LibraryVersion()).c_str(), kFooter);
  AddCommands(tool);
  const int status = tool.Parse(argc, argv)();
  FlushOutput();
  RefuseIfMemoryRanOut();
  return status;
}

bool LacksMemory(const std::exception& error) {
  const auto* const failure = dynamic_cast<const std::system_error*>(&error);
  return failure != nullptr && failure->code() == std::errc::not_enough_memory;
}

// Reports the exception that is being handled, and returns the exit status. Throws std::bad_alloc.
int ReportException() {
  RefuseIfMemoryRanOut();  // then other exceptions only follow from that
  try {
    throw;  // cppcheck-suppress rethrowNoCurrentException ; the caller is handling one
  } catch (const std::bad_alloc&) {
    throw;
  } catch (const UsageError& error) {
    PrintError(std::string("zelstory: error: ") + error.what() + " (see zelstory --help)");
    return kUsage;
  } catch (const Interrupted& interrupted) {
    std::cout.flush();
    PrintError(interrupted.what());
    std::raise(interrupted.Signal());  // so that a shell loop stops, too
  } catch (const zelstoryhost::Error& error) {
    PrintError(error);
  } catch (const std::exception& error) {
    if (LacksMemory(error)) throw std::bad_alloc();
    PrintError(std::string("zelstory: error: ") + error.what());
  }
  return kRefused;
}

int RunAndReport(int argc, char** argv) {
  try {
    return Run(argc, argv);
  } catch (...) {
    return ReportException();
  }
}

}  // namespace

int main(int argc, char** argv) {
#if defined(SIGXFSZ)
  std::signal(SIGXFSZ, SIG_IGN);  // a file that may not grow is reported like a full disk
#endif
  WatchMemory();
  try {
    return RunAndReport(argc, argv);
  } catch (const std::bad_alloc&) {
    PrintOutOfMemory();
    return kRefused;
  }
}
