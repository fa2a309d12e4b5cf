#include <filesystem>
#include <iostream>
#include <set>
#include <vector>

#include <zelstoryhost/Error.h>
#include <zelstoryhost/Files.h>

#include "commands/Commands.h"
#include "options/ScriptOptions.h"
#include "terminal/Batch.h"
#include "terminal/Console.h"
#include "terminal/Input.h"

namespace zelstory {

using zelstoryhost::Error;
using zelstoryhost::FileEntry;
using zelstoryhost::ScriptFormat;
using zelstoryhost::WrittenScript;

namespace {

namespace fs = std::filesystem;

struct ConvertOptions {
  std::vector<std::string> mFiles;  // without a folder, the last is the output
  std::string mFolder;
  const ScriptFormat* mFrom = nullptr;
  const ScriptFormat* mTo = nullptr;
  bool mForce = false;
};

// The format of an output file: the one that was asked for, or the one that its name tells.
const ScriptFormat& FormatOf(const std::string& output, const ScriptFormat* asked) {
  if (asked != nullptr) return *asked;
  if (const ScriptFormat* const named = zelstoryhost::FormatOfName(output)) return *named;
  throw UsageError("the name " + output + " tells no format; use --to");
}

void WriteOutput(const std::string& output, const std::string& bytes, bool force) {
  if (output == kStandardStream) {
    std::cout << bytes;
    return;
  }
  const FileEntry file{fs::path(output)};
  force ? file.Replace(bytes, zelstoryhost::HardLinks::kPart) : file.Create(bytes);
  CountWrittenFile();
}

void Convert(const std::string& input, const std::string& output, const ScriptFormat& format,
             const ConvertOptions& options) {
  if (output != kStandardStream && IsStoryItself(input, output)) {
    throw Error(output, "is the script itself: name another file");
  }
  const auto story = LoadStory(input, options.mFrom);
  const WrittenScript script = format.mWrite(*story, output);
  WriteOutput(output, script.mBytes, options.mForce);
  PrintFindings(output, script.mFindings);
}

// "Formats: story (.quor), fountain (.fountain, .spmd, .txt)"
std::string DescribeFormats() {
  std::string text = "Formats:";
  for (const ScriptFormat& format : zelstoryhost::ScriptFormats()) {
    text += (text.back() == ':' ? " " : ", ") + std::string(format.mName) + " (";
    for (const std::string_view extension : format.mExtensions) {
      (text += text.back() == '(' ? "" : ", ") += extension;
    }
    text += ')';
  }
  return text;
}

int ConvertOne(const ConvertOptions& options) {
  if (options.mFiles.size() != 2) {
    throw UsageError("name one input and one output, or several inputs with --out and --to");
  }
  const std::string& output = options.mFiles.back();
  Convert(options.mFiles.front(), output, FormatOf(output, options.mTo), options);
  return kDone;
}

// The outputs, which must differ: each has its input's name, with the format's extension.
std::vector<std::string> OutputsOf(const ConvertOptions& options) {
  std::vector<std::string> outputs;
  std::set<std::string> names;
  for (const std::string& input : options.mFiles) {
    if (input == kStandardStream) {
      throw UsageError("standard input gives no file name; name an output instead of --out");
    }
    const std::string name =
        fs::path(input).stem().string() + std::string(options.mTo->mExtensions.front());
    if (!names.insert(name).second) throw UsageError("several inputs would become " + name);
    outputs.push_back((fs::path(options.mFolder) / name).string());
  }
  return outputs;
}

int ConvertAll(const ConvertOptions& options) {
  const std::vector<std::string> outputs = OutputsOf(options);
  std::error_code error;
  fs::create_directories(options.mFolder, error);
  if (error) throw Error(options.mFolder, error.message());
  auto next = outputs.begin();
  return ForEachFile(options.mFiles, [&](const std::string& input, const std::string&) {
    const std::string& output = *next++;
    Convert(input, output, *options.mTo, options);
    PrintLine(output);
  });
}

}  // namespace

void AddConvertCommand(CommandLine& tool) {
  Command command = tool.AddCommand("convert", "Write a script in another format");
  const auto options = std::make_shared<ConvertOptions>();
  command.AddArguments("FILE", options->mFiles,
                       "The script and the file to write; with --out, scripts alone. - is\n"
                       "standard input or output");
  AddFormatOption(command, "--format", "The script's format (default: detected)", options->mFrom);
  const Option to = AddFormatOption(
      command, "--to", "The format to write (default: the output's name tells)", options->mTo);
  command
      .AddText("--out", options->mFolder, "DIR",
               "Write all scripts into this folder, created if needed")
      .Needs(to);
  command.AddFlag("--force", options->mForce, "Replace files that exist");
  command.SetFooter(
      DescribeFormats() +
      ". For example:\n"
      "  zelstory convert harbour.fountain harbour.fdx\n"
      "  zelstory convert *.fdx --out stories --to story\n"
      "What a format has no place for is told on standard error. With --out, prints the name of\n"
      "each file that was written.\n"
      "Exit status: 0 done, 1 one or more were refused (their outputs are as they were), 2 wrong\n"
      "usage.");
  command.SetAction(
      [options] { return options->mFolder.empty() ? ConvertOne(*options) : ConvertAll(*options); });
}

}  // namespace zelstory
