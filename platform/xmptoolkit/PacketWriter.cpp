#include "PacketWriter.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "Encoding.h"
#include "RDFWriter.h"
#include "Text.h"

namespace xmptoolkit {

namespace {

constexpr std::string_view kHeader =
    "<?xpacket begin=\"\xEF\xBB\xBF\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?>";
constexpr std::size_t kDefaultPadding = 2048;
constexpr std::size_t kPaddingLine = 100;
constexpr std::size_t kUsualPacket = 8192;
constexpr XMP_OptionBits kKnownOptions = kXMP_OmitPacketWrapper | kXMP_ReadOnlyPacket |
                                         kXMP_UseCompactFormat | kXMP_ExactPacketLength |
                                         kXMP_EncodingMask;

bool Has(const PacketRequest& request, XMP_OptionBits bit) {
  return (request.mOptions & bit) != 0;
}

Encoding EncodingOf(const PacketRequest& request) {
  switch (request.mOptions & kXMP_EncodingMask) {
    case kXMP_EncodeUTF8:
      return Encoding::kUTF8;
    case kXMP_EncodeUTF16Big:
      return Encoding::kUTF16Big;
    case kXMP_EncodeUTF16Little:
      return Encoding::kUTF16Little;
    case kXMP_EncodeUTF32Big:
      return Encoding::kUTF32Big;
    case kXMP_EncodeUTF32Little:
      return Encoding::kUTF32Little;
    default:
      throw XMP_Error(kXMPErr_BadOptions, "the options name no encoding of a packet");
  }
}

void CheckOptions(const PacketRequest& request) {
  const auto refuse = [](const char* why) { throw XMP_Error(kXMPErr_BadOptions, why); };
  if ((request.mOptions & ~kKnownOptions) != 0) refuse("the options hold bits without a meaning");
  if (!Has(request, kXMP_OmitPacketWrapper)) return;
  if (Has(request, kXMP_ReadOnlyPacket)) refuse("without a wrapper no packet is read-only");
  if (Has(request, kXMP_ExactPacketLength))
    refuse("without a wrapper no padding makes a length exact");
}

void CheckArguments(const PacketRequest& request) {
  const auto refuse = [](const char* why) { throw XMP_Error(kXMPErr_BadParam, why); };
  const bool hasPadding =
      !Has(request, kXMP_OmitPacketWrapper) && !Has(request, kXMP_ReadOnlyPacket);
  if (request.mPadding != 0 && !hasPadding && !Has(request, kXMP_ExactPacketLength)) {
    refuse("padding is asked for where a packet has none");
  }
  if (!Has(request, kXMP_ExactPacketLength) &&
      request.mPadding % UnitSize(EncodingOf(request)) != 0) {
    refuse("the padding is no whole number of characters");
  }
  if (!IsWhiteSpace(request.mNewline)) refuse("the newline is no white space");
  if (!IsWhiteSpace(request.mIndent)) refuse("the indent is no white space");
  if (request.mBaseIndent < 0 || request.mBaseIndent > kXMP_MaxNesting) {
    refuse("the base indent lies outside of 0 to 100");
  }
}

Layout MakeLayout(const PacketRequest& request) {
  Layout layout;
  if (!request.mNewline.empty()) layout.mNewline = request.mNewline;
  if (!request.mIndent.empty()) layout.mIndent = request.mIndent;
  for (XMP_Index i = 0; i < request.mBaseIndent; ++i) layout.mBaseIndent += layout.mIndent;
  layout.mIsCompact = Has(request, kXMP_UseCompactFormat);
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

// The number of padding characters that the request asks for, beside `length` bytes of the rest.
std::size_t PaddingSize(const PacketRequest& request, std::size_t length) {
  const std::size_t unit = UnitSize(EncodingOf(request));
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
  const Encoding encoding = EncodingOf(request);
  CheckOptions(request);
  CheckArguments(request);
  const Layout layout = MakeLayout(request);
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
  // Without room to spare: hosts keep packets by the thousand.
  return std::string(packet.data(), packet.size());
}

}  // namespace xmptoolkit
