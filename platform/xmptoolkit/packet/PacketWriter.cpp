#include <algorithm>
#include <utility>

#include <xmptoolkit/model/Text.h>
#include <xmptoolkit/packet/Encoding.h>
#include <xmptoolkit/packet/PacketWriter.h>
#include <xmptoolkit/rdf/RDFWriter.h>

namespace xmptoolkit {

namespace {

constexpr std::string_view kHeader =
    "<?xpacket begin=\"\xEF\xBB\xBF\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?>";
constexpr std::size_t kDefaultPadding = 2048;
constexpr std::size_t kPaddingLine = 100;
constexpr std::size_t kUsualPacket = 8192;
constexpr XMP_Index kMostBaseIndent = 100;
constexpr XMP_OptionBits kKnownOptions =
    kXMP_OmitPacketWrapper | kXMP_ReadOnlyPacket | kXMP_ExactPacketLength | kXMP_EncodingMask;

bool Has(const PacketRequest& request, XMP_OptionBits bit) {
  return (request.mOptions & bit) != 0;
}

void CheckOptions(const PacketRequest& request) {
  const auto refuse = [](const char* why) { throw XMP_Error(kXMPErr_BadOptions, why); };
  if ((request.mOptions & ~kKnownOptions) != 0) refuse("the options hold unknown bits");
  if (!Has(request, kXMP_OmitPacketWrapper)) return;
  if (Has(request, kXMP_ReadOnlyPacket)) refuse("only a packet with a wrapper can be read-only");
  if (Has(request, kXMP_ExactPacketLength)) {
    refuse("only a packet with a wrapper can have an exact length");
  }
}

void CheckPadding(const PacketRequest& request) {
  if (Has(request, kXMP_ExactPacketLength)) return;
  const bool hasPadding =
      !Has(request, kXMP_OmitPacketWrapper) && !Has(request, kXMP_ReadOnlyPacket);
  if (request.mPadding != 0 && !hasPadding) {
    throw XMP_Error(kXMPErr_BadParam, "a packet without padding was given a padding length");
  }
  if (request.mPadding % UnitSize(EncodingOf(request.mOptions)) != 0) {
    throw XMP_Error(kXMPErr_BadParam, "the padding is not a whole number of characters");
  }
}

void CheckLayout(const PacketRequest& request) {
  const auto refuse = [](const char* why) { throw XMP_Error(kXMPErr_BadParam, why); };
  if (!IsWhiteSpace(request.mNewline)) refuse("the newline is not white space");
  if (!IsWhiteSpace(request.mIndent)) refuse("the indent is not white space");
  if (request.mBaseIndent < 0 || request.mBaseIndent > kMostBaseIndent) {
    refuse("the base indent is not between 0 and 100");
  }
}

RDFLayout MakeLayout(const PacketRequest& request) {
  RDFLayout layout;
  if (!request.mNewline.empty()) layout.mNewline = request.mNewline;
  if (!request.mIndent.empty()) layout.mIndent = request.mIndent;
  for (XMP_Index i = 0; i < request.mBaseIndent; ++i) layout.mBaseIndent += layout.mIndent;
  return layout;
}

// Spaces in lines of 100 bytes, the last line shorter, each with its newline at the end.
std::string MakePadding(std::size_t size, const std::string& newline) {
  std::string padding(size, ' ');
  for (std::size_t start = 0; start < size; start += kPaddingLine) {
    const std::size_t end = std::min(start + kPaddingLine, size);
    if (end - start >= newline.size())
      padding.replace(end - newline.size(), newline.size(), newline);
  }
  return padding;
}

// The number of padding characters in a packet whose other parts have `length` bytes.
std::size_t PaddingSize(const PacketRequest& request, std::size_t length) {
  const std::size_t unit = UnitSize(EncodingOf(request.mOptions));
  if (Has(request, kXMP_ExactPacketLength)) {
    if (request.mPadding < length || (request.mPadding - length) % unit != 0) {
      throw XMP_Error(kXMPErr_NoRoom, "the packet needs " + std::to_string(length) +
                                          " bytes without padding, which do not fit into " +
                                          std::to_string(request.mPadding));
    }
    return (request.mPadding - length) / unit;
  }
  if (Has(request, kXMP_ReadOnlyPacket)) return 0;
  return request.mPadding == 0 ? kDefaultPadding / unit : request.mPadding / unit;
}

}  // namespace

std::string WritePacket(const Document& document, const PacketRequest& request) {
  const Encoding encoding = EncodingOf(request.mOptions);
  CheckOptions(request);
  CheckPadding(request);
  CheckLayout(request);
  const RDFLayout layout = MakeLayout(request);
  if (Has(request, kXMP_OmitPacketWrapper)) return Encode(WriteRDF(document, layout), encoding);

  const char* access = Has(request, kXMP_ReadOnlyPacket) ? "r" : "w";
  const std::string end = layout.mBaseIndent + "<?xpacket end=\"" + access + "\"?>";
  std::string start = layout.mBaseIndent;
  start.reserve(kUsualPacket);
  start.append(kHeader).append(layout.mNewline);
  std::string packet = Encode(WriteRDF(document, layout, std::move(start)), encoding);
  const std::string trailer = Encode(end, encoding);
  const std::size_t padding = PaddingSize(request, packet.size() + trailer.size());
  packet += Encode(MakePadding(padding, layout.mNewline), encoding);
  packet += trailer;
  // A copy has no spare capacity: hosts keep packets by the thousand.
  return std::string(packet.data(), packet.size());
}

}  // namespace xmptoolkit
