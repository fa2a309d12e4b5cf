#include <algorithm>
#include <utility>

#include <zelstoryhost/Error.h>
#include <zelstoryhost/Fountain.h>
#include <zelstoryhost/Text.h>

#include "UTF16.h"
#include "formats/Lines.h"
#include "formats/SceneComments.h"
#include "formats/StoryBuilder.h"
#include "formats/fountain/FountainSyntax.h"
#include "formats/fountain/TitlePage.h"
#include "script/StoryPlace.h"

namespace zelstoryhost {
namespace {

using namespace fountain;
using namespace zelstoryparser;

std::vector<std::string> SplitLines(const std::string& text) {
  std::vector<std::string> lines;
  ForEachLine(std::string_view(text),
              [&lines](std::string_view line) { lines.emplace_back(line); });
  return lines;
}

void ReplaceAll(std::string& text, std::string_view what, std::string_view by) {
  std::string replaced;
  std::size_t begin = 0;
  for (std::size_t i = 0; (i = text.find(what, begin)) != std::string::npos;) {
    replaced.append(text, begin, i - begin).append(by);
    begin = i + what.size();
  }
  text = replaced.append(text, begin);
}

struct Comment {
  std::string mStream, mAuthor, mText;
};

std::string NameOf(std::int32_t kind) {
  for (const ParagraphKind& known : kParagraphKinds) {
    if (known.mType == kind) return "the kind " + std::string(known.mName);
  }
  return "an unknown kind";
}

bool HasText(const Scene& scene) {
  return std::ranges::any_of(scene.mParagraphs, [](const auto& paragraph) {
    return paragraph && CountWords(TextOf(*paragraph)) > 0;
  });
}

class FountainWriter {
 public:
  explicit FountainWriter(const std::string& name) : mName(name) {}

  WrittenScript Write(const TavroStory& story);

 private:
  std::vector<std::vector<Comment>> CommentsByScene(const TavroStory& story,
                                                    std::size_t sceneCount);
  void ReportRest(const TavroStory& story);
  void WriteScene(const Scene& scene, const std::vector<Comment>& comments, bool isLast);
  void WriteSections(const std::vector<Comment>& comments);
  void WriteComments(const std::vector<Comment>& comments);
  void WriteRemark(const Comment& comment, bool isBoneyard);
  void WriteParagraph(const Scene& scene, std::size_t index);
  void WriteHeading(const std::string& text, const std::string& number);
  void WriteAction(const std::string& text);
  void WriteCue(const std::string& text, bool hasSpeech);
  void WriteDialogue(const std::string& text);
  void WriteParenthetical(std::string text);
  void WriteTransition(const std::string& text);

  std::string CleanTextOf(const Paragraph& paragraph);
  std::string Line(const std::string& text);
  static std::string OneLine(const std::string& text);

  // Whether what follows from `index` on, without empty paragraphs, is dialogue or a parenthetical.
  static bool IsSpeech(const Scene& scene, std::size_t index);
  bool NeedsMark(std::string_view line, bool isFirst, std::string_view next) const;
  bool LooksLikeTitlePage(std::string_view line, std::string_view next) const {
    return mIsStart && BeginsWithTitlePage(line, next);
  }

  void NoteBlanks() {
    Find(Severity::kNote,
         "blanks at the ends of lines, empty lines and tabs are not kept as they are");
  }

  void Find(Severity severity, const std::string& text) {
    mFindings.Add(severity, text, std::nullopt, mPlace.Describe());
  }

  // Begins a paragraph after an empty line.
  void BeginBlock() {
    if (!mBytes.empty() && !mBytes.ends_with("\n\n")) mBytes += '\n';
    mIsInSpeech = mIsAfterDialogue = false;
  }

