#pragma once

#include <optional>
#include <string>
#include <vector>

#include <xmptoolkit/XMP.h>
#include <zelmetadata/Path.h>

namespace zelstory {

// The XMP of one sidecar file. "-" reads standard input and writes standard output.
class Sidecar {
 public:
  enum class WhenAbsent { kRefuse, kCreate };

  // Reads a sidecar; an absent one is empty metadata, or a refusal. Throws ToolError for what
  // cannot be read and for what is no XMP.
  Sidecar(std::string file, WhenAbsent whenAbsent);

  TXMPMeta<std::string>& Metadata() { return mMetadata; }

  // Writes the metadata back if it has changed, whole or not at all, and returns whether it had.
  // What surrounds the packet in the file stays. Standard output is always written. Throws
  // ToolError.
  bool Save();

 private:
  std::string Serialise() const;

  std::string mFile;
  std::optional<std::string> mBytes;  // of the file as it was; none when it was absent
  TXMPMeta<std::string> mMetadata;
  std::string mBefore;  // the metadata as it was read
};

}  // namespace zelstory
