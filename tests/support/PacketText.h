#pragma once

#include <algorithm>
#include <vector>

#include <xmptoolkit/XMP.h>
#include <xmptoolkit/XMPTree.h>
#include <zelmetadata/Path.h>

#include "support/Table.h"

using Packet = ::TXMPMeta<std::string>;
using Paths = std::vector<zelmetadata::Path>;

inline constexpr const char* kScript = zelmetadata::kScriptSchemaURI;
inline constexpr const char* kMedia = zelmetadata::kDynamicMediaSchemaURI;

// Metadata from "s:action=text; A:x": properties of the script (s) and dynamic-media (d)
// namespaces, and items of the dialogue sequence, without their empty fields.
inline Packet MakePacket(std::string_view text) {
  Packet::RegisterNamespace(kScript, "xmpScript", nullptr);
  Packet::RegisterNamespace(kMedia, "xmpDM", nullptr);
  Packet::RegisterNamespace(zelmetadata::kDublinCoreSchemaURI, "dc", nullptr);
  Packet packet;
  if (text.empty()) return packet;
  table::Split(text, ";", [&](std::string_view entry) {
    const std::size_t colon = entry.find(':'), equals = entry.find('=');
    const std::string first(entry, 0, colon), last(entry.substr(std::min(equals, colon) + 1));
    if (equals != entry.npos) {
      const std::string name(entry, 2, equals - 2), value(entry.substr(equals + 1));
      return packet.SetProperty(first == "d" ? kMedia : kScript, name.c_str(), value);
    }
    packet.AppendArrayItem(kScript, "dialogSequence", kXMP_PropArrayIsOrdered, nullptr,
                           kXMP_PropValueIsStruct);
    const char* item = "dialogSequence[last()]";
    if (!first.empty()) packet.SetStructField(kScript, item, kScript, "character", first);
    if (!last.empty()) packet.SetStructField(kScript, item, kScript, "dialog", last);
  });
  return packet;
}

inline std::string ShortName(const xmptoolkit::TreeNode& node) {
  static const std::vector<Row> kPrefixes = {
      {std::string("{") + kScript + "}", "s:"},
      {std::string("{") + kMedia + "}", "d:"},
      {"{urn:q#}", "q:"},
      {"{urn:s#}", "s:"},
      {"{http://www.w3.org/1999/02/22-rdf-syntax-ns#}", "rdf:"},
      {"{http://www.w3.org/XML/1998/namespace}", "xml:"}};
  return Replaced("{" + node.NamespaceURI() + "}" + node.LocalName(), kPrefixes);
}

// A tree on one line: 'text', <URI>, {fields}, bag(items), seq(items), alt(items), lang(items);
// each qualifier follows as /name=value.
inline std::string Show(const xmptoolkit::TreeNode& node) {
  const auto is = [&](XMP_OptionBits bits) { return (node.Options() & bits) != 0; };
  const char* open = is(kXMP_PropValueIsStruct)      ? "{"
                     : is(kXMP_PropArrayIsAltText)   ? "lang("
                     : is(kXMP_PropArrayIsAlternate) ? "alt("
                     : is(kXMP_PropArrayIsOrdered)   ? "seq("
                     : is(kXMP_PropValueIsArray)     ? "bag("
                     : is(kXMP_PropValueIsURI)       ? "<"
                                                     : "'";
  std::string text = open + node.Value();
  for (std::size_t i = 0; i < node.ChildCount(); ++i) {
    if (i > 0) text += ' ';
    if (*open == '{') text += ShortName(node.Child(i)) + "=";
    text += Show(node.Child(i));
  }
  text += *open == '{' ? "}" : *open == '<' ? ">" : *open == '\'' ? "'" : ")";
  for (std::size_t i = 0; i < node.QualifierCount(); ++i) {
    text += "/" + ShortName(node.Qualifier(i)) + "=" + Show(node.Qualifier(i));
  }
  return text;
}

inline std::string Show(const Packet& packet) {
  return Show(xmptoolkit::RootOf(packet));
}

// The properties of a packet as s:name='value', whatever their order.
inline std::string PacketText(const Packet& packet) {
  const xmptoolkit::TreeNode root = xmptoolkit::RootOf(packet);
  std::vector<std::string> properties;
  for (std::size_t i = 0; i < root.ChildCount(); ++i) {
    properties.push_back(ShortName(root.Child(i)) + "=" + Show(root.Child(i)));
  }
  std::sort(properties.begin(), properties.end());
  std::string text;
  for (const std::string& property : properties) text += (text.empty() ? "" : " ") + property;
  return text;
}

inline std::string PacketText(const std::string& bytes) {
  return PacketText(Packet(bytes.data(), static_cast<XMP_StringLen>(bytes.size())));
}

inline std::string PathsText(const Paths& paths) {
  std::string text;
  for (const zelmetadata::Path& path : paths) text += path.AsString() + " ";
  return text;
}
