#pragma once

#include <functional>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

namespace zelstory {

// Exit statuses of the tool.
inline constexpr int kDone = 0;     // done, or yes
inline constexpr int kRefused = 1;  // refused, or no
inline constexpr int kUsage = 2;    // wrong usage

// The command that the command line chose: set when CLI11 has parsed it, run by main.
using ChosenCommand = std::function<int()>;

// Each adds one command with its options to the tool. The command, once chosen, returns an exit
// status; it throws ToolError, UsageError or what the library throws, all of which main reports.
void AddCheckCommand(CLI::App& tool, ChosenCommand& chosen);
void AddShowCommand(CLI::App& tool, ChosenCommand& chosen);
void AddWriteCommand(CLI::App& tool, ChosenCommand& chosen);
void AddClearCommand(CLI::App& tool, ChosenCommand& chosen);
void AddHasCommand(CLI::App& tool, ChosenCommand& chosen);
void AddXMPCommand(CLI::App& tool, ChosenCommand& chosen);
void AddShotsCommand(CLI::App& tool, ChosenCommand& chosen);
void AddReportCommand(CLI::App& tool, ChosenCommand& chosen);
void AddTagCommand(CLI::App& tool, ChosenCommand& chosen);
void AddDumpCommand(CLI::App& tool, ChosenCommand& chosen);
void AddListCommands(CLI::App& tool, ChosenCommand& chosen);  // scenes, characters, stats

// Runs `work` on each file with the label that its results stand behind: "FILE: " for several
// files, empty for one. The refusal of one file is printed and does not stop the others. Returns
// kDone, or kRefused when any was refused. Shows progress, and ends between two files when a signal
// asks for it.
int ForEachFile(const std::vector<std::string>& files,
                const std::function<void(const std::string& file, const std::string& label)>& work);

}  // namespace zelstory
