#include <algorithm>

#include <xmptoolkit/model/Text.h>
#include <xmptoolkit/packet/XMLDeclaration.h>
#include <zelcore/String.h>

namespace xmptoolkit {

namespace {

constexpr std::size_t npos = std::string_view::npos;

bool IsEither(std::string_view name, std::string_view first, std::string_view second) {
  using zelcore::utility::EqualsIgnoringASCIICase;
  return EqualsIgnoringASCIICase(name, first) || EqualsIgnoringASCIICase(name, second);
}

bool IsASCII(std::string_view text) {
  return std::all_of(text.begin(), text.end(),
                     [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

}  // namespace

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

bool IsASCIIName(std::string_view name) {
  return IsEither(name, "US-ASCII", "ASCII");
}

bool MayDeclare(std::string_view name, Encoding encoding, std::string_view packetText) {
  switch (encoding) {
    case Encoding::kUTF8:
      return IsEither(name, "UTF-8", "UTF8") || (IsASCIIName(name) && IsASCII(packetText));
    case Encoding::kUTF16Big:
      return IsEither(name, "UTF-16", "UTF-16BE");
    case Encoding::kUTF16Little:
      return IsEither(name, "UTF-16", "UTF-16LE");
    case Encoding::kUTF32Big:
      return IsEither(name, "UTF-32", "UTF-32BE");
    case Encoding::kUTF32Little:
      return IsEither(name, "UTF-32", "UTF-32LE");
  }
  return false;
}

void DeclareUTF8(std::string& text) {
  constexpr std::string_view kName = "UTF-8";
  const std::string_view name = DeclaredEncoding(text);
  if (name.size() < kName.size()) return;  // "UTF8", or none
  const auto offset = static_cast<std::size_t>(name.data() - text.data());
  const std::string blanks(name.size() - kName.size(), ' ');
  const char quote = text[offset - 1];
  text.replace(offset, name.size() + 1, std::string(kName) + quote + blanks);
}

}  // namespace xmptoolkit
