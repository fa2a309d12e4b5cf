// Changes two properties in the XMP packet of a file, and prints which of its bytes become which.
#include <fstream>
#include <iostream>
#include <iterator>

#include <xmptoolkit/PacketPatch.h>
#include <zelmetadata/Path.h>

int main(int argc, char** argv) {
  std::ifstream file(argc == 2 ? argv[1] : "", std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(file), {}};
  const auto size = static_cast<XMP_StringLen>(bytes.size());
  try {
    constexpr const char* kDublinCore = "http://purl.org/dc/elements/1.1/";
    TXMPMeta<std::string>::RegisterNamespace(kDublinCore, "dc", nullptr);
    const TXMPMeta<std::string> before(bytes.data(), size);
    TXMPMeta<std::string> after(before);
    after.SetProperty(zelmetadata::kDynamicMediaSchemaURI, "scene", "12A");
    after.AppendArrayItem(kDublinCore, "subject", kXMP_PropValueIsArray, "fog");

    const auto patch = xmptoolkit::PatchPacket(bytes.data(), size, before, after);
    for (const auto& change : patch.mChanges) {
      std::cout << "at " << change.mOffset << ": \"" << bytes.substr(change.mOffset, change.mLength)
                << "\" becomes \"" << change.mBytes << "\"\n";
    }
    std::cout << patch.mNewFile.size() - bytes.size() << " bytes longer\n";
  } catch (const XMP_Error& error) {
    std::cerr << error.GetErrMsg() << '\n';
    return 1;
  }
}
