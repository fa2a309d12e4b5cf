#include "options/CommandLine.h"

#include <algorithm>
#include <iostream>
#include <limits>
#include <sstream>
#include <string_view>
#include <utility>

#include <CLI/CLI.hpp>

namespace zelstory {
namespace {

// The parser reports a missing command before it names an unknown word.
std::string ReasonOf(const CLI::App& tool, const CLI::ParseError& error) {
  if (!tool.get_subcommands().empty()) return error.what();
  const std::vector<std::string> unknown = tool.remaining();
  return unknown.empty() ? "a command is required"
                         : "unknown command or option: " + unknown.front();
}

}  // namespace

Option Option::Required() {
  mOption->required();
  return *this;
}

Option Option::Excludes(Option other) {
  mOption->excludes(other.mOption);
  return *this;
}

Option Option::Needs(Option other) {
  mOption->needs(other.mOption);
  return *this;
}

bool Option::IsGiven() const {
  return mOption->count() > 0;
}

void Command::AddArgument(const char* name, std::string& value, const char* help) {
  mApp.add_option(name, value, help)->required();
}

void Command::AddArguments(const char* name, std::vector<std::string>& values, const char* help) {
  mApp.add_option(name, values, help)->required();
}

Option Command::AddFlag(const char* name, bool& value, const char* help) {
  return Option(mApp.add_flag(name, value, help));
}

Option Command::AddText(const char* name, std::string& value, const char* type, const char* help) {
  return Option(mApp.add_option(name, value, help)->type_name(type));
}

Option Command::AddCount(const char* name, int& value, const char* type, const char* help) {
  return Option(mApp.add_option(name, value, help)
                    ->type_name(type)
                    ->check(CLI::Range(1, std::numeric_limits<int>::max())));
}

Option Command::AddChoice(const char* name, const std::vector<std::string>& choices,
                          const char* type, const char* help,
                          const std::function<void(const std::string& choice)>& choose) {
  return Option(mApp.add_option_function<std::string>(name, choose, help)
                    ->type_name(type)
                    ->check(CLI::IsMember(choices).description("")));
}

void Command::SetFooter(const std::string& text) {
  mApp.footer(text);
}

void Command::SetAction(std::function<int()> action) {
  mApp.callback([action = std::move(action), &chosen = mChosen] { chosen = action; });
}

CommandLine::CommandLine(const char* description, const char* version, const std::string& footer)
    : mTool(std::make_unique<CLI::App>(description, "zelstory")) {
  mTool->set_version_flag("--version", version);
  mTool->require_subcommand(1);
  mTool->get_formatter()->label("SUBCOMMAND", "COMMAND");
  mTool->footer(footer);
}

CommandLine::~CommandLine() = default;

Command CommandLine::AddCommand(const char* name, const char* description) {
  CLI::App* const command = mTool->add_subcommand(name, description);
  command->group("Commands");
  return Command(*command, mChosen);
}

std::function<int()> CommandLine::Parse(int argc, const char* const* argv) {
  if (std::count(argv, argv + argc, std::string_view()) > 0) {
    throw UsageError("an argument is empty; is a variable not set?");
  }
  try {
    mTool->parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() != 0) throw UsageError(ReasonOf(*mTool, error));
    std::ostringstream text;
    mTool->exit(error, text, text);
    return [text = text.str()] {
      std::cout << text;
      return kDone;
    };
  }
  return mChosen;
}

}  // namespace zelstory
