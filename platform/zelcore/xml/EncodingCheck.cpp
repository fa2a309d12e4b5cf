#include <algorithm>
#include <string>

#include <zelcore/xml/EncodingCheck.h>
#include <zelcore/xml/TextWindow.h>

namespace zelcore::xml {
namespace {

// The document's beginning up to the first ">", as far as it is ASCII: all of an XML declaration.
std::string DeclarationText(UnicodeForm form, std::string_view bytes) {
  const std::size_t size = UnitSize(form);
  std::string text;
  for (; bytes.size() >= size && !text.ends_with('>'); bytes.remove_prefix(size)) {
    const std::string_view unit = bytes.substr(0, size);
    const char value = IsBigEndian(form) ? unit.back() : unit.front();
    const auto zeros = static_cast<std::size_t>(std::count(unit.begin(), unit.end(), '\0'));
    if (static_cast<unsigned char>(value) >= 0x80 || zeros + 1 != size) break;
    text += value;
  }
  return text;
}

Position PlaceIn(const std::string& text, std::string_view part) {
  TextWindow window;
  window.Append(text);
  return window.At(static_cast<std::size_t>(part.data() - text.data()));
}

}  // namespace

std::optional<SyntaxError> CheckEncoding(const DetectedForm& detected, std::string_view bytes,
                                         bool isWhole) {
  const std::string text = DeclarationText(detected.mForm, bytes);
  if (!isWhole && BeginsWithDeclaration(text) && !text.ends_with('>')) {
    return SyntaxError{{}, "the XML declaration is longer than the limit"};
  }
  const bool isWide = detected.mForm != UnicodeForm::kUTF8;
  const bool hasMark = detected.mMarkBytes > 0;
  const std::string form = NameOf(detected.mForm);
  const std::string_view declared = DeclaredEncoding(text);
  if (declared.data() == nullptr) {
    if (!isWide || hasMark) return std::nullopt;
    return SyntaxError{{},
                       "the document is in " + form + " without byte-order mark or declaration"};
  }
  const bool isKnown = isWide || hasMark;
  if (isKnown ? IsNameOf(detected.mForm, declared) : !IsNameOfWideForm(declared)) {
    return std::nullopt;
  }
  return SyntaxError{PlaceIn(text, declared), "the declared encoding is not that of the document" +
                                                  (isKnown ? ", which is " + form : "")};
}

}  // namespace zelcore::xml
