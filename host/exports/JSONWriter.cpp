#include <algorithm>
#include <ostream>
#include <utility>

#include <nlohmann/json.hpp>

#include <zelstoryhost/JSONWriter.h>
#include <zelstoryhost/Text.h>

namespace zelstoryhost {
namespace {

constexpr std::size_t kPiece = 1u << 14;   // code units of a text that are converted at a time
constexpr std::size_t kBuffer = 1u << 16;  // bytes

// Where to cut a text so that no character is cut: before its lead byte, which is at most three
// bytes back. Ill-formed text may have none, and then any place will do.
std::size_t LengthOfPiece(std::string_view text) {
  if (text.size() <= kPiece) return text.size();
  const auto isContinuation = [](char byte) {
    return (static_cast<unsigned>(byte) & 0xC0) == 0x80;
  };
  std::size_t length = kPiece;
  while (length > kPiece - 3 && isContinuation(text[length])) --length;
  return isContinuation(text[length]) ? kPiece : length;
}

std::size_t LengthOfPiece(std::u16string_view text) {
  if (text.size() <= kPiece) return text.size();
  const bool endsInPair = (text[kPiece - 1] & 0xFC00) == 0xD800;
  return endsInPair ? kPiece - 1 : kPiece;
}

bool NeedsNoEscape(char byte) {
  return byte >= 0x20 && byte < 0x7F && byte != '"' && byte != '\\';
}

}  // namespace

JSONWriter::JSONWriter(std::ostream& output, Layout layout) : mOutput(output), mLayout(layout) {}

JSONWriter& JSONWriter::Name(std::string_view name) {
  Text(name);
  Append(mLayout == Layout::kIndented ? ": " : ":");
  mIsNamed = true;
  return *this;
}

void JSONWriter::Text(std::string_view text) {
  BeginValue();
  Append("\"");
  for (std::size_t length; !text.empty(); text.remove_prefix(length)) {
    length = LengthOfPiece(text);
    AppendEscaped(text.substr(0, length));
  }
  Append("\"");
}

void JSONWriter::Text(std::u16string_view text) {
  BeginValue();
  Append("\"");
  for (std::size_t length; !text.empty(); text.remove_prefix(length)) {
    length = LengthOfPiece(text);
    AppendEscaped(ToUTF8(text.substr(0, length)));
  }
  Append("\"");
}

void JSONWriter::Number(std::int64_t number) {
  BeginValue();
  Append(std::to_string(number));
}

void JSONWriter::Bool(bool value) {
  BeginValue();
  Append(value ? "true" : "false");
}

void JSONWriter::Null() {
  BeginValue();
  Append("null");
}

void JSONWriter::Begin(char bracket) {
  BeginValue();
  Append({&bracket, 1});
  ++mDepth;
  mIsFirst = true;
}

void JSONWriter::End(char bracket) {
  --mDepth;
  if (!mIsFirst) BreakLine();
  Append({&bracket, 1});
  mIsFirst = false;
  if (mDepth > 0) return;
  mOutput << mBuffer;
  mBuffer.clear();
}

// What separates a value, or the name before it, from the one before.
void JSONWriter::BeginValue() {
  const bool followsName = std::exchange(mIsNamed, false);
  if (followsName || mDepth == 0) return;
  if (!mIsFirst) Append(",");
  BreakLine();
  mIsFirst = false;
}

void JSONWriter::BreakLine() {
  if (mLayout == Layout::kOneLine) return;
  Append("\n");
  for (std::size_t level = 0; level < mDepth; ++level) Append("  ");
}

void JSONWriter::Append(std::string_view json) {
  mBuffer += json;
  if (mBuffer.size() < kBuffer) return;
  mOutput << mBuffer;
  mBuffer.clear();
}

void JSONWriter::AppendEscaped(std::string_view piece) {
  if (std::ranges::all_of(piece, NeedsNoEscape)) return Append(piece);
  using nlohmann::json;
  const std::string quoted = json(piece).dump(-1, ' ', false, json::error_handler_t::replace);
  Append(std::string_view(quoted).substr(1, quoted.size() - 2));
}

}  // namespace zelstoryhost
