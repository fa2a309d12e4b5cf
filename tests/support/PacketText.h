#pragma once

#include <algorithm>
#include <vector>

#include <xmptoolkit/XMP.h>
#include <xmptoolkit/XMPTree.h>
#include <zelmetadata/Path.h>

#include "support/Table.h"
#include "support/Text.h"

using Packet = ::TXMPMeta<std::string>;
using Paths = std::vector<zelmetadata::Path>;

inline constexpr const char* kScript = zelmetadata::kScriptSchemaURI;
inline constexpr const char* kMedia = zelmetadata::kDynamicMediaSchemaURI;

// Metadata from "s:action=text; A:x": properties of the script (s) and dynamic-media (d)
// namespaces, and items of the dialogue sequence, whose empty fields are left out.
inline Packet MakePacket(std::string_view text) {
  Packet::RegisterNamespace(kScript, "xmpScript", nullptr);
  Packet::RegisterNamespace(kMedia, "xmpDM", nullptr);
  Packet::RegisterNamespace(zelmetadata::kDublinCoreSchemaURI, "dc", nullptr);
  Packet packet;
  if (text.empty()) return packet;
  table::Split(text, ";", [&](std::string_view entry) {
    const std::size_t colon = entry.find(':'), equals = entry.find('=');
    const std::string first(entry.substr(0, colon)),
        last(entry.substr(std::min(equals, colon) + 1));
    if (equals != entry.npos) {
      const std::string name(entry.substr(2, equals - 2));
      packet.SetProperty(first == "d" ? kMedia : kScript, name.c_str(),
                         std::string(entry.substr(equals + 1)));
      return;
    }
    packet.AppendArrayItem(kScript, "dialogSequence", kXMP_PropArrayIsOrdered, nullptr,
                           kXMP_PropValueIsStruct);
    const char* item = "dialogSequence[last()]";
    if (!first.empty()) packet.SetStructField(kScript, item, kScript, "character", first);
    if (!last.empty()) packet.SetStructField(kScript, item, kScript, "dialog", last);
  });
  return packet;
}

// Metadata as s:name='value', name=[items], name={fields}; a top level's names in order, fields as
// they stand, without the prefix of the property that they are in.
inline std::string PacketText(const xmptoolkit::TreeNode& node, const std::string& outerURI) {
  const bool isArray = (node.Options() & kXMP_PropValueIsArray) != 0;
  if (!isArray && (node.Options() & kXMP_PropValueIsStruct) == 0) return "'" + node.Value() + "'";
  std::vector<std::string> parts;
  for (std::size_t i = 0; i < node.ChildCount(); ++i) {
    const xmptoolkit::TreeNode child = node.Child(i);
    const std::string& uri = child.NamespaceURI();
    const std::string prefix = uri == outerURI  ? ""
                               : uri == kScript ? "s:"
                               : uri == kMedia  ? "d:"
                                                : uri;
    parts.push_back((isArray ? "" : prefix + child.LocalName() + "=") +
                    PacketText(child, isArray ? outerURI : uri));
  }
  if (outerURI.empty()) std::sort(parts.begin(), parts.end());
  std::string text;
  for (const std::string& part : parts) text += (text.empty() ? "" : " ") + part;
  if (outerURI.empty()) return text;
  const bool isOrdered = (node.Options() & kXMP_PropArrayIsOrdered) != 0;
  return isOrdered ? "[" + text + "]" : isArray ? "bag[" + text + "]" : "{" + text + "}";
}

inline std::string PacketText(const Packet& packet) {
  return PacketText(xmptoolkit::RootOf(packet), "");
}

inline std::string PacketText(const std::string& bytes) {
  return PacketText(Packet(bytes.data(), static_cast<XMP_StringLen>(bytes.size())));
}

inline std::string PathsText(const Paths& paths) {
  std::string text;
  for (const zelmetadata::Path& path : paths) text += path.AsString() + " ";
  return text;
}
