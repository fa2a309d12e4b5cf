// A handler derived from StoryParser. It prints where each scene begins, and rejects a story with a
// scene that has no number.
#include <iostream>

#include <zelcore/xml/Reader.h>
#include <zelstoryparser/zelstoryparser.h>

namespace {

using namespace zelstoryparser;

class NumberedScenes : public StoryParser {
 public:
  explicit NumberedScenes(const zelcore::xml::Reader& reader) : mReader(reader) {}

  void StartElement(const UTF16String& name, const Attributes& attributes) override {
    StoryParser::StartElement(name, attributes);  // builds the tree
    if (IsParseError() || name != u"scene") return;
    if (!attributes.contains(u"sceneNumber")) {
      return SetParseError(zelcore::utility::AsciiToUTF16("A scene has no number."));
    }
    std::cout << "a scene begins on line " << mReader.CurrentPosition().mLine << '\n';
  }

 private:
  const zelcore::xml::Reader& mReader;  // outlives the handler
};

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  zelcore::xml::Reader reader;
  NumberedScenes parser(reader);
  if (!reader.ParseFile(argv[1], parser)) return 1;
  const auto error = zelcore::utility::UTF16to8(parser.GetErrorString());
  std::cout << (parser.IsParseError() ? error.c_str() : "every scene has a number") << '\n';
}
