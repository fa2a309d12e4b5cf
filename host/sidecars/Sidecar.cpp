#include <charconv>
#include <cstdint>
#include <limits>
#include <string_view>
#include <utility>

#include <zelstoryhost/Error.h>
#include <zelstoryhost/Files.h>
#include <zelstoryhost/Sidecar.h>

#include <xmptoolkit/XMPTree.h>

#include "LowerCase.h"

namespace zelstoryhost {
namespace {

constexpr std::size_t npos = std::string_view::npos;

// Changes ASCII in an XML declaration before the packet to UTF-8, since the new packet may not be
// ASCII. Nothing after the declaration moves.
void CorrectDeclaration(std::string& front) {
  constexpr std::string_view kName = "UTF-8";
  const std::string_view declaration = std::string_view(front).substr(0, front.find("?>"));
  const std::string_view start =
      declaration.substr(declaration.starts_with("\xEF\xBB\xBF") ? 3 : 0);
  if (!start.starts_with("<?xml") || start.find_first_of(" \t\n\r") != 5) return;
  const std::size_t key = declaration.find("encoding");
  const std::size_t open = key == npos ? npos : declaration.find_first_of("\"'", key);
  const std::size_t close = open == npos ? npos : declaration.find(declaration[open], open + 1);
  if (close == npos) return;
  const std::string name = LowerCase(std::string(declaration.substr(open + 1, close - open - 1)));
  if (name != "us-ascii" && name != "ascii") return;
  const std::string blanks(name.size() - kName.size(), ' ');
  front.replace(open + 1, name.size() + 1, std::string(kName) + front[open] + blanks);
}

// The size of a line feed, in bytes.
std::size_t CharacterSize(XMP_OptionBits encoding) {
  if (encoding == kXMP_EncodeUTF8) return 1;
  return encoding == kXMP_EncodeUTF16Big || encoding == kXMP_EncodeUTF16Little ? 2 : 4;
}

// Removes a number from the start of a text and returns it; nothing if there is none.
std::optional<std::int64_t> TakeNumber(std::string_view& text) {
  std::int64_t number = 0;
  const auto [rest, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc()) return std::nullopt;
  text.remove_prefix(static_cast<std::size_t>(rest - text.data()));
  return number;
}

// The toolkit's message begins with the place in the packet, LINE:COLUMN, if it knows one.
Error PacketError(const std::string& file, const XMP_Error& error) {
  const std::string message = error.GetErrMsg();
  std::string_view rest = message;
  const std::optional<std::int64_t> line = TakeNumber(rest);
  if (!line || !rest.starts_with(':')) return {file, message};
  rest.remove_prefix(1);
  const std::optional<std::int64_t> column = TakeNumber(rest);
  if (!column || !rest.starts_with(": ")) return {file, message};
  return {file, zelcore::xml::Position{*line, *column}, std::string(rest.substr(2))};
}

}  // namespace

Sidecar::Sidecar(const std::filesystem::path& file, WhenAbsent whenAbsent)
    : Sidecar(file.string(), ReadFile(file), whenAbsent == WhenAbsent::kCreate) {
  mIsFile = true;
  if (!mBytes && whenAbsent == WhenAbsent::kRefuse) throw Error(mFile, "No such file or directory");
}

Sidecar Sidecar::FromBytes(std::string bytes, const std::string& name) {
  return Sidecar(name, std::move(bytes), false);
}

Sidecar::Sidecar(std::string name, std::optional<std::string> bytes, bool isCreated)
    : mFile(std::move(name)), mIsCreated(isCreated), mBytes(std::move(bytes)) {
  if (!mBytes) return;
  if (mBytes->size() > std::numeric_limits<XMP_StringLen>::max()) {
    throw Error(mFile, "is too large");
  }
  try {
    const auto size = static_cast<XMP_StringLen>(mBytes->size());
    mMetadata.ParseFromBuffer(mBytes->data(), size);
    mPacket = TXMPUtils::LocatePacket(mBytes->data(), size);
  } catch (const XMP_Error& error) {
    throw PacketError(mFile, error);
  }
  mBefore = mMetadata;
}

bool Sidecar::IsChanged() const {
  if (!mBytes) return mIsCreated;
  return !xmptoolkit::AreEqual(mBefore, mMetadata, xmptoolkit::Equality::kMetadata);
}

void Sidecar::RefuseReadOnly() const {
  if (mIsFile && IsWriteProtected(mFile)) {
    throw Error(mFile, "the file has no write permission", ErrorKind::kWriteProtected);
  }
  if (mPacket.mIsReadOnly) {
    throw Error(mFile, "the packet is marked read-only", ErrorKind::kReadOnlyPacket);
  }
}

std::string Sidecar::NewPacket() const {
  try {
    return Serialized();
  } catch (const XMP_Error& error) {
    throw Error(mFile, error.GetErrMsg());
  }
}

std::string Sidecar::Serialized() const {
  std::string packet;
  if (!mBytes) {
    mMetadata.SerializeToBuffer(&packet);
    return packet;
  }
  if (!mPacket.mHasWrapper) {
    mMetadata.SerializeToBuffer(&packet, mPacket.mEncoding | kXMP_OmitPacketWrapper);
    // Without its last line end: the white space after the old packet stays.
    packet.erase(packet.size() - CharacterSize(mPacket.mEncoding));
    return packet;
  }
  if (mPacket.mIsReadOnly) {
    mMetadata.SerializeToBuffer(&packet, mPacket.mEncoding | kXMP_ReadOnlyPacket);
    return packet;
  }
  try {
    mMetadata.SerializeToBuffer(&packet, mPacket.mEncoding | kXMP_ExactPacketLength,
                                static_cast<XMP_StringLen>(mPacket.mLength));
  } catch (const XMP_Error& error) {
    if (error.GetID() != kXMPErr_NoRoom) throw;
    mMetadata.SerializeToBuffer(&packet, mPacket.mEncoding);
  }
  return packet;
}

std::string Sidecar::NewBytes() const {
  if (!IsChanged()) return mBytes.value_or("");
  std::string bytes;
  if (mBytes) bytes = mBytes->substr(0, mPacket.mOffset);
  CorrectDeclaration(bytes);
  bytes += NewPacket();
  if (mBytes) bytes += std::string_view(*mBytes).substr(mPacket.mOffset + mPacket.mLength);
  RefuseUnlessReadable(bytes);
  return bytes;
}

void Sidecar::RefuseUnlessReadable(const std::string& bytes) const {
  std::string reason = "it would be read as something else";
  try {
    const TXMPMeta<std::string> again(bytes.data(), static_cast<XMP_StringLen>(bytes.size()));
    if (xmptoolkit::AreEqual(again, mMetadata, xmptoolkit::Equality::kMetadata)) return;
  } catch (const XMP_Error& error) {
    reason = error.GetErrMsg();
  }
  throw Error(mFile, "the new packet could not be read again: " + reason);
}

void Sidecar::Save() const {
  if (IsChanged()) ReplaceFile(mFile, NewBytes());
}

}  // namespace zelstoryhost
