#include <string>
#include <string_view>

#include <xmptoolkit/DocumentAccess.h>
#include <xmptoolkit/XMP.h>
#include <xmptoolkit/model/PathExpression.h>
#include <xmptoolkit/packet/PacketLocation.h>
#include <xmptoolkit/packet/PacketReplacement.h>

namespace {

std::string_view BytesOf(const void* buffer, XMP_StringLen size) {
  return {static_cast<const char*>(buffer), buffer == nullptr ? 0 : size};
}

}  // namespace

void TXMPUtils::ComposeArrayItemPath(const char* schemaNS, const char* arrayName,
                                     XMP_Index itemIndex, std::string* fullPath) {
  const xmptoolkit::PathExpression checked(schemaNS, arrayName);
  if (fullPath == nullptr) throw XMP_Error(kXMPErr_BadParam, "the string for the path is null");
  if (itemIndex < 1 && itemIndex != kXMP_ArrayLastItem) {
    throw XMP_Error(kXMPErr_BadParam, "the index " + std::to_string(itemIndex) + " of an item of " +
                                          checked.Describe() +
                                          " is below 1, where counting starts");
  }
  const std::string item =
      itemIndex == kXMP_ArrayLastItem ? std::string("last()") : std::to_string(itemIndex);
  *fullPath = std::string(arrayName) + "[" + item + "]";
}

XMP_PacketInfo TXMPUtils::LocatePacket(const void* buffer, XMP_StringLen size) {
  const std::string_view bytes = BytesOf(buffer, size);
  return xmptoolkit::WithoutSurroundings(bytes, xmptoolkit::FindPacket(bytes));
}

void TXMPUtils::ReplacePacket(const void* file, XMP_StringLen size,
                              const TXMPMeta<std::string>& metadata, std::string* newFile) {
  if (newFile == nullptr) throw XMP_Error(kXMPErr_BadParam, "the string for the file is null");
  *newFile =
      xmptoolkit::ReplacePacket(BytesOf(file, size), xmptoolkit::DocumentAccess::Of(metadata));
}
