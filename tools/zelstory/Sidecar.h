#pragma once

#include <optional>
#include <string>

#include <xmptoolkit/XMP.h>

#include "SidecarName.h"

namespace zelstory {

// The XMP of one sidecar file. "-" reads standard input and writes standard output.
class Sidecar {
 public:
  // Reads a sidecar; an absent one is empty metadata, or a refusal. Throws ToolError for what
  // cannot be read and for what is not XMP.
  Sidecar(std::string file, WhenAbsent whenAbsent);

  const std::string& File() const { return mFile; }
  TXMPMeta<std::string>& Metadata() { return mMetadata; }
  const TXMPMeta<std::string>& MetadataBefore() const { return mBefore; }  // as it was read

  // Whether the metadata differs from what was read; a sidecar to be created always does.
  bool IsChanged() const;

  // Throws ToolError when the file has no write permission, or the packet is marked read-only.
  void RefuseReadOnly() const;

  // Writes the file, whole or not at all, if the metadata has changed; standard output always. What
  // surrounds the packet stays, and so do its encoding and its wrapper. The file keeps its length
  // where the packet's padding allows; otherwise the padding is renewed. Throws ToolError, also for
  // metadata that could not be read again, such as a URI beyond the limit of a tag.
  void Save() const;

 private:
  std::string NewBytes() const;
  std::string NewPacket() const;  // throws ToolError
  std::string Serialized() const;
  void RefuseUnlessReadable(const std::string& bytes) const;

  std::string mFile;
  bool mIsCreated;                    // when absent
  std::optional<std::string> mBytes;  // of the file as it was; none when it was absent
  XMP_PacketInfo mPacket;             // where the packet lies in them
  TXMPMeta<std::string> mMetadata;
  TXMPMeta<std::string> mBefore;
};

}  // namespace zelstory
