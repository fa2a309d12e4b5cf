#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace zelstoryhost {

// The name of the root element of an XML document that begins with `head`, in any encoding that has
// the bytes of ASCII or is UTF-16 or UTF-32. Empty for XML whose root does not show so far; none
// for what is no XML.
std::optional<std::string> RootElementIn(std::string_view head);

// A form of documents that is no script text, from the bytes that its files begin with: "a PDF
// document"; none for all others.
std::optional<std::string_view> ForeignFormIn(std::string_view head);

}  // namespace zelstoryhost
