#include "scenexmp/DialogSequence.h"

#include "scenexmp/SceneProperties.h"
#include "scenexmp/ToolkitGuard.h"

namespace zelstoryparser {
namespace {

std::string ItemPath(XMP_Index index) {
  std::string path;
  TXMPUtils::ComposeArrayItemPath(kDialogSequence.mNamespaceURI, kDialogSequence.mName, index,
                                  &path);
  return path;
}

void SetField(const std::string& item, const StoryProperty& field, const UTF16String& text,
              TXMPMeta<std::string>& xmp) {
  xmp.SetStructField(kDialogSequence.mNamespaceURI, item.c_str(), field.mNamespaceURI, field.mName,
                     ToolkitValue(text), 0);
}

// Returns an empty text if the field is absent.
UTF16String GetField(const TXMPMeta<std::string>& xmp, const std::string& item,
                     const StoryProperty& field, XMP_OptionBits& options, bool& anyFound) {
  std::string value;
  const bool found = xmp.GetStructField(kDialogSequence.mNamespaceURI, item.c_str(),
                                        field.mNamespaceURI, field.mName, &value, &options);
  anyFound = anyFound || found;
  return zelcore::utility::UTF8to16(value);
}

}  // namespace

bool WriteDialogSequence(const CharacterDialogPairs& pairs, TXMPMeta<std::string>& xmp) {
  return ToolkitAccepts([&] {
    for (const auto& [character, dialog] : pairs) {
      xmp.AppendArrayItem(kDialogSequence.mNamespaceURI, kDialogSequence.mName,
                          kXMP_PropArrayIsOrdered, nullptr, kXMP_PropValueIsStruct);
      const std::string item = ItemPath(kXMP_ArrayLastItem);
      SetField(item, kCharacterField, character, xmp);
      SetField(item, kDialogField, dialog, xmp);
    }
  });
}

bool RemoveDialogSequence(TXMPMeta<std::string>& xmp) {
  return ToolkitAccepts([&] { DeleteIfPresent(kDialogSequence, xmp); });
}

bool ReadDialogSequence(const TXMPMeta<std::string>& xmp, XMP_OptionBits& options,
                        CharacterDialogPairs& pairs) {
  pairs.clear();
  RegisterStoryNamespaces();
  bool anyFound = false;
  const bool accepted = ToolkitAccepts([&] {
    const XMP_Index count = CountDialogItems(xmp);
    for (XMP_Index index = 1; index <= count; ++index) {
      const std::string item = ItemPath(index);
      UTF16String character = GetField(xmp, item, kCharacterField, options, anyFound);
      UTF16String dialog = GetField(xmp, item, kDialogField, options, anyFound);
      if (character.empty() || dialog.empty()) continue;
      pairs.emplace_back(std::move(character), std::move(dialog));
    }
  });
  return accepted && anyFound;
}

XMP_Index CountDialogItems(const TXMPMeta<std::string>& xmp) {
  return xmp.CountArrayItems(kDialogSequence.mNamespaceURI, kDialogSequence.mName);
}

}  // namespace zelstoryparser
