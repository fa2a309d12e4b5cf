#include <utility>

#include <zelcore/String.h>
#include <zelstoryhost/Fountain.h>

#include "formats/StoryBuilder.h"
#include "formats/TextEncoding.h"
#include "formats/fountain/FountainSyntax.h"
#include "formats/fountain/FountainText.h"
#include "formats/fountain/TitlePage.h"

namespace zelstoryhost {
namespace {

using namespace fountain;
using namespace zelstoryparser;
using zelcore::xml::Position;

class FountainReader {
 public:
  FountainReader(std::string_view bytes, const std::string& source)
      : mText(DecodeText(bytes, source), mFindings) {}

  StoryResult Read();

 private:
  // What the lines from mNext on are; each returns whether it has taken any.
  bool TakeOutline();
  bool TakeHeading();
  bool TakeTransition();
  bool TakeSpeech();
  void TakeAction();

  void TakeSpeechLines();
  void AddDialogue(std::string& lines);
  void Add(ParagraphElementType kind, std::string_view text, std::size_t line);
  void Comment(std::string_view stream, std::string_view text);
  void AddPendingComments();
  void AddRemarks();
  std::string Plain(std::string_view line);
  std::string_view LineOfAction(std::string_view line);

  std::string_view Line() const { return mText.Line(mNext); }
  bool IsAtEnd() const { return mNext == mText.CountLines(); }
  bool IsLast() const { return mNext + 1 == mText.CountLines(); }

  // Whether the line after this one is empty, or a blank one that does not go on with a speech.
  bool IsFollowedByBlank() const { return IsLast() || IsBlank(mText.Line(mNext + 1)); }

  void Note(const std::string& text) {
    mFindings.Add(Severity::kNote, text, Position{mText.NumberOf(mNext), 1});
  }

