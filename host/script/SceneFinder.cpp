#include <charconv>
#include <limits>
#include <optional>
#include <utility>

#include <zelstoryhost/Error.h>
#include <zelstoryhost/SceneFacts.h>
#include <zelstoryhost/SceneFinder.h>
#include <zelstoryhost/Story.h>
#include <zelstoryhost/Text.h>

#include "Enumerate.h"
#include "Quoted.h"

namespace zelstoryhost {
namespace {

using zelstoryparser::Scene;

// A text of decimal digits only; the largest number beyond 64 bits.
std::optional<std::size_t> ReadCount(const std::string& text) {
  std::size_t count = 0;
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, count);
  if (error == std::errc::invalid_argument || rest != end) return std::nullopt;
  return error == std::errc() ? count : std::numeric_limits<std::size_t>::max();
}

}  // namespace

SceneFinder::SceneFinder(const zelstoryparser::TavroStory& story, std::string file)
    : mScenes(BodyScenes(story)), mFile(std::move(file)) {
  for (std::size_t position = 1; position <= mScenes.size(); ++position) {
    const Scene& scene = *mScenes[position - 1];
    mIDs[ToUTF8(scene.mObjectID.AsString())].push_back(position);
    const std::string number = ToUTF8(scene.mSceneNumber);
    if (IsNumber(number)) mNumbers[number].push_back(position);
  }
}

SelectedScene SceneFinder::Find(SceneKey key, const std::string& text) const {
  switch (key) {
    case SceneKey::kNumber:
      return HasNumbers() ? FindNumber(text) : FindPosition(text);
    case SceneKey::kPosition:
      return FindPosition(text);
    case SceneKey::kID:
      return FindOnly(mIDs, "identifier", text);
  }
  return {};
}

SelectedScene SceneFinder::FindPosition(const std::string& text) const {
  const std::optional<std::size_t> position = ReadCount(text);
  if (!position) {
    throw Error(mFile, '"' + text + "\" is not a position; positions are whole numbers from 1");
  }
  if (*position == 0 || *position > mScenes.size()) {
    throw Error(mFile, "there is no scene at position " + text + "; the body has " +
                           std::to_string(mScenes.size()) +
                           (mScenes.size() == 1 ? " scene" : " scenes"));
  }
  return At(*position);
}

SelectedScene SceneFinder::FindNumber(const std::string& text) const {
  const std::size_t position = ReadCount(text).value_or(0);
  const bool isPosition = position >= 1 && position <= mScenes.size();
  if (mNumbers.contains(text) || !isPosition) return FindOnly(mNumbers, "number", text);
  const std::string number = ToUTF8(mScenes[position - 1]->mSceneNumber);
  throw Error(mFile, "no scene has the number \"" + text + "\"; the scene at position " + text +
                         (IsNumber(number) ? " has the number " + Quoted(number) +
                                                 ": use that number, or the position"
                                           : " has no number: use the position"));
}

SelectedScene SceneFinder::FindOnly(const Positions& known, const char* what,
                                    const std::string& text) const {
  const auto found = known.find(text);
  const std::string property = std::string(what) + " \"" + text + '"';
  if (found == known.end()) {
    throw Error(mFile, "no scene has the " + property, ErrorKind::kUnknownScene);
  }
  const std::vector<std::size_t>& positions = found->second;
  if (positions.size() > 1) {
    throw Error(mFile, std::to_string(positions.size()) + " scenes have the " + property +
                           ", at the positions " + Enumerate(positions) +
                           ": choose one by its position");
  }
  return At(positions.front());
}

}  // namespace zelstoryhost
