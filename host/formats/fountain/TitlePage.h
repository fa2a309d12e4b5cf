#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "formats/FindingList.h"
#include "formats/fountain/FountainText.h"

namespace zelstoryhost::fountain {

// A story's metadata text, line by line: "Title: Harbour Lights", or "Contact:" and below it lines
// that are indented by four blanks.
struct TitlePage {
  std::string mMetadata;
  std::size_t mLines = 0;  // of the script; 0 if it does not begin with a title page
  bool mHasEmphasis = false;
};

TitlePage ReadTitlePage(const FountainText& text, FindingList& findings);

// Writes a metadata text as a title page, which ends with an empty line; empty when there is none.
std::string WriteTitlePage(const std::string& metadata, FindingList& findings);

// Whether a script that begins with these lines has a title page.
bool BeginsWithTitlePage(std::string_view first, std::string_view second);

}  // namespace zelstoryhost::fountain
