#include "formats/fdx/FDXParser.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include <zelstoryhost/Error.h>
#include <zelstoryhost/Text.h>

#include "formats/StoryBuilder.h"

namespace zelstoryhost {

using zelcore::UTF16String;
using namespace zelstoryparser;

namespace {

constexpr int kNewestVersion = 6;
constexpr std::string_view kOmitted = "OMITTED";

std::optional<std::string> FindValue(const FDXParser::Attributes& attributes,
                                     std::string_view name) {
  const auto found = attributes.find(UTF16String(name.begin(), name.end()));
  if (found == attributes.end()) return std::nullopt;
  return ToUTF8(found->second);
}

std::string ValueOf(const FDXParser::Attributes& attributes, std::string_view name) {
  return FindValue(attributes, name).value_or("");
}

template <typename Number>
std::optional<Number> NumberAtStart(std::string_view text) {
  Number number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() ? std::optional(number) : std::nullopt;
}

// A name for a message of one line.
std::string Quoted(std::string_view name) {
  std::string quoted = "'";
  for (const char c : name) quoted += static_cast<unsigned char>(c) < ' ' ? ' ' : c;
  return quoted + "'";
}

bool IsLineBreak(std::string_view name) {
  return name == "br" || name == "BR" || name == "Br" || name == "LineBreak";
}

// The stream of a note of this type. Only this library writes those of the other streams.
std::string_view StreamOf(const std::string& type) {
  return type == kSections ? kSections : type == kBoneyard ? kBoneyard : kNotes;
}

}  // namespace

void FDXParser::StartElement(const UTF16String& name, const Attributes& attributes) {
  if (mElements.empty()) {
    mElements.push_back({ToUTF8(name), FDXArea::kDocument});
    BeginDocument(mElements[0].mName, attributes);
    return;
  }
  Element element = ElementIn(mElements.back(), ToUTF8(name));
  Begin(element, attributes);
  mElements.push_back(std::move(element));
}

// Places an element by its name. Within a text all elements are part of it.
FDXParser::Element FDXParser::ElementIn(const Element& around, std::string name) {
  Element element{std::move(name), around.mArea, around.mIsText, around.mIsInParagraph};
  element.mUnknown = around.mUnknown;
  if (around.mIsText) return element;
  if (HoldsParagraphs(around.mArea) && element.mName == "Paragraph") {
    element.mBeginsParagraph = element.mIsInParagraph = true;
  } else if (HoldsParagraphs(around.mArea) && element.mName == "Text") {
    element.mBeginsParagraph = !around.mIsInParagraph;
    element.mIsText = element.mIsInParagraph = true;
  } else if (const auto area = FDXAreaOf(element.mName, around.mArea)) {
    element.mArea = *area;
    element.mIsInParagraph = false;
    element.mBeginsArea = true;
    if (*area == FDXArea::kForeign) element.mUnknown = element.mName;
  } else if (element.mUnknown.empty()) {
    element.mUnknown = element.mName;
  }
  return element;
}

void FDXParser::BeginDocument(const std::string& root, const Attributes& attributes) {
  if (root != kFDXRoot) {
    throw Error(mSource, mReader.CurrentPosition(),
                "is XML, but no FDX script: the root is '" + root + "'");
  }
  const auto version = FindValue(attributes, "Version");
  const int number = version ? NumberAtStart<int>(*version).value_or(0) : 0;
  if (!version) {
    Find(Severity::kNote, "the script does not say its FDX version");
  } else if (number < 1 || number > kNewestVersion) {
    Find(Severity::kNote, "the FDX version " + Quoted(*version) + " is not known: 1 to 6 are");
  }
}

// What an element means, before it is added to those that are open.
void FDXParser::Begin(const Element& element, const Attributes& attributes) {
  if (mElements.back().mIsText) {
    if (IsLineBreak(element.mName)) mParagraphs.back().mText += '\n';
    return;
  }
  if (element.mBeginsParagraph) BeginParagraph(element.mArea, attributes);
  if (element.mBeginsArea) BeginArea(element, attributes);
  if (element.mArea == FDXArea::kTags) AddTag(element.mName, attributes);
  const bool isScriptText = element.mIsText && element.mArea == FDXArea::kScript;
  if (isScriptText && !ValueOf(attributes, "Style").empty()) {
    Find(Severity::kNote, "text styles, such as bold and italic, have no place in a story");
  }
}

void FDXParser::BeginArea(const Element& element, const Attributes& attributes) {
  const FDXArea around = mElements.back().mArea;
  if (element.mArea == FDXArea::kScriptNote) BeginNote(around, attributes);
  if (element.mArea == FDXArea::kHidden) BeginOmittedScene(attributes);
  if (element.mArea == FDXArea::kSceneProperties) AddSceneProperties(attributes);
  if (element.mArea == FDXArea::kScript && around == FDXArea::kScript) {
    Find(Severity::kWarning, "dual dialogue is read as one speech after the other");
  }
}

void FDXParser::AddTag(const std::string& element, const Attributes& attributes) {
  if (element == "TagDefinition") mScript.mTags.push_back(ValueOf(attributes, "Label"));
  if (element == "TagCategory" && ValueOf(attributes, "Name") != kStoryCategory) {
    Find(Severity::kNote, "tags are kept without their categories and places in the text");
  }
}

// A paragraph that holds others is one only if it has a text as well.
void FDXParser::BeginParagraph(FDXArea area, const Attributes& attributes) {
  if (!mParagraphs.empty() && mParagraphs.back().mArea == area) mParagraphs.back().mIsMark = true;
  mParagraphs.push_back({area});
  if (area == FDXArea::kScript) BeginScriptParagraph(attributes);
  if (area == FDXArea::kHidden) BeginHiddenParagraph(attributes);
  if (area == FDXArea::kTitleLines) mParagraphs.back().mKey = FindValue(attributes, kStoryKey);
}

void FDXParser::BeginScriptParagraph(const Attributes& attributes) {
  OpenParagraph& open = mParagraphs.back();
  const std::string type = FindValue(attributes, "Type").value_or("General");
  const std::string number = ValueOf(attributes, "Number");
  const std::string mark = ValueOf(attributes, kStoryScene);
  const ParagraphElementType kind = KindOf(type);
  if (kind == kSceneHeading && mark != kContinues) {
    mScript.mScenes.push_back({number});
  } else if (!number.empty()) {
    Find(Severity::kWarning,
         "numbers of paragraphs of the type " + Quoted(type) + " have no place in a story");
  }
  open.mIsMark = kind == kSceneHeading && mark == kBegins;
  FDXScene& scene = CurrentScene();
  open.mScene = mScript.mScenes.size() - 1;
  open.mIndex = scene.mParagraphs.size();
  scene.mParagraphs.push_back({kind, "", false, mReader.CurrentPosition()});
}

ParagraphElementType FDXParser::KindOf(const std::string& name) {
  const FDXType* const type = FindFDXType(name);
  if (type == nullptr) {
    Find(Severity::kWarning,
         "paragraphs of the unknown type " + Quoted(name) + " are kept without a kind");
    return kUnknownElement;
  }
  const bool isSung = type->mMeaning == TypeMeaning::kSung;
  const ParagraphElementType kind = isSung && !mIsSpeaking ? kAction : type->mKind;
  if (type->mMeaning != TypeMeaning::kSame) {
    Find(Severity::kNote, "paragraphs of the type " + Quoted(name) + " are read as " +
                              (isSung ? "dialogue or action" : "action"));
  }
  mIsSpeaking = kind == kCharacter || (mIsSpeaking && (kind == kDialog || kind == kParenthetical));
  return kind;
}

// An omitted scene has the number of its first heading, unless it has one of its own.
void FDXParser::BeginHiddenParagraph(const Attributes& attributes) {
  FDXScene& scene = CurrentScene();
  const bool isHeading = ValueOf(attributes, "Type") == FDXTypeOf(kSceneHeading).mName;
  if (isHeading && scene.mNumber.empty()) scene.mNumber = ValueOf(attributes, "Number");
}

// An omitted scene stands in the heading that is left of it, or by itself.
void FDXParser::BeginOmittedScene(const Attributes& attributes) {
  Find(Severity::kNote, "omitted scenes are kept as a heading; their paragraphs become comments");
  OpenParagraph* const open = mParagraphs.empty() ? nullptr : &mParagraphs.back();
  const bool isInHeading =
      open != nullptr &&
      mScript.mScenes[open->mScene].mParagraphs[open->mIndex].mKind == kSceneHeading;
  if (isInHeading) {
    open->mIsOmitted = true;
    return;
  }
  if (open != nullptr) open->mIsMark = true;
  mScript.mScenes.push_back({ValueOf(attributes, "Number")});
  mScript.mScenes.back().mParagraphs.push_back(
      {kSceneHeading, std::string(kOmitted), false, mReader.CurrentPosition()});
}

void FDXParser::BeginNote(FDXArea around, const Attributes& attributes) {
  mIsNoteOfScene = around != FDXArea::kScriptNotes;
  std::string author = ValueOf(attributes, "WriterName");
  if (author.empty()) author = ValueOf(attributes, "Author");
  mNote.mComment.mStream = StreamOf(ValueOf(attributes, "Type"));
  mNote.mComment.mAuthor = std::move(author);
  mNote.mComment.mText = ValueOf(attributes, "Name");
  mNote.mStart = NumberAtStart<std::size_t>(ValueOf(attributes, "Range"));
  mHasNoteText = !mNote.mComment.mText.empty();
}

void FDXParser::AddSceneProperties(const Attributes& attributes) {
  AddComment(kSynopses, ValueOf(attributes, "Title"));
  if (!ValueOf(attributes, "Length").empty()) {
    Find(Severity::kNote, "the lengths of scenes in pages have no place in a story");
  }
}

void FDXParser::EndElement(const UTF16String& /*name*/) {
  const Element element = std::move(mElements.back());
  mElements.pop_back();
  if (element.mBeginsParagraph) EndParagraph();
  if (element.mBeginsArea && element.mArea == FDXArea::kScriptNote) EndNote();
}

void FDXParser::EndParagraph() {
  OpenParagraph paragraph = std::move(mParagraphs.back());
  mParagraphs.pop_back();
  std::string& text = paragraph.mText;
  if (paragraph.mArea == FDXArea::kScript) {
    if (text.empty() && paragraph.mIsOmitted) text = kOmitted;
    FDXParagraph& kept = mScript.mScenes[paragraph.mScene].mParagraphs[paragraph.mIndex];
    kept.mIsMark = paragraph.mIsMark && text.empty();
    kept.mText = std::move(text);
  } else if (paragraph.mArea == FDXArea::kTitleLines) {
    mScript.mTitlePage.push_back({std::move(paragraph.mKey), std::move(text)});
  } else if (paragraph.mArea == FDXArea::kScriptNote) {
    if (std::exchange(mHasNoteText, true)) mNote.mComment.mText += '\n';
    mNote.mComment.mText += text;
  } else {
    AddComment(paragraph.mArea == FDXArea::kHidden ? kBoneyard : kSynopses, std::move(text));
  }
}

void FDXParser::EndNote() {
  FDXNote note = std::exchange(mNote, {});
  if (note.mComment.mText.empty()) return;
  if (mIsNoteOfScene) {
    CurrentScene().mComments.push_back(std::move(note.mComment));
  } else {
    mScript.mNotes.push_back(std::move(note));
  }
}

void FDXParser::Characters(const UTF16String& text) {
  if (mElements.empty()) return;
  Element& element = mElements.back();
  if (element.mIsText) {
    mParagraphs.back().mText += ToUTF8(text);
    return;
  }
  const bool isDropped = element.mArea != FDXArea::kIgnored && !element.mHasStrayText &&
                         text.find_first_not_of(u" \t\r\n") != UTF16String::npos;
  if (!isDropped) return;
  element.mHasStrayText = true;
  const std::string& name = element.mUnknown.empty() ? element.mName : element.mUnknown;
  Find(Severity::kWarning, "text in the element " + Quoted(name) + " was left out");
}

FDXScene& FDXParser::CurrentScene() {
  if (mScript.mScenes.empty()) mScript.mScenes.push_back({""});
  return mScript.mScenes.back();
}

void FDXParser::AddComment(std::string_view stream, std::string text) {
  if (!text.empty()) CurrentScene().mComments.push_back({std::string(stream), "", std::move(text)});
}

// What wraps the first paragraphs may have begun a scene that is none.
FDXScript FDXParser::TakeScript() {
  auto& scenes = mScript.mScenes;
  const auto isMark = [](const FDXParagraph& paragraph) {
    return paragraph.mIsMark && paragraph.mKind != kSceneHeading;
  };
  if (!scenes.empty() && scenes[0].mNumber.empty() && scenes[0].mComments.empty() &&
      !scenes[0].mParagraphs.empty() && std::ranges::all_of(scenes[0].mParagraphs, isMark)) {
    scenes.erase(scenes.begin());
  }
  return std::move(mScript);
}

}  // namespace zelstoryhost
