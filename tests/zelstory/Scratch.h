#pragma once

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/ScratchFolder.h"

// A scratch folder in which shell scripts run the tool, and other programs that check its output.
class Scratch : public testing::Test {
 protected:
  struct Outcome {
    int mStatus;
    std::string mOutput;
    std::string mErrors;
  };

  // Runs a script of sh in the folder. There `zelstory` is the tool, $stories the folder of the
  // example stories, $data that of the tests' own files, and $s one for what must not lie in it.
  Outcome Run(const std::string& script, const std::string& input = "") const;
  // What a script prints on both streams.
  std::string Printed(const std::string& script) const {
    const Outcome outcome = Run(script);
    return outcome.mErrors + outcome.mOutput;
  }
  // Runs one command of the tool.
  Outcome Tool(const std::string& arguments, const std::string& input = "") const {
    return Run("zelstory " + arguments, input);
  }

  // Which of the programs are not installed, as a reason to skip a test; empty when all are.
  std::string Missing(const std::string& programs) const {
    return Run("for p in " + programs + "; do command -v $p >/dev/null || echo no $p; done")
        .mOutput;
  }

  std::string File(const std::string& name) const { return (mFolder.Path() / name).string(); }
  void Write(const std::string& name, const std::string& bytes) const {
    mFolder.Write(name, bytes);
  }
  std::string Read(const std::string& name) const { return ReadBytes(File(name)); }

 private:
  ScratchFolder mStreams;  // where standard input, output and error are kept
  ScratchFolder mFolder;   // the temporary folder of what runs
};

std::vector<std::string> Lines(const std::string& text);

// A story with these scenes in its body; `more` follows the body.
std::string Story(const std::string& scenes, const std::string& more = "");
std::string Stream(const std::string& name, const std::string& scenes);
std::string Paragraph(const std::string& kind, const std::string& text);
