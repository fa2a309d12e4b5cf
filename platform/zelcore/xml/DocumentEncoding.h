#pragma once

#include <cstddef>
#include <string_view>

// How a document says what its encoding is: by its byte-order mark, by the zero bytes of its first
// characters, and by the name in its XML declaration (XML 1.0, 4.3.3 and appendix F).
namespace zelcore::xml {

// What the first bytes show. Documents in any encoding that has ASCII's bytes look like UTF-8.
enum class UnicodeForm { kUTF8, kUTF16Big, kUTF16Little, kUTF32Big, kUTF32Little };

struct DetectedForm {
  UnicodeForm mForm = UnicodeForm::kUTF8;
  std::size_t mMarkBytes = 0;  // the length of the byte-order mark
};

// Looks for a byte-order mark or, without one, for the zero bytes of the first character.
DetectedForm DetectForm(std::string_view bytes);

// The bytes of a code unit: 1, 2 or 4.
constexpr std::size_t UnitSize(UnicodeForm form) {
  switch (form) {
    case UnicodeForm::kUTF8:
      return 1;
    case UnicodeForm::kUTF16Big:
    case UnicodeForm::kUTF16Little:
      return 2;
    case UnicodeForm::kUTF32Big:
    case UnicodeForm::kUTF32Little:
      return 4;
  }
  return 1;
}

constexpr bool IsBigEndian(UnicodeForm form) {
  return form == UnicodeForm::kUTF16Big || form == UnicodeForm::kUTF32Big;
}

// The form's name as a converter knows it: "UTF-16LE".
const char* NameOf(UnicodeForm form);

// Whether `encoding` is a name of the form; in any case, since XML ignores the case of such names.
bool IsNameOf(UnicodeForm form, std::string_view encoding);

// Whether `encoding` is a name of UTF-16 or UTF-32, in any order of bytes.
bool IsNameOfWideForm(std::string_view encoding);

// True when text begins with an XML declaration.
bool BeginsWithDeclaration(std::string_view text);

// The name of an encoding in the declaration at the start of `text`, as a part of it; a null view
// when there is none.
std::string_view DeclaredEncoding(std::string_view text);

}  // namespace zelcore::xml
