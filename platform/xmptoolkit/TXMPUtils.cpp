#include <xmptoolkit/XMP.h>

#include "PacketLocation.h"
#include "PathExpression.h"

namespace {

XMP_OptionBits OptionOf(xmptoolkit::Encoding encoding) {
  using xmptoolkit::Encoding;
  switch (encoding) {
    case Encoding::kUTF8:
      return kXMP_EncodeUTF8;
    case Encoding::kUTF16Big:
      return kXMP_EncodeUTF16Big;
    case Encoding::kUTF16Little:
      return kXMP_EncodeUTF16Little;
    case Encoding::kUTF32Big:
      return kXMP_EncodeUTF32Big;
    case Encoding::kUTF32Little:
      return kXMP_EncodeUTF32Little;
  }
  return kXMP_EncodeUTF8;
}

}  // namespace

void TXMPUtils::ComposeArrayItemPath(const char* schemaNS, const char* arrayName,
                                     XMP_Index itemIndex, std::string* fullPath) {
  const xmptoolkit::PathExpression checked(schemaNS, arrayName);
  if (fullPath == nullptr) throw XMP_Error(kXMPErr_BadParam, "there is no string for the path");
  if (itemIndex < 1 && itemIndex != kXMP_ArrayLastItem) {
    throw XMP_Error(kXMPErr_BadParam, "the item " + std::to_string(itemIndex) + " of " +
                                          checked.Describe() +
                                          " is asked for, but items are counted from 1");
  }
  const std::string item =
      itemIndex == kXMP_ArrayLastItem ? std::string("last()") : std::to_string(itemIndex);
  *fullPath = std::string(arrayName) + "[" + item + "]";
}

XMP_PacketInfo TXMPUtils::LocatePacket(const void* buffer, XMP_StringLen size) {
  const std::string_view bytes(static_cast<const char*>(buffer), buffer == nullptr ? 0 : size);
  const xmptoolkit::PacketRange range = xmptoolkit::LocatePacket(bytes);
  return {range.mOffset, range.mLength, OptionOf(range.mEncoding), range.mHasWrapper,
          range.mIsReadOnly};
}
