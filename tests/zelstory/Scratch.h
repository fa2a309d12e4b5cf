#pragma once

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/ScratchFolder.h"

// A scratch folder in which the tool, and independent readers of its output, run as processes.
class Scratch : public testing::Test {
 protected:
  struct Outcome {
    int mStatus;
    std::string mOutput;
    std::string mErrors;
  };

  // Runs `zelstory` with the arguments and the given standard input.
  Outcome Tool(const std::vector<std::string>& arguments, const std::string& input = "");
  Outcome Process(const std::string& program, const std::vector<std::string>& arguments,
                  const std::string& input = "");

  // What an independent RDF reader finds in a packet, as N-Triples about <http://clip.example/>.
  Outcome Triples(const std::string& packet) {
    return Process("rapper", {"-q", "-f", "scanForRDF", "-i", "rdfxml", "-o", "ntriples", packet,
                              "http://clip.example/"});
  }

  // Whether a program is installed, for tests that are skipped without it.
  static bool IsInstalled(const std::string& program);

  std::string File(const std::string& name) const { return (mFolder.Path() / name).string(); }
  void Write(const std::string& name, const std::string& bytes) const {
    mFolder.Write(name, bytes);
  }
  std::string Read(const std::string& name) const { return ReadBytes(File(name)); }
  std::vector<std::string> FilesHere() const;  // sorted names

  static std::string Example(const std::string& name) {
    return std::string(ZELSTORY_EXAMPLES_DIR) + "/stories/" + name;
  }
  static std::vector<std::string> GoodExamples();

 private:
  ScratchFolder mStreams;  // where standard input, output and error are kept
  ScratchFolder mFolder;   // the temporary folder of what runs
};

std::vector<std::string> Lines(const std::string& text);
