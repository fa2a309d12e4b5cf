#include <zelstoryparser/SceneXMP.h>

#include "TextRules.h"
#include "scenexmp/SceneHeading.h"
#include "scenexmp/SceneText.h"
#include "scenexmp/Vocabulary.h"
#include "text/StringTokenizer.h"

// Everything that the library does with text, beside a second statement of the same rules.
namespace {

using namespace zelstoryparser;
using fuzzing::Require;
using fuzzing::Text;

void TestConversions(std::string_view bytes, const Text& raw) {
  using namespace zelcore::utility;
  const Text text = UTF8to16(bytes);
  Require(text == fuzzing::ToUTF16(bytes), "UTF8to16 follows the table of byte sequences");
  Text joined = raw;
  AppendUTF8to16(bytes, joined);
  Require(joined == raw + text, "AppendUTF8to16 appends the same");
  Require(UTF8to16(UTF16to8(text)) == text, "well-formed text survives both conversions");
  Text mended = raw;
  for (std::size_t i = 0; i < raw.size(); ++i) {
    const auto is = [&](std::size_t at, unsigned kind) { return (raw[at] & 0xFC00u) == kind; };
    if (is(i, 0xD800) && i + 1 < raw.size() && is(i + 1, 0xDC00))
      ++i;
    else if (is(i, 0xD800) || is(i, 0xDC00))
      mended[i] = 0xFFFD;
  }
  Require(fuzzing::ToUTF16(UTF16to8(raw)) == mended, "lone surrogates become U+FFFD, no others");
  Text widened;
  for (const char byte : bytes) widened += byte < 0 ? u'\uFFFD' : static_cast<char16_t>(byte);
  Require(AsciiToUTF16(bytes) == widened, "AsciiToUTF16 widens");
}

void TestHeading(const Text& text, const Text& word) {
  const fuzzing::Heading expected = fuzzing::SplitHeading(text);
  fuzzing::Heading heading{u"before", {}, {}};
  ParseSceneHeading(text, heading.mSetting, heading.mLocation, heading.mTime);
  const bool isSupplied = !expected.mSetting.empty() || text.find(u'.') != text.npos;
  Require(heading.mSetting == (isSupplied ? expected.mSetting : u"before"), "setting");
  Require(heading.mLocation == expected.mLocation, "location");
  Require(heading.mTime == expected.mTime, "time of day");
  Require(EndsWithIgnoringCase(text, word) == fuzzing::EndsWith(text, word), "end of a text");
  if (text.empty()) return;
  fuzzing::Heading split, expectedSplit;
  SplitLocationAndTimeOfDay(text, split.mLocation, split.mTime);
  fuzzing::SplitRest(text, expectedSplit);
  Require(split.mLocation == expectedSplit.mLocation, "location of a rest");
  Require(split.mTime == expectedSplit.mTime, "time of day of a rest");
}

void TestTokenizer(const Text& text, const Text& delimiters, bool skipsRepeated) {
  StringTokenizer tokenizer(text, delimiters, skipsRepeated);
  std::size_t at = 0;
  for (const Text& piece : fuzzing::Pieces(text, delimiters, skipsRepeated)) {
    Require(!tokenizer.IsExhausted(), "a tokenizer with pieces left is not exhausted");
    const Text rest = StringTokenizer(tokenizer).RemainingText();
    Require(text.ends_with(rest) && rest.starts_with(piece), "a piece begins the remaining text");
    const bool hasDelimiter = rest.find_first_of(delimiters) != rest.npos;
    Require(tokenizer.HasMoreTokens() == hasDelimiter, "more tokens end at delimiters");
    Require(tokenizer.NextToken() == piece, "pieces are the text between delimiters");
    at += piece.size();
  }
  Require(at <= text.size() && (text.empty() || tokenizer.IsExhausted()), "all is handed out");
  Require(tokenizer.NextToken().empty() && tokenizer.RemainingText().empty(), "nothing is left");
  Require(!tokenizer.HasMoreTokens() && tokenizer.IsExhausted(), "an end is for good");
}

void TestNumbers(const Text& text) {
  zelcore::iUTF16StringStream stream(text);
  std::istringstream classic = fuzzing::ClassicStream(text);
  for (bool goesOn = true; goesOn;) {
    std::int32_t number = 77, expected = 77;
    stream >> number;
    goesOn = static_cast<bool>(classic >> expected);
    Require(static_cast<bool>(stream) == goesOn, "extractions succeed as the standard's do");
    if (!goesOn && expected == 77) expected = 0;  // it touches nothing where the text has ended
    Require(number == expected, "numbers are the standard's");
  }
}

// A scene whose paragraphs are the lines of a text, each begun by its kind.
boost::intrusive_ptr<Scene> MakeScene(const Text& text, const Text& duration) {
  boost::intrusive_ptr<Scene> scene(new Scene);
  scene->mShotDuration = duration;
  for (const Text& line : fuzzing::Pieces(text, u"\n", false)) {
    auto& paragraph = scene->mParagraphs.emplace_back(new Paragraph);
    paragraph->mObjectID = ObjectID(u"id");
    paragraph->mElementType = 200 + (line.empty() ? 7 : line[0] % 8);
    for (const Text& run : fuzzing::Pieces(line.substr(line.empty() ? 0 : 1), u"|", false))
      paragraph->mTextRuns.emplace_back(new TextRun)->mText = run;
  }
  return scene;
}

SceneText Gathered(const Text& text) {
  SceneText scene;
  Text name, speech;
  const auto append = [](Text& target, const Text& more) {
    target += (target.empty() ? u"" : u"  ") + more;
  };
  const auto endSpeech = [&] {
    if (name.empty()) return;
    if (!speech.empty()) scene.mPairs.emplace_back(name, speech);
    name = speech = u"";
  };
  for (const Text& line : fuzzing::Pieces(text, u"\n", false)) {
    const int kind = line.empty() ? 7 : line[0] % 8;
    Text plain;
    for (const char16_t unit : line.substr(line.empty() ? 0 : 1)) {
      if (unit != u'|') plain += unit;
    }
    if (kind == 0) scene.mHeading = plain;
    if (kind == 1) endSpeech();
    if (kind == 1) name = plain;
    if (kind == 2) append(speech, plain);
    if (kind == 3) append(scene.mAction, plain);
  }
  endSpeech();
  return scene;
}

void TestShot(const Text& text, const Text& duration, std::int32_t ordinal) {
  const auto scene = MakeScene(text, duration);
  const SceneText gathered = CollectSceneText(*scene), expected = Gathered(text);
  Require(gathered.mHeading == expected.mHeading, "the last heading counts");
  Require(gathered.mAction == expected.mAction, "actions are joined");
  Require(gathered.mPairs == expected.mPairs, "speeches are paired");

  std::vector<ShotXMP> shots;
  Require(GetSceneXMP(nullptr, scene, ordinal, shots), "a scene's shot is made");
  const bool saysAnything =
      !expected.mHeading.empty() || !expected.mAction.empty() || !expected.mPairs.empty();
  Require(shots.size() == (saysAnything ? 1 : 0), "a scene that says something makes one shot");
  if (!saysAnything) return;
  const std::string& packet = shots[0].mXMPPacket;
  const TXMPMeta<std::string> xmp(packet.data(), static_cast<XMP_StringLen>(packet.size()));
  const auto read = [&](const StoryProperty& property, const char* field = "") {
    std::string value = "absent";
    xmp.GetProperty(property.mNamespaceURI, (property.mName + std::string(field)).c_str(), &value,
                    nullptr);
    return value;
  };
  std::string number = std::to_string(ordinal);
  number.insert(0, number.size() < 3 ? 3 - number.size() : 0, '0');
  Require(read(kSceneNumber) == number, "the ordinal stands in for the scene's number");
  const fuzzing::Heading heading = fuzzing::SplitHeading(expected.mHeading);
  Text name;
  for (const Text& part : {heading.mSetting, heading.mLocation, heading.mTime}) {
    if (!part.empty()) name += part + u" - ";
  }
  // What XML cannot carry is refused, and its property left out.
  const std::string value = ToolkitValue(name + Text(number.begin(), number.end()));
  Require(read(kShotName) == (fuzzing::IsXMLText(value) ? value : "absent"), "the shot's name");
  const auto seconds = fuzzing::Seconds(duration);
  const std::string total = seconds ? std::to_string(*seconds) : "absent";
  Require(read(kDuration, "/xmpDM:value") == total, "the duration in seconds");
  Require(read(kDuration, "/xmpDM:scale") == (seconds ? "1/1" : "absent"), "the duration's scale");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  fuzzing::Input input(bytes, size);
  const unsigned mode = input.Byte();
  const auto ordinal = static_cast<std::int32_t>(input.Byte() << 24 | input.Byte());
  const Text shorter = fuzzing::ToUTF16(input.Bytes(input.Pick(24)));
  const std::string_view rest = input.Rest();
  const Text raw = fuzzing::RawText(rest);
  const Text text = (mode & 1) != 0 ? raw : fuzzing::ToUTF16(rest);
  TestConversions(rest, raw);
  TestHeading(text, shorter);
  TestTokenizer(text, shorter, (mode & 2) != 0);
  TestNumbers(text);
  TestNumbers(shorter);
  TestShot(text, shorter, ordinal);
  return 0;
}
