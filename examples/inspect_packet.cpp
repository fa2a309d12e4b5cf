// Finds the XMP packet in a file of less than 4 GiB, and prints its position and its content.
#include <fstream>
#include <iostream>
#include <iterator>

#include <xmptoolkit/XMP.h>
#include <xmptoolkit/XMPTree.h>

namespace {

using xmptoolkit::TreeNode;

void Print(const TreeNode& node, const std::string& name, const std::string& indent) {
  std::cout << indent << name << (node.Value().empty() ? "" : " = ") << node.Value() << '\n';
  for (std::size_t i = 0; i < node.QualifierCount(); ++i) {
    const TreeNode qualifier = node.Qualifier(i);
    Print(qualifier, "?" + qualifier.Prefix() + ":" + qualifier.LocalName(), indent + "  ");
  }
  const bool isArray = (node.Options() & kXMP_PropValueIsArray) != 0;
  for (std::size_t i = 0; i < node.ChildCount(); ++i) {
    const TreeNode child = node.Child(i);
    Print(child,
          isArray ? "[" + std::to_string(i + 1) + "]" : child.Prefix() + ":" + child.LocalName(),
          indent + "  ");
  }
}

}  // namespace

int main(int argc, char** argv) {
  std::ifstream file(argc == 2 ? argv[1] : "", std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(file), {}};
  try {
    const auto size = static_cast<XMP_StringLen>(bytes.size());
    const XMP_PacketInfo packet = TXMPUtils::LocatePacket(bytes.data(), size);
    if (!packet.mHasWrapper) return 1;  // no packet, or the whole file is one
    std::cout << "bytes " << packet.mOffset << " to " << packet.mOffset + packet.mLength
              << (packet.mIsReadOnly ? ", read-only\n" : ", may be changed in place\n");
    const TXMPMeta<std::string> metadata(bytes.data() + packet.mOffset,
                                         static_cast<XMP_StringLen>(packet.mLength));
    Print(xmptoolkit::RootOf(metadata), "metadata", "");
  } catch (const XMP_Error& error) {
    std::cerr << error.GetErrMsg() << '\n';
    return 1;
  }
}
