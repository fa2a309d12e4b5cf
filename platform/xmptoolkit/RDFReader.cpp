#include "RDFReader.h"

#include <algorithm>

#include "PacketLocation.h"
#include "RDFHandler.h"
#include "Text.h"

namespace xmptoolkit {

namespace {

using zelcore::xml::Position;

constexpr std::size_t npos = std::string_view::npos;

bool EqualIgnoringCase(std::string_view text, std::string_view capitals) {
  if (text.size() != capitals.size()) return false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i] >= 'a' && text[i] <= 'z' ? static_cast<char>(text[i] - 0x20) : text[i];
    if (c != capitals[i]) return false;
  }
  return true;
}

bool IsASCII(std::string_view text) {
  return std::all_of(text.begin(), text.end(),
                     [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

// `text` is that of the packet, which has to be ASCII where that is what is declared.
bool IsNameOf(std::string_view name, Encoding encoding, std::string_view text) {
  const auto isAny = [name](std::string_view first, std::string_view second) {
    return EqualIgnoringCase(name, first) || EqualIgnoringCase(name, second);
  };
  switch (encoding) {
    case Encoding::kUTF8:
      return isAny("UTF-8", "UTF8") || (isAny("US-ASCII", "ASCII") && IsASCII(text));
    case Encoding::kUTF16Big:
      return isAny("UTF-16", "UTF-16BE");
    case Encoding::kUTF16Little:
      return isAny("UTF-16", "UTF-16LE");
    case Encoding::kUTF32Big:
      return isAny("UTF-32", "UTF-32BE");
    case Encoding::kUTF32Little:
      return isAny("UTF-32", "UTF-32LE");
  }
  return false;
}

// The encoding that an XML declaration at the start of `text` names; a null view without one.
std::string_view DeclaredEncoding(std::string_view text) {
  if (!BeginsWithDeclaration(text)) return {};
  const std::string_view declaration = text.substr(0, text.find("?>"));
  const std::size_t key = declaration.find("encoding");
  const std::size_t open = key == npos ? npos : declaration.find_first_of("\"'", key);
  if (open == npos) return {};
  const std::size_t close = declaration.find(declaration[open], open + 1);
  return close == npos ? std::string_view() : declaration.substr(open + 1, close - open - 1);
}

// `front` is where a declaration may stand: the text itself, or what is in front of its wrapper.
void CheckDeclaration(std::string_view front, Encoding encoding, std::string_view text) {
  const std::string_view name = DeclaredEncoding(front);
  if (name.data() == nullptr || IsNameOf(name, encoding, text)) return;
  const auto offset = static_cast<std::size_t>(name.data() - front.data());
  throw XMP_Error(kXMPErr_BadXML,
                  Describe(PositionAt(front, offset, Encoding::kUTF8)) + "the encoding " +
                      Quoted(name) +
                      " is declared, which the bytes do not have or no packet may have");
}

// The text is UTF-8 by now, whatever its declaration says: has the declaration say so too, without
// moving anything behind it.
void CorrectDeclaration(std::string& text) {
  constexpr std::string_view kName = "UTF-8";
  const std::string_view name = DeclaredEncoding(text);
  if (name.size() < kName.size()) return;  // UTF8, or nothing
  const auto offset = static_cast<std::size_t>(name.data() - text.data());
  const std::size_t rest = name.size() - kName.size();
  const char quote = text[offset - 1];
  text.replace(offset, name.size() + 1, std::string(kName) + quote + std::string(rest, ' '));
}

// What stands in front of a wrapper, as far as it is text.
std::string TextInFront(std::string_view buffer, const PacketRange& range) {
  std::size_t markSize = 0;
  if (DetectEncoding(buffer, markSize) != range.mEncoding) return {};
  if (range.mOffset < markSize) return {};
  const std::string_view front = buffer.substr(markSize, range.mOffset - markSize);
  if (!front.starts_with(Encode("<?xml", range.mEncoding))) return {};
  std::size_t malformedAt = npos;
  return Decode(front, range.mEncoding, malformedAt);
}

}  // namespace

Document ReadPacket(std::string_view buffer) {
  if (buffer.empty()) throw XMP_Error(kXMPErr_BadXML, "1:1: the buffer is empty");
  const PacketRange range = FindPacket(buffer);
  std::size_t malformedAt = npos;
  std::string text =
      Decode(buffer.substr(range.mOffset, range.mLength), range.mEncoding, malformedAt);
  if (malformedAt != npos) {
    const Position place = PositionAt(buffer, range.mOffset + malformedAt, range.mEncoding);
    throw XMP_Error(kXMPErr_BadUnicode,
                    Describe(place) + "the bytes are no text in their encoding");
  }
  const std::string front = range.mHasWrapper ? TextInFront(buffer, range) : std::string();
  CheckDeclaration(range.mHasWrapper ? front : text, range.mEncoding, text);
  CorrectDeclaration(text);

  RDFHandler handler(PositionAt(buffer, range.mOffset, range.mEncoding), range.mHasWrapper);
  return handler.Read(text);
}

}  // namespace xmptoolkit
