#include <algorithm>
#include <csignal>
#include <exception>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include <CLI/CLI.hpp>

#include <zelstoryparser/Version.h>

#include "Batch.h"
#include "Command.h"
#include "Console.h"
#include "ToolError.h"

namespace {

using namespace zelstory;

int WrongUsage(const std::string& reason) {
  PrintError("zelstory: error: " + reason + " (zelstory --help tells more)");
  return kUsage;
}

// The parser misses a command before it says which word is none.
std::string ReasonOf(const CLI::App& tool, const CLI::ParseError& error) {
  if (!tool.get_subcommands().empty()) return error.what();
  const std::vector<std::string> unknown = tool.remaining();
  return unknown.empty() ? "a command is required"
                         : "there is no command or option " + unknown.front();
}

int Run(const ChosenCommand& chosen) {
  try {
    const int status = chosen();
    FlushOutput();
    return status;
  } catch (const UsageError& error) {
    return WrongUsage(error.what());
  } catch (const Interrupted& interrupted) {
    std::cout.flush();
    PrintError(interrupted.what());
    std::raise(interrupted.Signal());  // so that a shell stops its loop, too
  } catch (const ToolError& error) {
    PrintError(error.what());
  } catch (const std::exception& error) {
    PrintError(std::string("zelstory: error: ") + error.what());
  }
  return kRefused;
}

}  // namespace

int main(int argc, char** argv) {
#if defined(SIGXFSZ)
  std::signal(SIGXFSZ, SIG_IGN);  // a file that may not grow is reported like a full disk
#endif
  CLI::App tool("Brings screenplays into the XMP metadata of clips.", "zelstory");
  tool.set_version_flag("--version", "zelstory " ZELSTORYPARSER_VERSION);
  tool.require_subcommand(1);
  tool.get_formatter()->label("SUBCOMMAND", "COMMAND");
  tool.footer(
      "First steps:\n"
      "  zelstory check STORY                      is it a story, and if not, where does it go "
      "wrong?\n"
      "  zelstory scenes STORY                     which scenes has it?\n"
      "  zelstory write STORY --scene 2 A001.mov   scene 2 into the sidecar of a clip\n"
      "  zelstory tag STORY --table clips.csv      the clips of a folder; clips.csv holds, for "
      "example,\n"
      "                                              clip,scene\n"
      "                                              A001.mov,2\n"
      "\n"
      "zelstory COMMAND --help tells the options of a command.\n"
      "Where a file is named, - is standard input or output. Text is UTF-8.\n"
      "Exit status: 0 done (or yes), 1 refused (or no), 2 wrong usage.");
  ChosenCommand chosen;
  AddCheckCommand(tool, chosen);
  AddShowCommand(tool, chosen);
  AddWriteCommand(tool, chosen);
  AddClearCommand(tool, chosen);
  AddHasCommand(tool, chosen);
  AddXMPCommand(tool, chosen);
  AddShotsCommand(tool, chosen);
  AddTagCommand(tool, chosen);
  AddListCommands(tool, chosen);
  AddReportCommand(tool, chosen);
  AddDumpCommand(tool, chosen);
  for (CLI::App* command : tool.get_subcommands({})) command->group("Commands");
  if (std::count(argv, argv + argc, std::string_view()) > 0) {
    return WrongUsage("an argument is empty; does it come from a variable that is not set?");
  }
  try {
    tool.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() != 0) return WrongUsage(ReasonOf(tool, error));
    return Run([&] { return tool.exit(error); });  // help or version
  }
  return Run(chosen);
}
