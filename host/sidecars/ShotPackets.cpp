#include <cstdint>
#include <cstdio>
#include <optional>
#include <set>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include <xmptoolkit/XMPTree.h>
#include <zelmetadata/Path.h>
#include <zelstoryhost/Error.h>
#include <zelstoryhost/Files.h>
#include <zelstoryhost/ShotPackets.h>
#include <zelstoryhost/Story.h>
#include <zelstoryhost/Text.h>
#include <zelstoryparser/SceneXMP.h>

namespace zelstoryhost {
namespace {

namespace fs = std::filesystem;

using zelstoryparser::Scene;
using zelstoryparser::ShotXMP;
using zelstoryparser::TavroStory;

// File names come from the position, never from a document's text.
std::string PacketName(std::size_t position) {
  char name[40];
  std::snprintf(name, sizeof name, "scene_%04zu.xmp", position);
  return name;
}

// Returns whether the folder was created.
bool MakeFolder(const fs::path& folder) {
  std::error_code error;
  const bool isNew = fs::create_directories(folder, error);
  if (error || !fs::is_directory(folder)) {
    throw Error(folder.string(), "is not a folder and cannot be created" +
                                     (error ? ": " + error.message() : std::string()));
  }
  return isNew;
}

// Whether a file is a packet that holds a shot's properties and no others, as is written here.
bool IsShotPacket(const std::string& bytes) {
  constexpr const char* kScript = zelmetadata::kScriptSchemaURI;
  constexpr const char* kMedia = zelmetadata::kDynamicMediaSchemaURI;
  static const std::set<std::pair<std::string_view, std::string_view>> kProperties{
      {kScript, "sceneSetting"}, {kMedia, "shotLocation"}, {kScript, "sceneTimeOfDay"},
      {kScript, "action"},       {kMedia, "shotName"},     {kScript, "dialogSequence"},
      {kMedia, "scene"},         {kMedia, "duration"}};
  try {
    const TXMPMeta<std::string> packet(bytes.data(), static_cast<XMP_StringLen>(bytes.size()));
    const xmptoolkit::TreeNode root = xmptoolkit::RootOf(packet);
    for (std::size_t i = 0; i < root.ChildCount(); ++i) {
      const xmptoolkit::TreeNode property = root.Child(i);
      if (!kProperties.contains({property.NamespaceURI(), property.LocalName()})) return false;
    }
    return packet.DoesPropertyExist(kMedia, "scene");
  } catch (const XMP_Error&) {
    return false;
  }
}

class ShotWriter {
 public:
  // A link in the folder is never followed, so that no file elsewhere is replaced.
  ShotWriter(const boost::intrusive_ptr<TavroStory>& story, const fs::path& folder,
             const ShotSettings& settings)
      : mStory(story),
        mFirst(folder / PacketName(1), FileEntry::Links::kReplace),
        mScenes(BodyScenes(*story)),
        mSettings(settings) {}

  // Checks every file that would be replaced before any is replaced.
  void RefuseForeignFiles() const {
    for (std::size_t position = 1; position <= mScenes.size(); ++position) {
      if (!ShotAt(position)) continue;
      const FileEntry file = FileAt(position);
      if (file.IsLink()) throw Error(file.Name(), "is a link", ErrorKind::kForeignFile);
      const std::optional<std::string> bytes = file.Read();
      if (!bytes || IsShotPacket(*bytes)) continue;
      throw Error(file.Name(), "is not a shot's packet", ErrorKind::kForeignFile);
    }
  }

  void Write() const {
    for (std::size_t position = 1; position <= mScenes.size(); ++position) {
      const std::optional<ShotXMP> shot = ShotAt(position);
      if (!shot) continue;
      const FileEntry file = FileAt(position);
      if (mSettings.mIsStory && mSettings.mIsStory(file.Name())) {
        throw Error(file.Name(), "is the story itself: name another folder");
      }
      file.Replace(shot->mXMPPacket, mSettings.mForce ? HardLinks::kPart : HardLinks::kRefuse);
      if (mSettings.mReport) mSettings.mReport({position, ToUTF8(shot->mShotID), file.Name()});
    }
  }

 private:
  FileEntry FileAt(std::size_t position) const { return mFirst.Sibling(PacketName(position)); }

  // The shot of the scene at a position; nothing if it makes none.
  std::optional<ShotXMP> ShotAt(std::size_t position) const {
    std::vector<ShotXMP> shots;
    zelstoryparser::GetSceneXMP(mStory, mScenes[position - 1], static_cast<std::int32_t>(position),
                                mSettings.mHeadings, shots);
    if (shots.empty()) return std::nullopt;
    return std::move(shots.front());
  }

  const boost::intrusive_ptr<TavroStory>& mStory;
  const FileEntry mFirst;
  const std::vector<boost::intrusive_ptr<Scene>> mScenes;
  const ShotSettings& mSettings;
};

}  // namespace

void WriteShotPackets(const boost::intrusive_ptr<TavroStory>& story, const fs::path& folder,
                      const ShotSettings& settings) {
  const bool isNew = MakeFolder(folder);
  try {
    const ShotWriter writer(story, folder, settings);
    if (!settings.mForce) writer.RefuseForeignFiles();
    writer.Write();
  } catch (...) {
    std::error_code isFilled;  // a folder with files in it stays
    if (isNew) fs::remove(folder, isFilled);
    throw;
  }
}

}  // namespace zelstoryhost
