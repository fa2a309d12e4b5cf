#include <charconv>
#include <cstdint>
#include <limits>
#include <string_view>
#include <utility>

#include <xmptoolkit/XMPTree.h>
#include <zelstoryhost/Error.h>
#include <zelstoryhost/Files.h>
#include <zelstoryhost/Sidecar.h>

namespace zelstoryhost {
namespace {

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
    : Sidecar(FileEntry(file), whenAbsent) {}

Sidecar::Sidecar(const FileEntry& file, WhenAbsent whenAbsent)
    : Sidecar(file.Name(), file.Read(), whenAbsent == WhenAbsent::kCreate) {
  mEntry = file;
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
    mIsReadOnlyPacket = TXMPUtils::LocatePacket(mBytes->data(), size).mIsReadOnly;
  } catch (const XMP_Error& error) {
    throw PacketError(mFile, error);
  }
  mBefore = mMetadata;
}

bool Sidecar::IsChanged() const {
  if (!mBytes) return mIsCreated;
  return !xmptoolkit::AreEqual(mBefore, mMetadata, xmptoolkit::Equality::kMetadata);
}

void Sidecar::RefuseProtected() const {
  if (mEntry && mEntry->IsWriteProtected()) {
    throw Error(mFile, "the file has no write permission", ErrorKind::kWriteProtected);
  }
  if (mEntry) mEntry->RefuseOtherNames();
  if (mIsReadOnlyPacket) {
    throw Error(mFile, "the packet is marked read-only", ErrorKind::kReadOnlyPacket);
  }
}

std::string Sidecar::NewBytes() const {
  return Patch().mNewFile;
}

xmptoolkit::PacketPatch Sidecar::Patch() const {
  xmptoolkit::PacketPatch patch;
  if (!IsChanged()) {
    patch.mNewFile = mBytes.value_or("");
    return patch;
  }
  try {
    if (mBytes) {
      return xmptoolkit::PatchPacket(mBytes->data(), static_cast<XMP_StringLen>(mBytes->size()),
                                     mBefore, mMetadata);
    }
    mMetadata.SerializeToBuffer(&patch.mNewFile);
  } catch (const XMP_Error& error) {
    throw Error(mFile, error.GetErrMsg());
  }
  RefuseUnlessReadable(patch.mNewFile);
  patch.mChanges.push_back({0, 0, patch.mNewFile});
  return patch;
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

void Sidecar::Save(HardLinks hardLinks) const {
  if (mEntry && IsChanged()) mEntry->Replace(NewBytes(), hardLinks);
}

}  // namespace zelstoryhost
