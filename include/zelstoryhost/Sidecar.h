#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include <xmptoolkit/PacketPatch.h>
#include <xmptoolkit/XMP.h>
#include <zelstoryhost/Export.h>
#include <zelstoryhost/Files.h>
#include <zelstoryhost/SidecarName.h>

namespace zelstoryhost {

// The XMP of one sidecar, or of any file whose bytes hold a packet: read, changed in memory, and
// written back. Belongs to one thread at a time. All texts are UTF-8.
class ZELSTORYHOST_API Sidecar {
 public:
  // Reads a sidecar file. An absent one is empty metadata, or refused with kRefuse. Throws Error,
  // with line and column, for what cannot be read and for what is not XMP.
  Sidecar(const std::filesystem::path& file, WhenAbsent whenAbsent);
  Sidecar(const FileEntry& file, WhenAbsent whenAbsent);

  // Takes the bytes of a sidecar from elsewhere; `name` stands for it in errors. Throws Error as
  // above. Save does nothing then.
  static Sidecar FromBytes(std::string bytes, const std::string& name);

  const std::string& File() const { return mFile; }
  TXMPMeta<std::string>& Metadata() { return mMetadata; }
  const TXMPMeta<std::string>& Metadata() const { return mMetadata; }
  const TXMPMeta<std::string>& MetadataBefore() const { return mBefore; }  // as it was read

  const std::optional<std::string>& BytesBefore() const { return mBytes; }  // none: absent

  // Whether the metadata differs from what was read; a sidecar to be created always does.
  bool IsChanged() const;

  // Throws Error when the file has no write permission or has other names (hard links), and when
  // the packet is marked read-only.
  void RefuseProtected() const;

  // What the file would hold after Save: the bytes as they were read where nothing has changed,
  // else with the changes made in place, as xmptoolkit::PatchPacket makes them. Throws Error for
  // metadata that could not be read again, such as a URI beyond the limit of a tag.
  std::string NewBytes() const;

  // The same bytes, and which parts of the old ones they replace.
  xmptoolkit::PacketPatch Patch() const;

  // Writes these bytes to the file, whole or not at all, if the metadata has changed. Throws Error;
  // the file is then as it was.
  void Save(HardLinks hardLinks = HardLinks::kRefuse) const;

 private:
  Sidecar(std::string name, std::optional<std::string> bytes, bool isCreated);

  void RefuseUnlessReadable(const std::string& bytes) const;

  std::string mFile;
  std::optional<FileEntry> mEntry;    // none for bytes from elsewhere
  bool mIsCreated;                    // when absent
  std::optional<std::string> mBytes;  // of the file as it was; none when it was absent
  bool mIsReadOnlyPacket = false;
  TXMPMeta<std::string> mMetadata;
  TXMPMeta<std::string> mBefore;
};

}  // namespace zelstoryhost
