#include "RDFReader.h"

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

bool IsNameOf(std::string_view name, Encoding encoding) {
  switch (encoding) {
    case Encoding::kUTF8:
      return EqualIgnoringCase(name, "UTF-8") || EqualIgnoringCase(name, "US-ASCII");
    case Encoding::kUTF16Big:
      return EqualIgnoringCase(name, "UTF-16") || EqualIgnoringCase(name, "UTF-16BE");
    case Encoding::kUTF16Little:
      return EqualIgnoringCase(name, "UTF-16") || EqualIgnoringCase(name, "UTF-16LE");
    case Encoding::kUTF32Big:
      return EqualIgnoringCase(name, "UTF-32") || EqualIgnoringCase(name, "UTF-32BE");
    case Encoding::kUTF32Little:
      return EqualIgnoringCase(name, "UTF-32") || EqualIgnoringCase(name, "UTF-32LE");
  }
  return false;
}

// The text is UTF-8 by now, whatever its declaration says: has the declaration say so too, without
// moving anything behind it.
void CorrectDeclaration(std::string& text, Encoding encoding) {
  if (!text.starts_with("<?xml ")) return;
  const std::size_t end = text.find("?>");
  const std::size_t key = text.find("encoding");
  if (end == npos || key > end) return;
  const std::size_t open = text.find_first_of("\"'", key);
  if (open > end) return;
  const std::size_t close = text.find(text[open], open + 1);
  if (close > end) return;
  const std::string name = text.substr(open + 1, close - open - 1);
  if (!IsNameOf(name, encoding)) {
    throw XMP_Error(kXMPErr_BadXML,
                    Describe(PositionAt(text, open + 1, Encoding::kUTF8)) + "the encoding " +
                        Quoted(name) +
                        " is declared, which the bytes do not have or no packet may have");
  }
  constexpr std::string_view kName = "UTF-8";
  const std::size_t rest = name.size() - kName.size();
  text.replace(open + 1, name.size() + 1, std::string(kName) + text[open] + std::string(rest, ' '));
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
  CorrectDeclaration(text, range.mEncoding);

  // A byte-order mark in front is no character of the text.
  const Position start =
      range.mHasWrapper ? PositionAt(buffer, range.mOffset, range.mEncoding) : Position{};
  RDFHandler handler(start, range.mHasWrapper);
  return handler.Read(text);
}

}  // namespace xmptoolkit
