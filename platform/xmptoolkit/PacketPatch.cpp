#include <algorithm>
#include <string_view>
#include <utility>

#include <xmptoolkit/DocumentAccess.h>
#include <xmptoolkit/PacketPatch.h>
#include <xmptoolkit/model/Comparison.h>
#include <xmptoolkit/model/Text.h>
#include <xmptoolkit/packet/PacketLocation.h>
#include <xmptoolkit/packet/PacketReader.h>
#include <xmptoolkit/packet/PacketReplacement.h>
#include <xmptoolkit/packet/XMLDeclaration.h>
#include <xmptoolkit/patch/NotPatchable.h>
#include <xmptoolkit/patch/PacketPatcher.h>
#include <xmptoolkit/patch/Padding.h>

namespace xmptoolkit {

namespace {

constexpr std::size_t npos = std::string_view::npos;

std::string DecodeUnlessUTF8(std::string_view bytes, Encoding encoding) {
  if (encoding == Encoding::kUTF8) return {};
  std::size_t malformedAt = npos;
  std::string text = Decode(bytes, encoding, malformedAt);
  if (malformedAt != npos) throw NotPatchable{"its bytes are not text"};
  return text;
}

// Whether a file is declared to be ASCII.
bool IsDeclaredASCII(std::string_view file) {
  constexpr std::string_view kMark = "\xEF\xBB\xBF";
  if (file.starts_with(kMark)) file.remove_prefix(kMark.size());
  return IsASCIIName(DeclaredEncoding(file));
}

// Patches the packet of one file.
class Patcher {
 public:
  Patcher(std::string_view file, const Document& before, const Document& after)
      : mFile(file),
        mPacket(FindPacket(file)),
        mEncoding(EncodingOf(mPacket.mEncoding)),
        mDecoded(DecodeUnlessUTF8(file.substr(mPacket.mOffset, mPacket.mLength), mEncoding)),
        mText(mEncoding == Encoding::kUTF8 ? file.substr(mPacket.mOffset, mPacket.mLength)
                                           : std::string_view(mDecoded)) {
    mEdits = PatchText(SourceTree(mText), before, after, IsDeclaredASCII(file));
    if (mPacket.mHasWrapper && !mPacket.mIsReadOnly) Pad();
  }

  std::vector<ByteChange> Changes() const;

 private:
  std::size_t EncodedSize(std::string_view text) const;
  bool IsAlone() const;
  void Pad();

