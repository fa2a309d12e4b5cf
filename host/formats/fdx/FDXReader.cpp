#include <algorithm>
#include <utility>

#include <zelcore/String.h>
#include <zelcore/xml/Reader.h>
#include <zelstoryhost/FDX.h>

#include "formats/StoryBuilder.h"
#include "formats/fdx/FDXParser.h"
#include "formats/fdx/FDXTitlePage.h"

namespace zelstoryhost {
namespace {

using zelcore::utility::UTF8to16;

// Where each scene begins in the text: a paragraph has its UTF-16 code units, and one for its end.
std::vector<std::size_t> SceneStarts(const FDXScript& script) {
  std::vector<std::size_t> starts;
  std::size_t length = 0;
  for (const FDXScene& scene : script.mScenes) {
    starts.push_back(length);
    for (const FDXParagraph& paragraph : scene.mParagraphs) {
      length += UTF8to16(paragraph.mText).size() + 1;
    }
  }
  return starts;
}

// Moves the notes of the document to the scenes in which they begin.
void PlaceNotes(FDXScript& script, FindingList& findings) {
  if (script.mNotes.empty()) return;
  if (script.mScenes.empty()) script.mScenes.push_back({""});
  const std::vector<std::size_t> starts = SceneStarts(script);
  for (FDXNote& note : script.mNotes) {
    if (!note.mStart) {
      findings.Add(Severity::kNote, "notes without a place in the text are kept in the first scene",
                   std::nullopt);
    }
    const auto after = std::upper_bound(starts.begin(), starts.end(), note.mStart.value_or(0));
    const std::size_t scene = static_cast<std::size_t>(after - starts.begin()) - 1;
    script.mScenes[scene].mComments.push_back(std::move(note.mComment));
  }
}

StoryResult Build(const FDXScript& script, std::vector<Finding> findings) {
  StoryBuilder builder;
  for (const FDXScene& scene : script.mScenes) {
    builder.BeginScene(scene.mNumber);
    for (const FDXParagraph& paragraph : scene.mParagraphs) {
      if (!paragraph.mIsMark) builder.Add(paragraph.mKind, paragraph.mText, paragraph.mPosition);
    }
    for (const FDXComment& comment : scene.mComments) {
      builder.AddComment(comment.mStream, comment.mAuthor, comment.mText);
    }
  }
  builder.Story().mMetaData = UTF8to16(MetadataOf(script.mTitlePage));
  for (const std::string& tag : script.mTags) builder.Story().mTags.push_back(UTF8to16(tag));
  return builder.Finish(std::move(findings));
}

}  // namespace

StoryResult ReadFDX(std::string_view bytes, const std::string& source) {
  zelcore::xml::Reader reader;
  FDXParser parser(reader, source);
  try {
    if (!reader.ParseBuffer(bytes, source, parser)) {
      return {nullptr, Error(source, reader.Error().mPosition, reader.Error().mReason)};
    }
  } catch (const Error& error) {
    return {nullptr, error};
  }
  FindingList findings = parser.TakeFindings();
  FDXScript script = parser.TakeScript();
  PlaceNotes(script, findings);
  return Build(script, findings.Take());
}

}  // namespace zelstoryhost
