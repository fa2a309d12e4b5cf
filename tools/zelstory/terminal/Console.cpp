#include "terminal/Console.h"

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <sstream>
#include <string_view>
#include <utility>

#if __has_include(<unistd.h>)
#include <unistd.h>
#endif

#include <nlohmann/json.hpp>

#include <zelstoryhost/Error.h>

#include "terminal/Escaped.h"

namespace zelstory {

using zelstoryhost::Error;

namespace {

enum class Stream { kOutput = 1, kError = 2 };  // as POSIX numbers them

bool IsTerminal([[maybe_unused]] Stream stream) {
#if __has_include(<unistd.h>)
  return isatty(static_cast<int>(stream)) == 1;
#else
  return false;
#endif
}

std::string_view Environment(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? std::string_view() : value;
}

bool HasColours(Stream stream) {
  return IsTerminal(stream) && Environment("NO_COLOR").empty() && Environment("TERM") != "dumb";
}

const char* CodeOf(Tone tone) {
  switch (tone) {
    case Tone::kPlain:
      return "";
    case Tone::kGood:
      return "\x1B[32m";
    case Tone::kBad:
      return "\x1B[1;31m";
    case Tone::kFaint:
      return "\x1B[2m";
    case Tone::kStrong:
      return "\x1B[1m";
  }
  return "";
}

std::string Coloured(Stream stream, Tone tone, const std::string& text) {
  static const bool hasColours[] = {HasColours(Stream::kOutput), HasColours(Stream::kError)};
  if (tone == Tone::kPlain || !hasColours[stream == Stream::kError ? 1 : 0]) return text;
  return CodeOf(tone) + text + "\x1B[0m";
}

bool theProgressIsShown = false;
std::size_t theWrittenFiles = 0;

// Only results on the same terminal would run into the progress line.
void MakeWayForResult() {
  if (OutputIsTerminal()) HideProgress();
}

}  // namespace

void PrintError(const std::string& line) {
  constexpr std::string_view kMark = "error:";
  HideProgress();
  const std::string text = Escaped(line);
  const std::size_t mark = text.find(": error: ");
  if (mark == std::string::npos) {
    std::cerr << text << '\n';
    return;
  }
  std::cerr << text.substr(0, mark + 2) << Coloured(Stream::kError, Tone::kBad, std::string(kMark))
            << text.substr(mark + 2 + kMark.size()) << '\n';
}

void PrintError(const zelstoryhost::Error& error) {
  PrintError(WithAdvice(error.what(), error));
}

std::string WithAdvice(const std::string& text, const zelstoryhost::Error& error) {
  using zelstoryhost::ErrorKind;
  switch (error.Kind()) {
    case ErrorKind::kOther:
      return text;
    case ErrorKind::kWriteProtected:
    case ErrorKind::kForeignFile:
      return text + "; --force replaces it anyway";
    case ErrorKind::kHardLinks:
      return text + "; --force parts it from them";
    case ErrorKind::kReadOnlyPacket:
      return text + "; --force changes it anyway";
    case ErrorKind::kSharedSidecar:
      return text + "; --sidecar-name stem shares it, --sidecar-name full gives the clip its own";
    case ErrorKind::kSeveralSidecars:
      return text + "; name one of them, or use --sidecar-name";
    case ErrorKind::kUnknownScene:
      return text + "; zelstory scenes lists them";
  }
  return text;
}

void PrintNote(const std::string& place, const std::string& text) {
  HideProgress();
  std::cerr << Escaped(place + ": note: " + text) << '\n';
}

std::string Describe(const std::string& file, const zelstoryhost::Finding& finding) {
  std::string line = zelstoryhost::Error(file, finding.mPosition, "").Place();
  line += finding.mSeverity == zelstoryhost::Severity::kNote ? ": note: " : ": warning: ";
  line += finding.mText;
  return finding.mWhere.empty() ? line : line + " (" + finding.mWhere + ')';
}

void PrintFindings(const std::string& file, const std::vector<zelstoryhost::Finding>& findings) {
  HideProgress();
  for (const auto& finding : findings) std::cerr << Escaped(Describe(file, finding)) << '\n';
}

void PrintLine(const std::string& line) {
  MakeWayForResult();
  std::cout << Escaped(line) << '\n';
}

void PrintDiff(const std::string& diff) {
  MakeWayForResult();
  if (!OutputIsTerminal()) {
    std::cout << diff;
    return;
  }
  std::istringstream lines(diff);
  for (std::string line; std::getline(lines, line);) {
    const Tone tone = line.starts_with('+')   ? Tone::kGood
                      : line.starts_with('-') ? Tone::kBad
                      : line.starts_with('@') ? Tone::kFaint
                                              : Tone::kPlain;
    std::cout << Coloured(tone, Escaped(line, "\t")) << '\n';
  }
}

void PrintFields(const std::vector<std::string>& fields) {
  MakeWayForResult();
  const char* separator = "";
  for (const std::string& field : fields) {
    std::cout << std::exchange(separator, "\t") << Escaped(field);
  }
  std::cout << '\n';
}

void PrintResult(const std::string& subject, Tone tone, const std::string& result) {
  MakeWayForResult();
  std::cout << Escaped(subject) << Coloured(tone, Escaped(result)) << '\n';
}

void PrintJSONLine(const std::function<void(zelstoryhost::JSONWriter& json)>& writeMembers) {
  MakeWayForResult();
  zelstoryhost::JSONWriter json(std::cout, zelstoryhost::JSONWriter::Layout::kOneLine);
  json.BeginObject();
  writeMembers(json);
  json.EndObject();
  std::cout << '\n';
}

std::string Coloured(Tone tone, const std::string& text) {
  return Coloured(Stream::kOutput, tone, text);
}

void ShowProgress(const std::string& line) {
  if (!IsTerminal(Stream::kError)) return;
  std::cout.flush();
  std::cerr << "\r\x1B[K" << line << std::flush;
  theProgressIsShown = true;
}

void HideProgress() {
  if (!theProgressIsShown) return;
  std::cerr << "\r\x1B[K" << std::flush;
  theProgressIsShown = false;
}

bool OutputIsTerminal() {
  static const bool isTerminal = IsTerminal(Stream::kOutput);
  return isTerminal;
}

void CountWrittenFile() {
  ++theWrittenFiles;
}

const char* WrittenBefore() {
  static char text[60];
  if (theWrittenFiles == 0) return "";
  std::snprintf(text, sizeof text, "; %zu file%s written before", theWrittenFiles,
                theWrittenFiles == 1 ? " was" : "s were");
  return text;
}

void FlushOutput() {
  std::cout.flush();
  if (!std::cout) throw Error("standard output", std::string("writing failed") + WrittenBefore());
}

}  // namespace zelstory
