#include <algorithm>
#include <array>
#include <fstream>
#include <istream>
#include <streambuf>

#include <zelstoryhost/FDX.h>
#include <zelstoryhost/Files.h>
#include <zelstoryhost/Fountain.h>
#include <zelstoryhost/ScriptFormats.h>
#include <zelstoryhost/StoryWriter.h>

#include "LowerCase.h"
#include "formats/ContentDetection.h"
#include "script/OpenScript.h"

namespace zelstoryhost {
namespace {

namespace fs = std::filesystem;

using zelstoryparser::TavroStory;

constexpr std::array<std::string_view, 1> kStoryExtensions{".quor"};
constexpr std::array<std::string_view, 3> kFountainExtensions{".fountain", ".spmd", ".txt"};
constexpr std::array<std::string_view, 1> kFDXExtensions{".fdx"};

// Enough for the root of a document, after its declaration and comments.
constexpr std::size_t kHeadBytes = 65'536;

// A text that has been read, and then what is left of a stream.
class HeadAndRest : public std::streambuf {
 public:
  HeadAndRest(std::string head, std::istream& rest) : mHead(std::move(head)), mRest(rest) {
    setg(mHead.data(), mHead.data(), mHead.data() + mHead.size());
  }

 protected:
  int_type underflow() override {
    mHead.resize(kHeadBytes);
    mRest.read(mHead.data(), static_cast<std::streamsize>(mHead.size()));
    if (mRest.bad()) throw std::ios_base::failure("reading failed");  // the stream above turns bad
    setg(mHead.data(), mHead.data(), mHead.data() + mRest.gcount());
    return mRest.gcount() == 0 ? traits_type::eof() : traits_type::to_int_type(*gptr());
  }

 private:
  std::string mHead;
  std::istream& mRest;
};

std::string ReadHead(std::istream& stream) {
  std::string head(kHeadBytes, '\0');
  stream.read(head.data(), static_cast<std::streamsize>(head.size()));
  head.resize(static_cast<std::size_t>(stream.gcount()));
  return head;
}

StoryResult ReadStoryBytes(std::string_view bytes, const std::string& source) {
  return ReadStory(bytes, source);
}

WrittenScript WriteStoryScript(const TavroStory& story, const std::string& name) {
  return {WriteStory(story, name)};
}

constexpr std::array<ScriptFormat, 3> kFormats{{
    {"story", "story document", kStoryExtensions, ReadStoryBytes, WriteStoryScript},
    {"fountain", "Fountain", kFountainExtensions, ReadFountain, WriteFountain},
    {"fdx", "FDX", kFDXExtensions, ReadFDX, WriteFDX},
}};
constexpr const ScriptFormat& kStory = kFormats[0];
constexpr const ScriptFormat& kFountain = kFormats[1];
constexpr const ScriptFormat& kFDX = kFormats[2];

// Story documents are read piece by piece, the other formats whole.
StoryResult ReadDetected(std::istream& stream, const std::string& name,
                         const ScriptFormat* format) {
  std::string head = ReadHead(stream);
  if (format == nullptr) format = &DetectFormat(head, name);
  HeadAndRest buffer(std::move(head), stream);
  std::istream whole(&buffer);
  if (format == &kStory) return ReadStory(whole, name);
  return format->mRead(ReadStream(whole, name), name);
}

}  // namespace

std::span<const ScriptFormat> ScriptFormats() {
  return kFormats;
}

const ScriptFormat* FindFormat(std::string_view name) {
  const auto* const found =
      std::find_if(kFormats.begin(), kFormats.end(),
                   [name](const auto& format) { return format.mName == name; });
  return found == kFormats.end() ? nullptr : found;
}

const ScriptFormat* FormatOfName(const fs::path& file) {
  const std::string extension = LowerCase(file.extension().string());
  const auto* const found = std::find_if(kFormats.begin(), kFormats.end(), [&](const auto& format) {
    return std::ranges::find(format.mExtensions, extension) != format.mExtensions.end();
  });
  return found == kFormats.end() ? nullptr : found;
}

const ScriptFormat& DetectFormat(std::string_view head, const std::string& file) {
  if (const auto root = RootElementIn(head)) return *root == "FinalDraft" ? kFDX : kStory;
  if (const auto form = ForeignFormIn(head)) {
    throw Error(file, "is " + std::string(*form) +
                          ": save the script as Fountain or FDX in the program that wrote it");
  }
  if (const ScriptFormat* const named = FormatOfName(file)) return *named;
  return head.empty() ? kStory : kFountain;
}

StoryResult ReadScript(const fs::path& file, const ScriptFormat* format) {
  std::ifstream stream;
  if (const auto reason = OpenScript(file, stream)) {
    return {nullptr, Error(file.string(), *reason)};
  }
  return ReadScript(stream, file.string(), format);
}

StoryResult ReadScript(std::istream& stream, const std::string& name, const ScriptFormat* format) {
  try {
    return ReadDetected(stream, name, format);
  } catch (const Error& error) {
    return {nullptr, error};
  }
}

}  // namespace zelstoryhost
