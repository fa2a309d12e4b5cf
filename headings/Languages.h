#pragma once

#include <span>
#include <string_view>

namespace zelstoryparser {

// A file of the folder `languages`.
struct LanguageFile {
  std::string_view mName;  // in small letters: "french"
  std::string_view mText;
};

// All of them, in the order of their names. The build makes this table.
std::span<const LanguageFile> LanguageFiles();

}  // namespace zelstoryparser