  FindingList mFindings;
  FountainText mText;
  std::size_t mNext = 0;        // the line to be read
  std::size_t mDialogue = 0;    // the line that the dialogue being read begins with
  std::size_t mNextRemark = 0;  // the remark to be added to its scene
  StoryBuilder mBuilder;
  bool mIsAfterSection = false;  // comments belong to the scene that follows
  std::vector<std::pair<std::string_view, std::string>> mPending;  // such comments
  bool mHasEmphasis = false;
};

// A line of two blanks or more, which goes on with a speech.
bool IsContinuation(std::string_view line) {
  return line.size() >= 2 && IsBlank(line);
}

StoryResult FountainReader::Read() {
  const TitlePage titlePage = ReadTitlePage(mText, mFindings);
  mBuilder.Story().mMetaData = zelcore::utility::UTF8to16(titlePage.mMetadata);
  mNext = titlePage.mLines;
  mHasEmphasis = titlePage.mHasEmphasis;
  AddRemarks();
  while (!IsAtEnd()) {
    if (IsBlank(Line())) {
      ++mNext;
    } else if (!TakeOutline() && !TakeHeading() && !TakeTransition() && !TakeSpeech()) {
      TakeAction();
    }
    AddRemarks();
  }
  AddPendingComments();
  if (mHasEmphasis) {
    mFindings.Add(Severity::kNote, "emphasis (italics, bold, underlining) is left out",
                  std::nullopt);
  }
  return mBuilder.Finish(mFindings.Take());
}

std::string FountainReader::Plain(std::string_view line) {
  return WithoutMarks(line, mHasEmphasis);
}

// `line` is the one that the paragraph begins with.
void FountainReader::Add(ParagraphElementType kind, std::string_view text, std::size_t line) {
  AddPendingComments();
  mBuilder.Add(kind, text, {mText.NumberOf(line), 1});
}

// A section names the scenes that follow it, and a synopsis below it describes it. What comes
// before the first scene belongs to it.
void FountainReader::Comment(std::string_view stream, std::string_view text) {
  if (mIsAfterSection || mBuilder.CurrentScene() == nullptr) {
    mPending.emplace_back(stream, text);
  } else {
    mBuilder.AddComment(stream, "", text);
  }
}

void FountainReader::AddPendingComments() {
  mIsAfterSection = false;
  for (const auto& [stream, text] : mPending) mBuilder.AddComment(stream, "", text);
  mPending.clear();
}

// Adds the notes and boneyards of the lines that have been read.
void FountainReader::AddRemarks() {
  const auto& remarks = mText.Remarks();
  for (; mNextRemark < remarks.size() && remarks[mNextRemark].mLineCount <= mNext; ++mNextRemark) {
    const Remark& remark = remarks[mNextRemark];
    if (!remark.mText.empty()) Comment(remark.mIsBoneyard ? kBoneyard : kNotes, remark.mText);
  }
}

bool FountainReader::TakeOutline() {
  const std::string_view line = Trim(Line());
  if (IsPageBreak(line)) {
    Note("page breaks are left out");
  } else if (IsSection(line)) {
    mIsAfterSection = true;
    Comment(kSections, Plain(line));
  } else if (IsSynopsis(line)) {
    Comment(kSynopses, Plain(Trim(line.substr(1))));
  } else {
    return false;
  }
  ++mNext;
  return true;
}

// Every scene begins with a heading, except for what stands before the first one.
bool FountainReader::TakeHeading() {
  const bool isForced = IsForcedHeading(Line());
  if (!isForced && !IsNaturalHeading(Line())) return false;
  std::string_view heading = Trim(Line()).substr(isForced ? 1 : 0);
  const std::string_view number = TakeSceneNumber(heading);
  if (!IsFollowedByBlank() && !IsOutline(mText.Line(mNext + 1))) {
    Note("a scene heading without an empty line after it is taken for one all the same");
  }
  mBuilder.BeginScene(number);
  Add(kSceneHeading, Plain(heading), mNext);
  ++mNext;
  return true;
}

bool FountainReader::TakeTransition() {
  const std::string_view line = Trim(Line());
  const bool isForced = line.starts_with('>') && !IsCentred(line) && line.size() > 1;
  if (!isForced && (!IsFollowedByBlank() || HasMark(line) || !IsNaturalTransition(Line()))) {
    return false;
  }
  Add(kTransition, Plain(Trim(line.substr(isForced ? 1 : 0))), mNext);
  ++mNext;
  return true;
}

bool FountainReader::TakeSpeech() {
  std::string_view cue = Trim(Line());
  const bool isForced = cue.starts_with('@') && cue.size() > 1;
  const bool hasSpeech =
      !IsLast() && (!IsBlank(mText.Line(mNext + 1)) || IsContinuation(mText.Line(mNext + 1)));
  if (!isForced && (!hasSpeech || HasMark(cue) || !IsNaturalCue(cue))) return false;
  if (isForced) cue.remove_prefix(1);
  const bool isDual = EndsWith(cue, '^');
  if (isDual) cue.remove_suffix(1);
  if (IsBlank(cue)) return false;
  if (isDual) Note("dual dialogue is read as one speech after the other");
  Add(kCharacter, Plain(Trim(cue)), mNext);
  ++mNext;
  if (hasSpeech) TakeSpeechLines();
  return true;
}

void FountainReader::TakeSpeechLines() {
  std::string dialogue;
  for (; !IsAtEnd() && (!IsBlank(Line()) || IsContinuation(Line())); ++mNext) {
    std::string_view line = Trim(Line());
    if (IsParenthetical(line)) {
      AddDialogue(dialogue);
      Add(kParenthetical, Plain(line), mNext);
      continue;
    }
    if (line.starts_with('~')) {
      Note("lyrics are read as dialogue or action");
      line = Trim(line.substr(1));
    }
    if (dialogue.empty()) mDialogue = mNext;
    (dialogue += Plain(line)) += '\n';
  }
  AddDialogue(dialogue);
}

// Adds the lines that were gathered, without empty ones at the end.
void FountainReader::AddDialogue(std::string& lines) {
  lines.resize(lines.find_last_not_of('\n') + 1);
  if (!lines.empty()) Add(kDialog, lines, mDialogue);
  lines.clear();
}

// A line of an action without the marks that may begin it.
std::string_view FountainReader::LineOfAction(std::string_view line) {
  const std::string_view trimmed = Trim(line);
  if (trimmed.starts_with('!')) return TrimEnd(line.substr(line.find('!') + 1));
  if (IsCentred(line)) return Trim(trimmed.substr(1, trimmed.size() - 2));
  if (!trimmed.starts_with('~')) return TrimEnd(line);
  Note("lyrics are read as dialogue or action");
  return Trim(trimmed.substr(1));
}

void FountainReader::TakeAction() {
  std::string text;
  std::size_t begin = mNext;
  do {
    const std::string line = Plain(LineOfAction(Line()));
    if (text.empty()) begin = mNext;
    if (!IsBlank(line)) (text += text.empty() ? "" : "\n") += line;
    ++mNext;
  } while (!IsAtEnd() && !IsBlank(Line()) && !IsOutline(Line()));
  if (!text.empty()) Add(kAction, text, begin);
}

}  // namespace

StoryResult ReadFountain(std::string_view bytes, const std::string& source) {
  try {
    return FountainReader(bytes, source).Read();
  } catch (const Error& error) {
    return {nullptr, error};
  }
}

}  // namespace zelstoryhost
