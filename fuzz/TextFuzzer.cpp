#include <locale>
#include <optional>
#include <sstream>

#include "Packets.h"
#include "TextRules.h"
#include "scenexmp/SceneHeading.h"
#include "scenexmp/ShotProperties.h"
#include "text/StringTokenizer.h"

// Compares the library's text functions with a second statement of the same rules.
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
  Text mended = raw, widened;
  for (std::size_t i = 0; i < raw.size(); ++i) {
    const auto is = [&](std::size_t at, unsigned kind) { return (raw[at] & 0xFC00u) == kind; };
    const bool isPair = is(i, 0xD800) && i + 1 < raw.size() && is(i + 1, 0xDC00);
    if (isPair) ++i;
    if (!isPair && (is(i, 0xD800) || is(i, 0xDC00))) mended[i] = 0xFFFD;
  }
  Require(fuzzing::ToUTF16(UTF16to8(raw)) == mended, "lone surrogates alone become U+FFFD");
  for (const char byte : bytes) widened += byte < 0 ? u'\uFFFD' : static_cast<char16_t>(byte);
  Require(AsciiToUTF16(bytes) == widened, "AsciiToUTF16 widens");
}

void TestHeading(const Text& text, const Text& word) {
  const fuzzing::Heading expected = fuzzing::SplitHeading(text);
  fuzzing::Heading heading{u"before", {}, {}}, rest;
  ParseSceneHeading(text, heading.mSetting, heading.mLocation, heading.mTime);
  const bool isSupplied = !expected.mSetting.empty() || text.find(u'.') != text.npos;
  Require(heading.mSetting == (isSupplied ? expected.mSetting : u"before"), "setting");
  Require(heading.mLocation == expected.mLocation, "location");
  Require(heading.mTime == expected.mTime, "time of day");
  Require(EndsWithIgnoringCase(text, word) == fuzzing::EndsWith(text, word), "end of a text");
  if (text.empty()) return;
  SplitLocationAndTimeOfDay(text, rest.mLocation, rest.mTime);
  const fuzzing::Heading expectedRest = fuzzing::SplitRest(text);
  Require(rest.mLocation == expectedRest.mLocation, "location of a rest");
  Require(rest.mTime == expectedRest.mTime, "time of day of a rest");
}

void TestTokenizer(const Text& text, const Text& delimiters, bool skipsRepeated) {
  StringTokenizer tokenizer(text, delimiters, skipsRepeated);
  for (const Text& piece : fuzzing::Pieces(text, delimiters, skipsRepeated)) {
    Require(!tokenizer.IsExhausted(), "a tokenizer with pieces left is not exhausted");
    const Text rest = StringTokenizer(tokenizer).RemainingText();
    Require(text.ends_with(rest) && rest.starts_with(piece), "a piece begins the remaining text");
    const bool hasDelimiter = rest.find_first_of(delimiters) != rest.npos;
    Require(tokenizer.HasMoreTokens() == hasDelimiter, "more tokens end at delimiters");
    Require(tokenizer.NextToken() == piece, "pieces are the text between delimiters");
  }
  Require(text.empty() || tokenizer.IsExhausted(), "all is handed out");
  Require(tokenizer.NextToken().empty() && tokenizer.RemainingText().empty(), "nothing is left");
  Require(!tokenizer.HasMoreTokens() && tokenizer.IsExhausted(), "an end is for good");
}

// Returns a stream of the standard library. Non-ASCII characters are never part of a number.
std::istringstream ClassicStream(const Text& text) {
  std::string ascii;
  for (const char16_t unit : text) ascii += unit < 0x80 ? static_cast<char>(unit) : '?';
  std::istringstream stream(ascii);
  stream.imbue(std::locale::classic());
  return stream;
}

void TestNumbers(const Text& text) {
  zelcore::iUTF16StringStream stream(text);
  std::istringstream classic = ClassicStream(text);
  for (bool goesOn = true; goesOn;) {
    std::int32_t number = 77, expected = 77;
    stream >> number;
    goesOn = static_cast<bool>(classic >> expected);
    Require(static_cast<bool>(stream) == goesOn, "extractions succeed as the standard's do");
    if (!goesOn && expected == 77) expected = 0;  // at the end of the text it changes nothing
    Require(number == expected, "numbers are the standard's");
  }
}

void TestDuration(const Text& duration) {
  std::int64_t total = 0;
  bool hasAny = false;
  std::vector<Text> fields = fuzzing::Pieces(duration, u":", false);
  fields.resize(3);
  for (const Text& field : fields) {
    std::int32_t number = 0;
    if (std::istringstream stream = ClassicStream(field); !(stream >> number)) number = 0;
    hasAny |= number != 0;
    total = total * 60 + number;
  }
  fuzzing::Meta xmp;
  RegisterStoryNamespaces();
  Require(WriteShotDurationProperty(duration, xmp), "a duration can be written");
  std::string value = "none", scale = value;
  xmp.GetProperty(kDuration.mNamespaceURI, "duration/xmpDM:value", &value, nullptr);
  xmp.GetProperty(kDuration.mNamespaceURI, "duration/xmpDM:scale", &scale, nullptr);
  Require(value == (hasAny ? std::to_string(total) : "none"), "a duration is told in seconds");
  Require(scale == (hasAny ? "1/1" : "none"), "a duration has its scale");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  fuzzing::Input input(bytes, size);
  const unsigned mode = input.Byte();
  const Text shorter = fuzzing::ToUTF16(input.Bytes(input.Byte() % 24));
  const std::string_view rest = input.Bytes(size);
  const Text raw = fuzzing::RawText(rest);
  const Text text = (mode & 1) != 0 ? raw : fuzzing::ToUTF16(rest);
  TestConversions(rest, raw);
  TestHeading(text, shorter);
  TestTokenizer(text, shorter, (mode & 2) != 0);
  TestNumbers(text);
  TestDuration(text);
  return 0;
}
