#include "Sidecar.h"

#include <iostream>
#include <iterator>
#include <limits>
#include <utility>

#include "Console.h"
#include "FileReplacement.h"
#include "ToolError.h"

namespace zelstory {
namespace {

std::optional<std::string> ReadBytes(const std::string& file) {
  if (file != kStandardStream) return ReadWholeFile(file);
  return std::string(std::istreambuf_iterator<char>(std::cin), {});
}

std::string MetadataAlone(const TXMPMeta<std::string>& metadata) {
  std::string text;
  metadata.SerializeToBuffer(&text, kXMP_OmitPacketWrapper);
  return text;
}

}  // namespace

Sidecar::Sidecar(std::string file, WhenAbsent whenAbsent)
    : mFile(std::move(file)), mBytes(ReadBytes(mFile)) {
  if (!mBytes && whenAbsent == WhenAbsent::kRefuse) {
    throw ToolError(mFile, "No such file or directory");
  }
  if (mBytes) {
    if (mBytes->size() > std::numeric_limits<XMP_StringLen>::max()) {
      throw ToolError(mFile, "is too large");
    }
    try {
      mMetadata.ParseFromBuffer(mBytes->data(), static_cast<XMP_StringLen>(mBytes->size()));
    } catch (const XMP_Error& error) {
      throw ToolError(mFile, error.GetErrMsg());
    }
  }
  mBefore = MetadataAlone(mMetadata);
}

bool Sidecar::Save() {
  const bool changed = !mBytes || MetadataAlone(mMetadata) != mBefore;
  std::string packet;
  mMetadata.SerializeToBuffer(&packet);
  if (mFile == kStandardStream) {
    std::cout << packet;
  } else if (changed) {
    ReplaceFile(mFile, packet);
  }
  return changed;
}

}  // namespace zelstory
