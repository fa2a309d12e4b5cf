#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include <zelcore/xml/Position.h>
#include <zelstoryparser/StoryTree.h>

// What an FDX document says, as it stands there. All texts are UTF-8.
namespace zelstoryhost {

struct FDXParagraph {
  zelstoryparser::ParagraphElementType mKind;
  std::string mText{};
  bool mIsMark = false;  // it has no text of its own, and only wraps others or begins a scene
  zelcore::xml::Position mPosition{};
};

struct FDXComment {
  std::string mStream, mAuthor, mText;
};

struct FDXScene {
  std::string mNumber;
  std::vector<FDXParagraph> mParagraphs{};
  std::vector<FDXComment> mComments{};
};

// A note of the whole document, and where it begins in the script's text.
struct FDXNote {
  FDXComment mComment;
  std::optional<std::size_t> mStart;
};

// A line of the title page, perhaps with the key of its line in the metadata.
struct TitleLine {
  std::optional<std::string> mKey;
  std::string mText;
};

struct FDXScript {
  std::vector<FDXScene> mScenes;
  std::vector<FDXNote> mNotes;
  std::vector<TitleLine> mTitlePage;
  std::vector<std::string> mTags;
};

}  // namespace zelstoryhost
