#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "formats/fdx/FDXScript.h"

namespace zelstoryhost {

// A story's metadata from the lines of a title page. Without keys, the first line that is not blank
// is the title, and the one after "written by" or the like names the author.
std::string MetadataOf(const std::vector<TitleLine>& lines);

// A line of metadata as one of the title page: its key, which may be empty, and the rest.
struct KeyedLine {
  std::string_view mKey;
  std::u16string_view mText;
};

// The lines of a title page from which MetadataOf makes this metadata; none for an empty text. They
// refer to `metadata`.
std::vector<KeyedLine> TitlePageOf(std::u16string_view metadata);

}  // namespace zelstoryhost
