#include <algorithm>
#include <array>

#include <zelcore/String.h>
#include <zelcore/xml/DocumentEncoding.h>

namespace zelcore::xml {
namespace {

using enum UnicodeForm;

constexpr std::size_t npos = std::string_view::npos;

// A name, and the one or two forms that it stands for.
struct EncodingName {
  std::string_view mName;
  std::array<UnicodeForm, 2> mForms;
};

constexpr std::array<EncodingName, 12> kNames{{
    {"UTF-8", {kUTF8, kUTF8}},
    {"UTF8", {kUTF8, kUTF8}},
    {"UTF-16", {kUTF16Big, kUTF16Little}},
    {"UTF-16BE", {kUTF16Big, kUTF16Big}},
    {"UTF-16LE", {kUTF16Little, kUTF16Little}},
    {"ISO-10646-UCS-2", {kUTF16Big, kUTF16Little}},
    {"UCS-2", {kUTF16Big, kUTF16Little}},
    {"UTF-32", {kUTF32Big, kUTF32Little}},
    {"UTF-32BE", {kUTF32Big, kUTF32Big}},
    {"UTF-32LE", {kUTF32Little, kUTF32Little}},
    {"ISO-10646-UCS-4", {kUTF32Big, kUTF32Little}},
    {"UCS-4", {kUTF32Big, kUTF32Little}},
}};

}  // namespace

DetectedForm DetectForm(std::string_view bytes) {
  using namespace std::string_view_literals;
  struct Mark {
    std::string_view mBytes;
    UnicodeForm mForm;
  };
  static constexpr std::array<Mark, 5> kMarks = {{{"\xFF\xFE\0\0"sv, kUTF32Little},
                                                  {"\0\0\xFE\xFF"sv, kUTF32Big},
                                                  {"\xFE\xFF"sv, kUTF16Big},
                                                  {"\xFF\xFE"sv, kUTF16Little},
                                                  {"\xEF\xBB\xBF"sv, kUTF8}}};
  for (const Mark& mark : kMarks) {
    if (bytes.starts_with(mark.mBytes)) return {mark.mForm, mark.mBytes.size()};
  }
  const auto isZero = [bytes](std::size_t i) { return i < bytes.size() && bytes[i] == '\0'; };
  if (isZero(0)) return {isZero(1) ? kUTF32Big : kUTF16Big, 0};
  if (!isZero(1)) return {};
  return {isZero(2) && isZero(3) ? kUTF32Little : kUTF16Little, 0};
}

const char* NameOf(UnicodeForm form) {
  switch (form) {
    case kUTF8:
      return "UTF-8";
    case kUTF16Big:
      return "UTF-16BE";
    case kUTF16Little:
      return "UTF-16LE";
    case kUTF32Big:
      return "UTF-32BE";
    case kUTF32Little:
      return "UTF-32LE";
  }
  return "";
}

bool IsNameOf(UnicodeForm form, std::string_view encoding) {
  return std::any_of(kNames.begin(), kNames.end(), [&](const EncodingName& name) {
    return (name.mForms[0] == form || name.mForms[1] == form) &&
           utility::EqualsIgnoringASCIICase(name.mName, encoding);
  });
}

bool IsNameOfWideForm(std::string_view encoding) {
  return IsNameOf(kUTF16Big, encoding) || IsNameOf(kUTF16Little, encoding) ||
         IsNameOf(kUTF32Big, encoding) || IsNameOf(kUTF32Little, encoding);
}

bool BeginsWithDeclaration(std::string_view text) {
  constexpr std::string_view kStart = "<?xml";
  return text.starts_with(kStart) && text.find_first_of(" \t\n\r") == kStart.size();
}

std::string_view DeclaredEncoding(std::string_view text) {
  if (!BeginsWithDeclaration(text)) return {};
  const std::string_view declaration = text.substr(0, text.find("?>"));
  const std::size_t key = declaration.find("encoding");
  const std::size_t open = key == npos ? npos : declaration.find_first_of("\"'", key);
  if (open == npos) return {};
  const std::size_t close = declaration.find(declaration[open], open + 1);
  return close == npos ? std::string_view() : declaration.substr(open + 1, close - open - 1);
}

}  // namespace zelcore::xml
