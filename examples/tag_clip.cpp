#include <iostream>

#include <zelstoryhost/zelstoryhost.h>

// Writes a scene into the sidecar of a clip: tag_clip SCRIPT SCENE CLIP
int main(int argc, char** argv) try {
  if (argc != 4) return 2;
  const auto script = zelstoryhost::ReadScript(argv[1]);  // Fountain, FDX, or a story
  if (!script) throw zelstoryhost::Error(*script.mFault);
  const zelstoryhost::SceneFinder finder(*script.mStory, argv[1]);
  const auto scene = finder.Find(zelstoryhost::SceneKey::kNumber, argv[2]).mScene;

  const auto change = zelstoryhost::WriteSceneToClip(argv[3], scene, zelstoryhost::OldScene::kClear,
                                                     zelstoryhost::EditSettings());
  for (const std::string& path : change.PathTexts()) std::cout << path << '\n';
  if (!change.mIsChanged) std::cout << "unchanged\n";
} catch (const zelstoryhost::Error& error) {
  std::cerr << error.what() << '\n';  // FILE:LINE:COLUMN: error: REASON
  return 1;
}
