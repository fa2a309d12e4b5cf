#include <zelcore/UTF8.h>

namespace zelcore::utility {
namespace {

// The allowed range of a sequence's second byte and the sequence's length, by its first byte; a
// length of 0 marks a byte that starts nothing. (Unicode standard, table of well-formed sequences.)
struct LeadByte {
  int mLength;
  unsigned char mSecondLow;
  unsigned char mSecondHigh;
};

constexpr LeadByte ClassifyLead(unsigned char lead) {
  if (lead >= 0xC2 && lead <= 0xDF) return {2, 0x80, 0xBF};
  if (lead == 0xE0) return {3, 0xA0, 0xBF};
  if (lead == 0xED) return {3, 0x80, 0x9F};
  if (lead >= 0xE1 && lead <= 0xEF) return {3, 0x80, 0xBF};
  if (lead == 0xF0) return {4, 0x90, 0xBF};
  if (lead >= 0xF1 && lead <= 0xF3) return {4, 0x80, 0xBF};
  if (lead == 0xF4) return {4, 0x80, 0x8F};
  return {0, 0, 0};
}

}  // namespace

DecodedUTF8 DecodeUTF8(std::string_view bytes) {
  const auto byteAt = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
  if (byteAt(0) < 0x80) return {byteAt(0), 1, true};
  const LeadByte lead = ClassifyLead(byteAt(0));
  if (lead.mLength == 0) return {0, 1, false};
  char32_t character = byteAt(0) & (0xFFu >> (lead.mLength + 1));
  for (std::size_t i = 1; i < static_cast<std::size_t>(lead.mLength); ++i) {
    const unsigned char low = i == 1 ? lead.mSecondLow : 0x80;
    const unsigned char high = i == 1 ? lead.mSecondHigh : 0xBF;
    if (i >= bytes.size() || byteAt(i) < low || byteAt(i) > high) return {0, i, false};
    character = (character << 6) | (byteAt(i) & 0x3Fu);
  }
  return {character, static_cast<std::size_t>(lead.mLength), true};
}

bool IsUTF8(std::string_view bytes) {
  while (!bytes.empty()) {
    const DecodedUTF8 decoded = DecodeUTF8(bytes);
    if (!decoded.mWellFormed) return false;
    bytes.remove_prefix(decoded.mBytes);
  }
  return true;
}

}  // namespace zelcore::utility
