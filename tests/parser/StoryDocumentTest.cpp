#include <filesystem>
#include <fstream>
#include <set>

#include <gtest/gtest.h>

#include <zelcore/xml/Reader.h>
#include <zelstoryparser/StoryParser.h>

#include "support/TreeDump.h"

namespace zelstoryparser {
namespace {

using zelcore::xml::Position;
using zelcore::xml::Reader;
namespace fs = std::filesystem;

const fs::path kStories = fs::path(ZELSTORY_EXAMPLES_DIR) / "stories";

// Notes where the first structural error was.
class PlacedParser : public StoryParser {
 public:
  explicit PlacedParser(const Reader& reader) : mReader(reader) {}
  void StartElement(const UTF16String& name, const Attributes& attributes) override {
    StoryParser::StartElement(name, attributes);
    NotePlace();
  }
  void EndElement(const UTF16String& name) override {
    StoryParser::EndElement(name);
    NotePlace();
  }
  std::string mPlace;

 private:
  void NotePlace() {
    if (!IsParseError() || !mPlace.empty()) return;
    const Position place = mReader.CurrentPosition();
    mPlace = std::to_string(place.mLine) + "\t" + std::to_string(place.mColumn);
  }
  const Reader& mReader;
};

std::vector<fs::path> StoryFiles(const fs::path& folder) {
  std::vector<fs::path> files;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
    if (entry.path().extension() == ".quor") files.push_back(entry.path());
  }
  EXPECT_GE(files.size(), 3u) << folder;
  return files;
}

// The tree of a good document.
std::string Tree(const fs::path& file) {
  Reader reader;
  StoryParser parser;
  EXPECT_TRUE(reader.ParseFile(file, parser)) << file << reader.Error().mReason;
  EXPECT_FALSE(parser.IsParseError()) << file << Utf8(parser.GetErrorString());
  return DumpTree(parser.GetStory());
}

TEST(StoryDocument, ExamplesAreRead) {
  for (const fs::path& file : StoryFiles(kStories)) {
    EXPECT_NE(Tree(file).find("body>section"), std::string::npos) << file;
  }
  std::set<std::string> trees;  // the same story in several encodings
  for (const fs::path& file : StoryFiles(kStories / "encodings")) trees.insert(Tree(file));
  ASSERT_EQ(trees.size(), 1u) << *trees.begin() << "\n" << *trees.rbegin();
  EXPECT_NE(trees.begin()->find("FRANÇOIS GRØNN"), std::string::npos);
}

TEST(StoryDocument, BrokenExamplesAreRefusedInPlace) {
  std::ifstream list(kStories / "broken/expected.txt");
  std::size_t count = 0;
  for (std::string line; std::getline(list, line);) {
    if (line.empty() || line[0] == '#') continue;
    ++count;
    const std::string name = line.substr(0, line.find('\t'));
    Reader reader;
    PlacedParser parser(reader);
    const bool isGood = reader.ParseFile(kStories / "broken" / name, parser);
    if (line == name + "\t-\t-\t-") {
      EXPECT_FALSE(parser.IsParseError()) << name;
      EXPECT_TRUE(!isGood || !parser.GetStory()) << name;
    } else {
      EXPECT_TRUE(isGood) << name << ": " << reader.Error().mReason;
      EXPECT_EQ(name + "\t" + parser.mPlace + "\t" + Utf8(parser.GetErrorString()), line);
    }
  }
  EXPECT_EQ(count, StoryFiles(kStories / "broken").size());
}

TEST(StoryDocument, ReadsWhatXMLAllows) {
  const std::string document =
      "<?xml version='1.0'?><!DOCTYPE TavroStory [<!ENTITY name 'ANNA'>]>\n<TavroStory "
      "version='1.0' "
      "documentType='a&amp;b'><metaData><![CDATA[<&>]]> &name;</metaData><document><stream "
      "name='body'>"
      "<section><scene><paragraph><textRun>a<!-- no --><?no?>&#x1D11E;\r\n</textRun></oops>";
  Reader reader;
  StoryParser parser;
  EXPECT_FALSE(reader.ParseBuffer(document, "buffer", parser));  // keeps what it had built
  EXPECT_FALSE(parser.IsParseError());
  EXPECT_EQ(DumpTree(parser.GetStory()),
            "story version=1.0 type=a&b meta=<&> ANNA>document>body>section>scene>207>'a𝄞\n'");
}

}  // namespace
}  // namespace zelstoryparser
