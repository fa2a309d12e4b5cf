#pragma once

#include "options/CommandLine.h"

// The tool's commands, one source per command. Each function adds a command with its options.
namespace zelstory {

void AddCheckCommand(CommandLine& tool);
void AddShowCommand(CommandLine& tool);
void AddWriteCommand(CommandLine& tool);
void AddClearCommand(CommandLine& tool);
void AddHasCommand(CommandLine& tool);
void AddXMPCommand(CommandLine& tool);
void AddShotsCommand(CommandLine& tool);
void AddReportCommand(CommandLine& tool);
void AddTagCommand(CommandLine& tool);
void AddConvertCommand(CommandLine& tool);
void AddDumpCommand(CommandLine& tool);
void AddListCommands(CommandLine& tool);  // scenes, characters, stats

}  // namespace zelstory
