#include "zelstory/Scratch.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <sstream>

#include <sys/wait.h>

namespace fs = std::filesystem;

namespace {

std::string Quoted(const std::string& word) {
  std::string quoted = "'";
  for (const char c : word) quoted += c == '\'' ? "'\\''" : std::string(1, c);
  return quoted + "'";
}

}  // namespace

Scratch::Outcome Scratch::Process(const std::string& program,
                                  const std::vector<std::string>& arguments,
                                  const std::string& input) {
  mStreams.Write("in", input);
  std::string line = "cd " + Quoted(mFolder.Path().string()) + " && " + Quoted(program);
  for (const std::string& argument : arguments) line += " " + Quoted(argument);
  const auto stream = [this](const char* name) {
    return Quoted((mStreams.Path() / name).string());
  };
  line += " <" + stream("in") + " >" + stream("out") + " 2>" + stream("err");
  const int status = std::system(line.c_str());
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, ReadBytes(mStreams.Path() / "out"),
          ReadBytes(mStreams.Path() / "err")};
}

Scratch::Outcome Scratch::Tool(const std::vector<std::string>& arguments,
                               const std::string& input) {
  return Process(ZELSTORY_TOOL, arguments, input);
}

bool Scratch::IsInstalled(const std::string& program) {
  return std::system(("command -v " + program + " >/dev/null 2>&1").c_str()) == 0;
}

std::vector<std::string> Scratch::FilesHere() const {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(mFolder.Path())) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

std::vector<std::string> Scratch::GoodExamples() {
  std::vector<std::string> files;
  for (const char* folder : {"", "encodings"}) {
    for (const auto& entry : fs::directory_iterator(Example(folder))) {
      if (entry.path().extension() == ".quor") files.push_back(entry.path().string());
    }
  }
  std::sort(files.begin(), files.end());
  return files;
}

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}
