#include "Sidecar.h"

#include <iostream>
#include <limits>
#include <utility>

#include <xmptoolkit/XMPTree.h>

#include "Console.h"
#include "FileReplacement.h"
#include "ToolError.h"

namespace zelstory {
namespace {

std::optional<std::string> ReadBytes(const std::string& file) {
  if (file != kStandardStream) return ReadWholeFile(file);
  return ReadWholeStream(std::cin, file);
}

}  // namespace

Sidecar::Sidecar(std::string file, WhenAbsent whenAbsent)
    : mFile(std::move(file)), mBytes(ReadBytes(mFile)) {
  if (!mBytes) {
    if (whenAbsent == WhenAbsent::kRefuse) throw ToolError(mFile, "No such file or directory");
    return;
  }
  if (mBytes->size() > std::numeric_limits<XMP_StringLen>::max()) {
    throw ToolError(mFile, "is too large");
  }
  try {
    const auto size = static_cast<XMP_StringLen>(mBytes->size());
    mMetadata.ParseFromBuffer(mBytes->data(), size);
    mPacket = TXMPUtils::LocatePacket(mBytes->data(), size);
  } catch (const XMP_Error& error) {
    throw ToolError(mFile, error.GetErrMsg());
  }
  mBefore = mMetadata;
}

bool Sidecar::IsChanged() const {
  return !mBytes || !xmptoolkit::AreEqual(mBefore, mMetadata, xmptoolkit::Equality::kMetadata);
}

void Sidecar::RefuseReadOnly() const {
  if (!mPacket.mIsReadOnly) return;
  throw ToolError(mFile, "the packet is marked read-only; --force changes it all the same");
}

std::string Sidecar::NewPacket() const {
  std::string packet;
  if (!mBytes) {
    mMetadata.SerializeToBuffer(&packet);
    return packet;
  }
  if (!mPacket.mHasWrapper) {
    mMetadata.SerializeToBuffer(&packet, mPacket.mEncoding | kXMP_OmitPacketWrapper);
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
  if (!mBytes) return NewPacket();
  return mBytes->substr(0, mPacket.mOffset) + NewPacket() +
         mBytes->substr(mPacket.mOffset + mPacket.mLength);
}

void Sidecar::Save() const {
  const bool changed = IsChanged();
  if (mFile == kStandardStream) {
    std::cout << (changed ? NewBytes() : *mBytes);
  } else if (changed) {
    ReplaceFile(mFile, NewBytes());
  }
}

}  // namespace zelstory
