#pragma once

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

// The tool's command line. Only one source includes the library that parses it, whose headers are
// slow to compile.
namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace zelstory {

// Exit statuses of the tool.
inline constexpr int kDone = 0;     // done, or yes
inline constexpr int kRefused = 1;  // refused, or no
inline constexpr int kUsage = 2;    // wrong usage

// An invalid command line. Ends the tool with status kUsage.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// An option of a command. A handle: pass it by value.
class Option {
 public:
  Option() = default;  // none
  explicit Option(CLI::Option* option) : mOption(option) {}

  Option Required();
  Option Excludes(Option other);
  Option Needs(Option other);
  bool IsGiven() const;  // once the command line is parsed

 private:
  CLI::Option* mOption = nullptr;
};

// A command under construction. A handle. The variables that its options set must live until the
// command has run.
class Command {
 public:
  explicit Command(CLI::App& app, std::function<int()>& chosen) : mApp(app), mChosen(chosen) {}

  // Adds a required argument. Arguments are taken in the order in which they are added.
  void AddArgument(const char* name, std::string& value, const char* help);
  void AddArguments(const char* name, std::vector<std::string>& values, const char* help);

  // Add an option by its name ("--json"); `type` names its value in the help.
  Option AddFlag(const char* name, bool& value, const char* help);
  Option AddText(const char* name, std::string& value, const char* type, const char* help);
  Option AddCount(const char* name, int& value, const char* type, const char* help);  // from 1
  Option AddChoice(const char* name, const std::vector<std::string>& choices, const char* type,
                   const char* help, const std::function<void(const std::string& choice)>& choose);

  void SetFooter(const std::string& text);

  // Sets what the command does. The action returns an exit status. It may throw UsageError and
  // whatever the libraries throw; main reports them.
  void SetAction(std::function<int()> action);

 private:
  CLI::App& mApp;
  std::function<int()>& mChosen;
};

class CommandLine {
 public:
  CommandLine(const char* description, const char* version, const std::string& footer);
  ~CommandLine();
  CommandLine(const CommandLine&) = delete;
  CommandLine& operator=(const CommandLine&) = delete;

  Command AddCommand(const char* name, const char* description);

  // Returns the action of the chosen command, or one that prints the help or the version. Throws
  // UsageError.
  std::function<int()> Parse(int argc, const char* const* argv);

 private:
  std::unique_ptr<CLI::App> mTool;
  std::function<int()> mChosen;
};

}  // namespace zelstory
