#pragma once

#include <string>
#include <string_view>

#include <gmock/gmock.h>

#include <xmptoolkit/XMP.h>
#include <xmptoolkit/XMPTree.h>

#include "support/Table.h"

// Shared by the toolkit's tests: short ways to build packets, and to write down trees and errors.
namespace xmptest {

using Meta = TXMPMeta<std::string>;

inline constexpr const char* kQ = "urn:q#";
inline constexpr const char* kS = "urn:s#";

inline void RegisterTestNamespaces() {
  Meta::RegisterNamespace(kQ, "q", nullptr);
  Meta::RegisterNamespace(kS, "s", nullptr);
}

// rdf:RDF around `body`, which follows at column 1 of line 2; declares rdf, q and s.
inline std::string RDF(std::string_view body) {
  return "<rdf:RDF xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#' xmlns:q='urn:q#' "
         "xmlns:s='urn:s#'>\n" +
         std::string(body) + "</rdf:RDF>";
}

// One rdf:Description around property elements; the first follows at column 1 of line 3.
inline std::string Described(std::string_view properties) {
  return RDF("<rdf:Description rdf:about=''>\n" + std::string(properties) + "</rdf:Description>");
}

inline XMP_StringLen Size(std::string_view text) {
  return static_cast<XMP_StringLen>(text.size());
}

inline std::string Repeated(std::string_view text, int times) {
  std::string repeated;
  for (int i = 0; i < times; ++i) repeated += text;
  return repeated;
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

inline void ExpectReadsAs(std::string_view packet, const Meta& meta,
                          xmptoolkit::Equality equality = xmptoolkit::Equality::kFile) {
  EXPECT_TRUE(AreEqual(meta, Parse(packet), equality)) << packet;
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

// `error` is how number and message begin; what follows "..." stands somewhere behind.
template <typename Action>
void ExpectError(Action action, std::string_view error) {
  const std::size_t start = error.find("...");
  const std::string part(start == error.npos ? "" : error.substr(start + 3));
  EXPECT_THAT(ErrorOf(action), testing::AllOf(testing::StartsWith(std::string(error, 0, start)),
                                              testing::HasSubstr(part)));
}

inline std::string ShortName(const xmptoolkit::TreeNode& node) {
  const std::string& uri = node.NamespaceURI();
  if (uri == kQ) return "q:" + node.LocalName();
  if (uri == kS) return "s:" + node.LocalName();
  if (uri.ends_with("rdf-syntax-ns#")) return "rdf:" + node.LocalName();
  if (uri.ends_with("XML/1998/namespace")) return "xml:" + node.LocalName();
  return "{" + uri + "}" + node.LocalName();
}

// A tree on one line: 'text', <URI>, {fields}, bag(items), seq(items), alt(items), lang(items);
// each qualifier behind, as /name=value.
inline std::string Show(const xmptoolkit::TreeNode& node) {
  const XMP_OptionBits options = node.Options();
  const bool isStruct = (options & kXMP_PropValueIsStruct) != 0;
  const char* array = (options & kXMP_PropArrayIsAltText) != 0     ? "lang"
                      : (options & kXMP_PropArrayIsAlternate) != 0 ? "alt"
                      : (options & kXMP_PropArrayIsOrdered) != 0   ? "seq"
                      : (options & kXMP_PropValueIsArray) != 0     ? "bag"
                                                                   : "";
  const bool isURI = (options & kXMP_PropValueIsURI) != 0;
  const std::string_view brackets = isStruct ? "{}" : *array != '\0' ? "()" : isURI ? "<>" : "''";
  std::string text = array;
  (text += brackets[0]) += node.Value();
  for (std::size_t i = 0; i < node.ChildCount(); ++i) {
    if (i > 0) text += ' ';
    if (isStruct) text += ShortName(node.Child(i)) + "=";
    text += Show(node.Child(i));
  }
  text += brackets[1];
  for (std::size_t i = 0; i < node.QualifierCount(); ++i) {
    text += "/" + ShortName(node.Qualifier(i)) + "=" + Show(node.Qualifier(i));
  }
  return text;
}

inline std::string Show(const Meta& meta) {
  return Show(xmptoolkit::RootOf(meta));
}

}  // namespace xmptest
