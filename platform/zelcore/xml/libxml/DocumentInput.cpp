#include <string_view>
#include <tuple>

#include <libxml/tree.h>
#include <libxml/xmlIO.h>

#include <zelcore/xml/libxml/DocumentInput.h>

namespace zelcore::xml {
namespace {

std::string_view Content(xmlBufPtr buffer) {
  return {reinterpret_cast<const char*>(xmlBufContent(buffer)), xmlBufUse(buffer)};
}

std::string Hex(std::string_view bytes) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  std::string text;
  for (const char byte : bytes) {
    const auto value = static_cast<unsigned char>(byte);
    ((text += " 0x") += kDigits[value / 16]) += kDigits[value % 16];
  }
  return text;
}

}  // namespace

void DocumentInput::Begin() {
  if (const xmlParserInput* input = mContexts.Input()) mPlace.Begin(Held(*input));
}

void DocumentInput::MarkEnd() {
  mEnd = mPlace.EndOf(Held(*mContexts.Input()));
}

Position DocumentInput::ReadingPosition() const {
  if (mPlace.HasBegun()) return mPlace.Read();
  const xmlParserInput* input = mContexts.Input();  // no further than the XML declaration
  return input == nullptr ? Position{} : Position{input->line, input->col};
}

// libxml2 reports a tag when it has read it, or nearly. No "<" can be inside a tag, so the last one
// before is the tag's own.
Position DocumentInput::CurrentPosition() const {
  const bool isDocumentsTag = mIsInTag && !mContexts.IsInEntity();
  return isDocumentsTag ? mPlace.LastTag() : ReadingPosition();
}

void DocumentInput::RefuseBeyondEnd(const Position& position) const {
  if (!mEnd || std::tie(position.mLine, position.mColumn) < std::tie(mEnd->mLine, mEnd->mColumn)) {
    return;
  }
  throw Refusal{{*mEnd, kEndsEarly}};
}

// libxml2 converts what it is fed at once, from `raw` to `buffer`: what is left in `raw` begins
// with the bytes that failed.
void DocumentInput::CheckConversion() {
  const xmlParserInput* input = mContexts.Input();
  if (input == nullptr || input->buf->encoder == nullptr) return;  // UTF-8 is not converted
  const std::string_view rest = Content(input->buf->raw);
  if (rest.empty()) return;
  HeldInput held = Held(*input);
  held.mText = Content(input->buf->buffer);  // `end` may still be that of the piece before
  throw Refusal{{mPlace.EndOf(held),
                 "bytes that are not text in the document encoding:" + Hex(rest.substr(0, 4))}};
}

}  // namespace zelcore::xml
