#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include <zelcore/String.h>

#include "script/StoryPlace.h"

namespace zelstoryhost {

// Writes an XML document: UTF-8, two blanks of indentation for every open element, except inside of
// elements that hold text. Texts come out of a reader as they went in.
class XMLWriter {
 public:
  // `document` and `place` name the place in errors. Both must live as long as the writer.
  XMLWriter(const std::string& document, const StoryPlace& place)
      : mDocument(document), mPlace(place) {}

  // Begins an element in the current one; End ends it.
  XMLWriter& Begin(std::string_view name);
  void End();

  // Adds an attribute to the element that was just begun. Throws Error, with the place in the
  // story, for a character that XML cannot hold.
  XMLWriter& Attribute(std::string_view name, std::u16string_view value);
  XMLWriter& Attribute(std::string_view name, std::string_view utf8);

  // Adds an attribute, unless it is empty.
  XMLWriter& OptionalAttribute(std::string_view name, std::u16string_view value) {
    return value.empty() ? *this : Attribute(name, value);
  }

  // Adds character data to the current element, which then has no child. Throws as Attribute does.
  XMLWriter& Text(std::u16string_view text);

  // The document, once all elements have ended.
  std::string Take();

 private:
  void CloseTag();
  void BreakLine();
  void Append(std::u16string_view text, bool isAttribute);

  struct Element {
    std::string_view mName;
    bool mHasChildren = false;
  };

  const std::string& mDocument;
  const StoryPlace& mPlace;
  std::string mBytes = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>";
  std::vector<Element> mOpen;
  bool mIsInTag = false;  // the start tag of the current element is not complete
};

}  // namespace zelstoryhost
