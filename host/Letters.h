#pragma once

#include <utf8proc.h>

namespace zelstoryhost {

// Whether a character is a letter, a mark on one, or a number, in any script.
inline bool IsLetterOrDigit(char32_t character) {
  const utf8proc_category_t category = utf8proc_category(static_cast<utf8proc_int32_t>(character));
  return category >= UTF8PROC_CATEGORY_LU && category <= UTF8PROC_CATEGORY_NO;
}

}  // namespace zelstoryhost