  const std::string& mName;
  std::string mBytes;
  FindingList mFindings;
  StoryPlace mPlace;
  bool mHasScene = false;
  bool mIsStart = true;           // no line but those of notes has been written
  bool mIsInSpeech = false;       // the last line is a cue or what follows one
  bool mIsAfterDialogue = false;  // and it is dialogue
};

WrittenScript FountainWriter::Write(const TavroStory& story) {
  mBytes = WriteTitlePage(ToUTF8(story.mMetaData), mFindings);
  mIsStart = mBytes.empty();
  ReportRest(story);
  mPlace.EnterStream("body");
  const auto scenes = BodyScenes(story);
  const auto comments = CommentsByScene(story, scenes.size());
  for (std::size_t i = 0; i < scenes.size(); ++i) {
    if (scenes[i]) WriteScene(*scenes[i], comments[i], i + 1 == scenes.size());
  }
  constexpr std::string_view kMark = "\xEF\xBB\xBF";
  if (mBytes.starts_with(kMark)) mBytes.insert(0, kMark);  // one of them is no text
  return {std::move(mBytes), mFindings.Take()};
}

// Those that belong to no scene go to the last one.
std::vector<std::vector<Comment>> FountainWriter::CommentsByScene(const TavroStory& story,
                                                                  std::size_t sceneCount) {
  std::vector<std::vector<Comment>> comments(sceneCount);
  for (const SceneComment& comment : CommentsOf(story)) {
    if (!comment.mScene) {
      Find(Severity::kWarning, sceneCount == 0 ? "comments without any scene are left out"
                                               : "comments of no scene go to the last one");
    }
    if (sceneCount == 0) continue;
    comments[comment.mScene.value_or(sceneCount - 1)].push_back(
        {ToUTF8(comment.mStream->mName), ToUTF8(comment.mStream->mCommentAuthor),
         ToUTF8(comment.mText)});
  }
  return comments;
}

void FountainWriter::ReportRest(const TavroStory& story) {
  const bool hasLabels =
      !story.mTags.empty() || !story.mDocumentType.empty() || !story.mTemplate.empty();
  if (hasLabels) Find(Severity::kNote, "Fountain has no place for tags, document type, template");
  if (HasForeignIdentifiers(story)) {
    Find(Severity::kNote, "identifiers have no place in Fountain; reading makes new ones");
  }
  if (!story.mDocument) return;
  const bool hasMargins = story.mDocument->mHeaderStream || story.mDocument->mFooterStream;
  if (hasMargins) Find(Severity::kWarning, "Fountain has no headers and footers");
}

void FountainWriter::WriteScene(const Scene& scene, const std::vector<Comment>& comments,
                                bool isLast) {
  mPlace.EnterScene(ToUTF8(scene.mSceneNumber));
  const bool isKept = HasText(scene) || (!comments.empty() && !mHasScene && isLast);
  if (!isKept) Find(Severity::kWarning, "a scene without text is left out");
  if (!isKept && comments.empty()) return;
  WriteSections(comments);
  const bool hasHeading = !scene.mParagraphs.empty() && scene.mParagraphs.front() &&
                          scene.mParagraphs.front()->mElementType == kSceneHeading &&
                          !OneLine(TextOf(*scene.mParagraphs.front())).empty();
  if (!hasHeading && mHasScene) {
    Find(Severity::kWarning, "a scene without a heading joins the one before");
  }
  if (!hasHeading && !scene.mSceneNumber.empty()) {
    Find(Severity::kWarning, "a scene without a heading has no number");
  }
  mHasScene = true;
  if (!scene.mShotDuration.empty()) Find(Severity::kNote, "Fountain has no durations");
  if (!hasHeading) WriteComments(comments);
  for (std::size_t i = 0; i < scene.mParagraphs.size(); ++i) {
    WriteParagraph(scene, i);
    if (i == 0 && hasHeading) WriteComments(comments);
  }
  mPlace.LeaveScene();
}

void FountainWriter::WriteSections(const std::vector<Comment>& comments) {
  for (const Comment& comment : comments) {
    if (comment.mStream != kSections) continue;
    const std::string text = OneLine(comment.mText);
    const std::string line = (text.starts_with('#') ? "" : "# ") + WithEscapes(text);
    if (!IsSection(line)) continue;
    BeginBlock();
    mBytes += line + "\n";
    mIsStart = false;
  }
}

// Comments stand below the heading, each on lines of its own.
void FountainWriter::WriteComments(const std::vector<Comment>& comments) {
  for (const Comment& comment : comments) {
    if (!comment.mAuthor.empty()) Find(Severity::kNote, "Fountain has no authors of comments");
    if (comment.mStream == kSections) continue;
    if (comment.mStream == kSynopses) {
      const std::string text = OneLine(comment.mText);
      if (text.empty()) continue;
      mBytes += "= " + WithEscapes(text) + "\n";
      mIsStart = false;
    } else {
      WriteRemark(comment, comment.mStream == kBoneyard);
    }
  }
}

void FountainWriter::WriteRemark(const Comment& comment, bool isBoneyard) {
  if (!isBoneyard && comment.mStream != kNotes) {
    Find(Severity::kNote, "comments of the stream '" + comment.mStream + "' become notes");
  }
  const std::string_view open = isBoneyard ? "/*" : "[[";
  const std::string_view close = isBoneyard ? "*/" : "]]";
  std::string text = comment.mText;
  if (text.find(close) != std::string::npos) {
    Find(Severity::kNote, "a comment has the mark that would end it; a blank parts it");
    ReplaceAll(text, close, std::string{close[0], ' ', close[1]});
  }
  ReplaceAll(text, "\n\n", "\n  \n");
  ReplaceAll(text, "\n\n", "\n  \n");
  if (text.ends_with(close[0])) text += ' ';
  ((mBytes += open) += text) += close;
  mBytes += '\n';
}

// The text of a paragraph with what Fountain's lines can hold.
std::string FountainWriter::CleanTextOf(const Paragraph& paragraph) {
  const UTF16String units = JoinedText(paragraph);
  if (LengthOfWellFormed(units) < units.size()) {
    Find(Severity::kWarning, "half of a surrogate pair becomes U+FFFD");
  }
  const std::string text = ToUTF8(units);
  if (text.find('\0') != std::string::npos) {
    throw Error(mName, std::nullopt, "text cannot hold the character U+0000", mPlace.Describe());
  }
  std::string clean = text;
  ReplaceAll(clean, "\r\n", "\n");
  ReplaceAll(clean, "\r", "\n");
  ReplaceAll(clean, "\t", "    ");
  ReplaceAll(clean, "\f", " ");
  if (clean != text) NoteBlanks();
  return clean;
}

std::string FountainWriter::OneLine(const std::string& text) {
  std::string line = text;
  std::replace(line.begin(), line.end(), '\n', ' ');
  return std::string(Trim(line));
}

bool FountainWriter::IsSpeech(const Scene& scene, std::size_t index) {
  for (; index < scene.mParagraphs.size(); ++index) {
    const Paragraph* const paragraph = scene.mParagraphs[index].get();
    if (paragraph == nullptr || CountWords(TextOf(*paragraph)) == 0) continue;
    return paragraph->mElementType == kDialog || paragraph->mElementType == kParenthetical;
  }
  return false;
}

void FountainWriter::WriteParagraph(const Scene& scene, std::size_t index) {
  mPlace.EnterParagraph();
  const Paragraph* const paragraph = scene.mParagraphs[index].get();
  const std::string text = paragraph == nullptr ? "" : CleanTextOf(*paragraph);
  if (CountWords(text) == 0) {
    Find(Severity::kNote, "paragraphs without text are left out");
  } else if (paragraph->mElementType == kSceneHeading) {
    if (index > 0) Find(Severity::kWarning, "a second heading begins a scene of its own");
    WriteHeading(Line(text), index == 0 ? ToUTF8(scene.mSceneNumber) : "");
  } else if (paragraph->mElementType == kCharacter) {
    WriteCue(Line(text), IsSpeech(scene, index + 1));
  } else if (paragraph->mElementType == kTransition) {
    WriteTransition(Line(text));
  } else if (IsSpeech(scene, index) && mIsInSpeech) {
    paragraph->mElementType == kDialog ? WriteDialogue(text) : WriteParenthetical(Line(text));
  } else {
    if (paragraph->mElementType != kAction) {
      Find(Severity::kNote, NameOf(paragraph->mElementType) + " is written as action");
    }
    WriteAction(text);
  }
  mIsStart = mIsStart && CountWords(text) == 0;
  mPlace.LeaveParagraph();
}

// The text of a paragraph that has one line.
std::string FountainWriter::Line(const std::string& text) {
  std::string line = OneLine(text);
  if (line != text) NoteBlanks();
  return line;
}

void FountainWriter::WriteHeading(const std::string& text, const std::string& number) {
  BeginBlock();
  std::string line = WithEscapes(text);
  const bool isNatural = IsNaturalHeading(line);
  if (!isNatural && !IsForcedHeading("." + line)) line = WithEscapes(text, true);
  std::string_view withoutNumber = line;
  if (!TakeSceneNumber(withoutNumber).empty()) line.insert(line.end() - 1, '\\');
  (mBytes += isNatural ? "" : ".") += line;
  if (IsSceneNumber(number)) {
    mBytes += " #" + number + "#";
  } else if (!number.empty()) {
    Find(Severity::kWarning, "a scene number can have letters, digits, - and . only");
  }
  mBytes += '\n';
}

void FountainWriter::WriteCue(const std::string& text, bool hasSpeech) {
  BeginBlock();
  std::string line = WithEscapes(text);
  if (line.ends_with('^')) line.insert(line.end() - 1, '\\');
  const bool isNatural = hasSpeech && !HasMark(line) && !IsNaturalHeading(line) &&
                         !IsNaturalTransition(line) && IsNaturalCue(line) &&
                         !LooksLikeTitlePage(line, "");
  mBytes += (isNatural ? "" : "@") + line + "\n";
  mIsInSpeech = true;
}

void FountainWriter::WriteDialogue(const std::string& text) {
  if (mIsAfterDialogue) Find(Severity::kNote, "dialogue that follows dialogue joins it");
  mIsAfterDialogue = true;
  std::vector<std::string> lines = SplitLines(text);
  while (IsBlank(lines.back())) lines.pop_back();
  for (const std::string& untrimmed : lines) {
    std::string line = WithEscapes(Trim(untrimmed));
    if (IsParenthetical(line) || line.starts_with('~')) line.insert(line.begin(), '\\');
    mBytes += (line.empty() ? "  " : line) + "\n";
  }
  std::string read;
  for (const std::string& line : lines) (read += Trim(line)) += '\n';
  if (read != text + "\n") NoteBlanks();
}

void FountainWriter::WriteParenthetical(std::string text) {
  if (!IsParenthetical(text)) {
    Find(Severity::kNote, "a parenthetical gets parentheses");
    text = "(" + text + ")";
  }
  mBytes += WithEscapes(text) + "\n";
  mIsAfterDialogue = false;
}

void FountainWriter::WriteTransition(const std::string& text) {
  BeginBlock();
  std::string line = WithEscapes(text);
  const bool isNatural = IsNaturalTransition(line) && !HasMark(line) && !IsNaturalHeading(line) &&
                         !LooksLikeTitlePage(line, "");
  if (!isNatural && line.ends_with('<')) line.insert(line.end() - 1, '\\');
  mBytes += (isNatural ? "" : "> ") + line + "\n";
}

// Whether a line of an action would be read as something else without a mark.
bool FountainWriter::NeedsMark(std::string_view line, bool isFirst, std::string_view next) const {
  const std::string_view trimmed = Trim(line);
  if (IsOutline(line) || IsCentred(line)) return true;
  if (trimmed.starts_with('!') || trimmed.starts_with('~')) return true;
  if (!isFirst) return false;
  const bool isMarked = trimmed.starts_with('>') || trimmed.starts_with('@');
  const bool isCue = !next.empty() && IsNaturalCue(trimmed);
  return isMarked || isCue || IsForcedHeading(line) || IsNaturalHeading(line) ||
         IsNaturalTransition(line) || LooksLikeTitlePage(line, next);
}

void FountainWriter::WriteAction(const std::string& text) {
  bool isFirst = true;
  std::string read;
  const std::vector<std::string> lines = SplitLines(text);
  for (auto it = lines.begin(); it != lines.end(); ++it) {
    const std::string line = WithEscapes(TrimEnd(*it));
    if (line.empty()) {
      isFirst = true;
      continue;
    }
    if (isFirst) BeginBlock();
    const std::string next = it + 1 == lines.end() ? "" : WithEscapes(TrimEnd(*(it + 1)));
    mBytes += (NeedsMark(line, isFirst, next) ? "!" : "") + line + "\n";
    isFirst = false;
    (read += TrimEnd(*it)) += '\n';
  }
  if (read != text + "\n") NoteBlanks();
}

}  // namespace

WrittenScript WriteFountain(const TavroStory& story, const std::string& name) {
  return FountainWriter(name).Write(story);
}

}  // namespace zelstoryhost
