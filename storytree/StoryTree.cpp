#include <zelstoryparser/StoryTree.h>

// Construction, shallow copying and destruction are those of the members. They are compiled here so
// that the virtual table of each class is in the library.
namespace zelstoryparser {

TavroStory::TavroStory() = default;
TavroStory::TavroStory(const TavroStory& other) = default;
TavroStory::~TavroStory() = default;

Document::Document() = default;
Document::Document(const Document& other) = default;
Document::~Document() = default;

Stream::Stream() = default;
Stream::Stream(const Stream& other) = default;
Stream::~Stream() = default;

CommentStream::CommentStream() = default;
CommentStream::CommentStream(const CommentStream& other) = default;
CommentStream::~CommentStream() = default;

Section::Section() = default;
Section::Section(const Section& other) = default;
Section::~Section() = default;

Scene::Scene() = default;
Scene::Scene(const Scene& other) = default;
Scene::~Scene() = default;

Paragraph::Paragraph() = default;
Paragraph::Paragraph(const Paragraph& other) = default;
Paragraph::~Paragraph() = default;

TextRun::TextRun() = default;
TextRun::TextRun(const TextRun& other) = default;
TextRun::~TextRun() = default;

}  // namespace zelstoryparser
