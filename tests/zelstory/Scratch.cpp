#include "zelstory/Scratch.h"

#include <cstdlib>
#include <filesystem>
#include <sstream>

#include <sys/wait.h>

namespace fs = std::filesystem;

Scratch::Outcome Scratch::Run(const std::string& script, const std::string& input) const {
  const fs::path& streams = mStreams.Path();
  mStreams.Write("in", input);
  mStreams.Write("script", script);
  const std::string path = fs::path(ZELSTORY_TOOL).parent_path().string() + ":" + getenv("PATH");
  const std::string line = "cd '" + mFolder.Path().string() + "' && export s='" + streams.string() +
                           "' && stories='" ZELSTORY_EXAMPLES_DIR
                           "/stories' data='" ZELSTORY_EXAMPLES_DIR
                           "/../tests/zelstory/data' PATH='" +
                           path + "' sh \"$s/script\" <\"$s/in\" >\"$s/out\" 2>\"$s/err\"";
  const int status = std::system(line.c_str());
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, ReadBytes(streams / "out"),
          ReadBytes(streams / "err")};
}

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

std::string Stream(const std::string& name, const std::string& scenes) {
  return "<stream name='" + name + "'><section>" + scenes + "</section></stream>";
}

std::string Story(const std::string& scenes, const std::string& more) {
  return "<TavroStory version='1.0'><document>" + Stream("body", scenes) + more +
         "</document></TavroStory>";
}

std::string Paragraph(const std::string& kind, const std::string& text) {
  return "<paragraph element='" + kind + "'><textRun>" + text + "</textRun></paragraph>";
}