  std::string_view mFile;
  const XMP_PacketInfo mPacket;
  const Encoding mEncoding;
  const std::string mDecoded;  // unless the packet is UTF-8
  const std::string_view mText;
  std::vector<Edit> mEdits;
};

// In code units.
std::size_t Patcher::EncodedSize(std::string_view text) const {
  if (mEncoding == Encoding::kUTF8) return text.size();
  std::size_t units = 0;
  for (const char byte : text) {
    const auto value = static_cast<unsigned char>(byte);
    if ((value & 0xC0) != 0x80) ++units;
    if (value >= 0xF0 && UnitSize(mEncoding) == 2) ++units;  // a second surrogate
  }
  return units;
}

// Whether there is nothing but white space, and an XML declaration, around the packet.
bool Patcher::IsAlone() const {
  const std::size_t mark = zelcore::xml::DetectForm(mFile).mMarkBytes;
  const std::size_t begin = std::min(mark, mPacket.mOffset);
  std::size_t malformedAt = npos;
  std::string front = Decode(mFile.substr(begin, mPacket.mOffset - begin), mEncoding, malformedAt);
  if (malformedAt == npos && BeginsWithDeclaration(front)) front.erase(0, front.find("?>") + 2);
  if (malformedAt != npos || !IsWhiteSpace(front)) return false;
  const std::string back =
      Decode(mFile.substr(mPacket.mOffset + mPacket.mLength), mEncoding, malformedAt);
  return malformedAt == npos && IsWhiteSpace(back);
}

// Lets the padding take up the difference in length.
void Patcher::Pad() {
  std::size_t longer = 0;
  std::size_t shorter = 0;
  for (const Edit& edit : mEdits) {
    longer += EncodedSize(edit.mText);
    const Span span = edit.mSpan;
    shorter += EncodedSize(mText.substr(span.mBegin, span.mEnd - span.mBegin));
  }
  if (longer == shorter) return;
  const std::size_t end = mText.rfind("<?xpacket");
  const std::size_t begin = mText.find_last_not_of(kSpace, end - 1) + 1;
  const std::string_view old = mText.substr(begin, end - begin);
  const Padding padding(old);
  std::string space = longer > shorter ? padding.AfterGrowth(longer - shorter)
                                       : padding.AfterLoss(shorter - longer);
  if (longer < shorter && space.size() == old.size() && !IsAlone()) {
    space.append(shorter - longer, ' ');  // what follows keeps its place
  }
  if (space != old) mEdits.push_back({{begin, end}, std::move(space)});
}

std::vector<ByteChange> Patcher::Changes() const {
  const std::size_t unit = UnitSize(mEncoding);
  std::vector<ByteChange> changes;
  std::size_t position = 0;  // in the text
  std::size_t offset = mPacket.mOffset;
  const auto advance = [&](std::size_t to) {
    const std::size_t size = unit * EncodedSize(mText.substr(position, to - position));
    position = to;
    offset += size;
    return size;
  };
  for (const Edit& edit : mEdits) {
    advance(edit.mSpan.mBegin);
    ByteChange& change = changes.emplace_back();
    change.mOffset = offset;
    change.mLength = advance(edit.mSpan.mEnd);
    change.mBytes = Encode(edit.mText, mEncoding);
  }
  return changes;
}

std::string Apply(std::string_view file, const std::vector<ByteChange>& changes) {
  std::size_t size = file.size();
  for (const ByteChange& change : changes) size += change.mBytes.size() - change.mLength;
  std::string bytes;
  bytes.reserve(size);
  std::size_t kept = 0;
  for (const ByteChange& change : changes) {
    bytes += file.substr(kept, change.mOffset - kept);
    bytes += change.mBytes;
    kept = change.mOffset + change.mLength;
  }
  return bytes += file.substr(kept);
}

// The one change between the bytes that two files begin and end with alike.
ByteChange ChangeBetween(std::string_view before, std::string_view after) {
  const auto begin = std::mismatch(before.begin(), before.end(), after.begin(), after.end());
  const auto offset = static_cast<std::size_t>(begin.first - before.begin());
  before.remove_prefix(offset);
  after.remove_prefix(offset);
  const auto end = std::mismatch(before.rbegin(), before.rend(), after.rbegin(), after.rend());
  const auto alike = static_cast<std::size_t>(end.first - before.rbegin());
  before.remove_suffix(alike);
  after.remove_suffix(alike);
  return {offset, before.size(), std::string(after)};
}

bool HoldsMetadata(std::string_view file, const Document& document) {
  return Comparison(ReadPacket(file), document, Equality::kMetadata).AreEqual();
}

PacketPatch Patch(std::string_view file, const Document& before, const Document& after) {
  PacketPatch patch;
  patch.mChanges = Patcher(file, before, after).Changes();
  patch.mNewFile = Apply(file, patch.mChanges);
  try {
    if (HoldsMetadata(patch.mNewFile, after)) return patch;
  } catch (const XMP_Error&) {
  }
  throw NotPatchable{"changed in place, it would be read as something else"};
}

PacketPatch Rewrite(std::string_view file, const Document& after, std::string why) {
  PacketPatch patch;
  patch.mNewFile = ReplacePacket(file, after);
  patch.mWhyRewritten = std::move(why);
  const std::string refusal = "the new packet could not be read again: ";
  try {
    if (!HoldsMetadata(patch.mNewFile, after)) {
      throw XMP_Error(kXMPErr_BadXMP, "it would be read as something else");
    }
  } catch (const XMP_Error& error) {
    throw XMP_Error(error.GetID(), refusal + error.GetErrMsg());
  }
  patch.mChanges.push_back(ChangeBetween(file, patch.mNewFile));
  return patch;
}

}  // namespace

PacketPatch PatchPacket(const void* file, XMP_StringLen size, const TXMPMeta<std::string>& before,
                        const TXMPMeta<std::string>& after) {
  const std::string_view bytes(static_cast<const char*>(file), file == nullptr ? 0 : size);
  const Document& now = DocumentAccess::Of(after);
  try {
    return Patch(bytes, DocumentAccess::Of(before), now);
  } catch (const NotPatchable& fault) {
    return Rewrite(bytes, now, fault.mReason);
  }
}

std::string FileInUTF8(const void* file, XMP_StringLen size) {
  const std::string_view bytes(static_cast<const char*>(file), file == nullptr ? 0 : size);
  std::size_t malformedAt = npos;
  std::string text = Decode(bytes, EncodingOf(FindPacket(bytes).mEncoding), malformedAt);
  return malformedAt == npos ? text : std::string(bytes);
}

}  // namespace xmptoolkit
