#include <algorithm>

#include <xmptoolkit/model/Text.h>
#include <xmptoolkit/packet/XMLDeclaration.h>
#include <zelcore/String.h>

namespace xmptoolkit {

namespace {

bool IsASCII(std::string_view text) {
  return std::all_of(text.begin(), text.end(),
                     [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

}  // namespace

bool IsASCIIName(std::string_view name) {
  using zelcore::utility::EqualsIgnoringASCIICase;
  return EqualsIgnoringASCIICase(name, "US-ASCII") || EqualsIgnoringASCIICase(name, "ASCII");
}

bool MayDeclare(std::string_view name, Encoding encoding, std::string_view packetText) {
  const bool isASCII = encoding == Encoding::kUTF8 && IsASCIIName(name) && IsASCII(packetText);
  return isASCII || zelcore::xml::IsNameOf(encoding, name);
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
