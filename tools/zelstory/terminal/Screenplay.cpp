#include "terminal/Screenplay.h"

#include <array>
#include <ostream>
#include <string>
#include <utility>

#include <zelstoryhost/Text.h>

#include "terminal/Console.h"
#include "terminal/TextLayout.h"

namespace zelstory {

using zelstoryhost::TextOf;
using zelstoryhost::ToUTF8;

namespace {

using namespace zelstoryparser;

enum class Alignment { kLeft, kRight };

// The place of a kind of paragraph on the page, in columns from 0.
struct Layout {
  std::int32_t mKind;
  std::size_t mIndent;
  std::size_t mWidth;
  bool mCapitals;
  bool mBlankLineBefore;
  Alignment mAlignment;
};

// The page: scene numbers in both margins, the text between them.
constexpr std::size_t kLeftMargin = 6;
constexpr std::size_t kTextWidth = 61;

constexpr Layout kAnyOther{kUnknownElement, 0, kTextWidth, false, true, Alignment::kLeft};

constexpr std::array<Layout, 6> kLayouts{{
    {kSceneHeading, 0, kTextWidth, true, true, Alignment::kLeft},
    {kCharacter, 22, 38, false, true, Alignment::kLeft},
    {kDialog, 10, 36, false, false, Alignment::kLeft},
    {kShot, 0, kTextWidth, true, true, Alignment::kLeft},
    {kParenthetical, 16, 25, false, false, Alignment::kLeft},
    {kTransition, 0, kTextWidth, true, true, Alignment::kRight},
}};

const Layout& LayoutOf(std::int32_t kind) {
  for (const Layout& layout : kLayouts) {
    if (layout.mKind == kind) return layout;
  }
  return kAnyOther;
}

std::string Spaces(std::size_t count) {
  return std::string(count, ' ');
}

// The scene's number goes on both sides of its heading's first line.
std::string NumberedLine(const std::string& number, const std::string& line) {
  const std::size_t used = ColumnsOf(number);
  const std::string left = number + Spaces(used < kLeftMargin ? kLeftMargin - used : 1);
  const std::size_t length = ColumnsOf(line);
  return left + line + Spaces(length < kTextWidth ? kTextWidth - length : 0) + "  " + number;
}

void PrintParagraph(const Paragraph& paragraph, const std::string& number, std::ostream& output) {
  const Layout& layout = LayoutOf(paragraph.mElementType);
  const std::string text = TextOf(paragraph);
  if (layout.mBlankLineBefore) output << '\n';
  bool isFirst = true;
  for (const std::string& line :
       WrapText(layout.mCapitals ? InCapitals(text) : text, layout.mWidth)) {
    if (line.empty()) {
      output << '\n';
    } else if (isFirst && !number.empty()) {
      output << NumberedLine(number, line) << '\n';
    } else {
      const std::size_t length = ColumnsOf(line);
      const bool pushed = layout.mAlignment == Alignment::kRight && length < layout.mWidth;
      const std::size_t indent = pushed ? layout.mWidth - length : layout.mIndent;
      output << Spaces(kLeftMargin + indent) << line << '\n';
    }
    isFirst = false;
  }
}

std::string NumberOf(const Scene& scene) {
  return WrapText(ToUTF8(scene.mSceneNumber), kTextWidth).front();
}

void PrintSection(const boost::intrusive_ptr<Section>& section, bool numbered,
                  std::ostream& output) {
  if (!section) return;
  for (const boost::intrusive_ptr<Scene>& scene : section->mScenes) {
    if (!scene) continue;
    if (numbered) {
      PrintScene(*scene, output);
      continue;
    }
    for (const boost::intrusive_ptr<Paragraph>& paragraph : scene->mParagraphs) {
      if (paragraph) PrintParagraph(*paragraph, "", output);
    }
  }
}

void PrintStream(const boost::intrusive_ptr<Stream>& stream, bool numbered, std::ostream& output) {
  if (stream) PrintSection(stream->mSection, numbered, output);
}

void PrintComments(const CommentStream& comments, std::ostream& output) {
  const std::string author = ToUTF8(comments.mCommentAuthor);
  const std::string name = ToUTF8(comments.mName);
  output << "\nCOMMENTS";
  if (!author.empty()) output << " BY " << WrapText(InCapitals(author), kTextWidth).front();
  if (!name.empty()) output << " (" << WrapText(name, kTextWidth).front() << ')';
  output << '\n';
  PrintSection(comments.mSection, false, output);
}

}  // namespace

void PrintScene(const Scene& scene, std::ostream& output) {
  std::string number = NumberOf(scene);
  for (const boost::intrusive_ptr<Paragraph>& paragraph : scene.mParagraphs) {
    if (!paragraph) continue;
    const bool isHeading = paragraph->mElementType == kSceneHeading;
    PrintParagraph(*paragraph, isHeading ? std::exchange(number, "") : "", output);
  }
}

void PrintScreenplay(const TavroStory& story, bool withComments, std::ostream& output) {
  if (!story.mDocument) return;
  const Document& document = *story.mDocument;
  PrintStream(document.mHeaderStream, false, output);
  PrintStream(document.mBodyStream, true, output);
  PrintStream(document.mFooterStream, false, output);
  if (!withComments) return;
  for (const boost::intrusive_ptr<CommentStream>& comments : document.mCommentStreams) {
    if (comments) PrintComments(*comments, output);
  }
}

}  // namespace zelstory
