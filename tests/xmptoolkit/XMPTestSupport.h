#pragma once

#include <gmock/gmock.h>

#include "support/PacketText.h"

// Shared by the toolkit's tests: short ways to build packets, and to compare them and errors.
namespace xmptest {

using Meta = Packet;

inline constexpr const char* kQ = "urn:q#";
inline constexpr const char* kS = "urn:s#";

inline void RegisterTestNamespaces() {
  Meta::RegisterNamespace(kQ, "q", nullptr);
  Meta::RegisterNamespace(kS, "s", nullptr);
}

// rdf:RDF around `body`, which follows at column 1 of line 2; declares rdf, q and s.
inline std::string RDF(const std::string& body) {
  return "<rdf:RDF xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#' xmlns:q='urn:q#' "
         "xmlns:s='urn:s#'>\n" +
         body + "</rdf:RDF>";
}

// One rdf:Description around property elements; the first follows at column 1 of line 3. RES and LI
// stand for what is long and frequent.
inline std::string Described(const std::string& properties) {
  return RDF("<rdf:Description rdf:about=''>\n" +
             Replaced(properties, Rows("RES => rdf:parseType='Resource' ;; LI => rdf:li")) +
             "</rdf:Description>");
}

inline XMP_StringLen Size(std::string_view text) {
  return static_cast<XMP_StringLen>(text.size());
}

// The text of a table's cell, for parameters that may be null.
inline const char* Nullable(const std::string& cell) {
  return cell == "null" ? nullptr : cell.c_str();
}

inline Meta Parse(std::string_view packet) {
  return Meta(packet.data(), Size(packet));
}

inline std::string Serialize(const Meta& meta, XMP_OptionBits options = 0) {
  std::string packet;
  meta.SerializeToBuffer(&packet, options);
  return packet;
}

// The packet holds the same metadata, comments and spellings included: written again, it is equal.
inline void ExpectReadsAs(std::string_view packet, const Meta& meta, XMP_OptionBits options = 0) {
  const Meta read = Parse(packet);
  EXPECT_TRUE(AreEqual(meta, read, xmptoolkit::Equality::kMetadata)) << packet;
  EXPECT_TRUE(Serialize(read, options) == Serialize(meta, options)) << packet;
}

// The number and message of the XMP_Error that `action` throws; "none" when it throws none.
template <typename Action>
std::string ErrorOf(Action action) {
  try {
    action();
  } catch (const XMP_Error& error) {
    return std::to_string(error.GetID()) + " " + error.GetErrMsg();
  }
  return "none";
}

// `error` is how number and message begin; what follows "..." is found somewhere after it.
template <typename Action>
void ExpectError(Action action, std::string_view error) {
  const std::size_t start = error.find("...");
  const std::string part(start == error.npos ? "" : error.substr(start + 3));
  EXPECT_THAT(ErrorOf(action), testing::AllOf(testing::StartsWith(std::string(error, 0, start)),
                                              testing::HasSubstr(part)));
}

}  // namespace xmptest
