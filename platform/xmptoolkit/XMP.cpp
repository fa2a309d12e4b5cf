#include <optional>
#include <string_view>
#include <utility>

#include <xmptoolkit/XMP.h>
#include <xmptoolkit/model/Document.h>
#include <xmptoolkit/model/NamespaceRegistry.h>
#include <xmptoolkit/model/PathExpression.h>
#include <xmptoolkit/model/PropertyAccess.h>
#include <xmptoolkit/packet/PacketReader.h>
#include <xmptoolkit/packet/PacketWriter.h>

using xmptoolkit::Document;
using xmptoolkit::Node;
using xmptoolkit::PathExpression;

namespace {

std::optional<std::string_view> OptionalText(const char* text) {
  if (text == nullptr) return std::nullopt;
  return text;
}

std::string_view TextOrNothing(const char* text) {
  return text == nullptr ? std::string_view() : text;
}

PathExpression PathInto(const Document& document, const char* schemaNS, const char* text) {
  return {schemaNS, text, &document.mNames};
}

PathExpression FieldPath(const Document& document, const char* schemaNS, const char* structName,
                         const char* fieldNS, const char* fieldName) {
  PathExpression path = PathInto(document, schemaNS, structName);
  path.AppendField(fieldNS, fieldName);
  return path;
}

bool Read(const Document& document, const PathExpression& path, std::string* value,
          XMP_OptionBits* options) {
  const Node* node = FindNode(document, path);
  if (node == nullptr) return false;
  if (value != nullptr) *value = node->Value();
  if (options != nullptr) {
    const bool isQualifier = path.Steps().back().mKind == PathExpression::StepKind::kQualifier;
    *options = node->ReceivedOptions() | (isQualifier ? kXMP_PropIsQualifier : 0);
  }
  return true;
}

}  // namespace

template <typename tStringObj>
TXMPMeta<tStringObj>::TXMPMeta() : mDocument(std::make_unique<Document>()) {}

template <typename tStringObj>
TXMPMeta<tStringObj>::TXMPMeta(const void* buffer, XMP_StringLen size) {
  ParseFromBuffer(buffer, size);
}

template <typename tStringObj>
TXMPMeta<tStringObj>::TXMPMeta(const TXMPMeta& other)
    : mDocument(std::make_unique<Document>(*other.mDocument)) {}

template <typename tStringObj>
TXMPMeta<tStringObj>::TXMPMeta(TXMPMeta&& other) noexcept = default;

template <typename tStringObj>
TXMPMeta<tStringObj>& TXMPMeta<tStringObj>::operator=(const TXMPMeta& other) {
  mDocument = std::make_unique<Document>(*other.mDocument);
  return *this;
}

template <typename tStringObj>
TXMPMeta<tStringObj>& TXMPMeta<tStringObj>::operator=(TXMPMeta&& other) noexcept = default;

template <typename tStringObj>
TXMPMeta<tStringObj>::~TXMPMeta() = default;

template <typename tStringObj>
bool TXMPMeta<tStringObj>::RegisterNamespace(const char* namespaceURI, const char* suggestedPrefix,
                                             tStringObj* registeredPrefix) {
  const std::string_view suggested = TextOrNothing(suggestedPrefix);
  const std::string prefix =
      xmptoolkit::NamespaceRegistry::Global().Register(TextOrNothing(namespaceURI), suggested);
  if (registeredPrefix != nullptr) *registeredPrefix = prefix;
  return prefix == suggested;
}

template <typename tStringObj>
bool TXMPMeta<tStringObj>::GetProperty(const char* schemaNS, const char* propName,
                                       tStringObj* value, XMP_OptionBits* options) const {
  return Read(*mDocument, PathInto(*mDocument, schemaNS, propName), value, options);
}

template <typename tStringObj>
void TXMPMeta<tStringObj>::SetProperty(const char* schemaNS, const char* propName,
                                       const char* value, XMP_OptionBits options) {
  SetNode(*mDocument, PathInto(*mDocument, schemaNS, propName), OptionalText(value), options);
}

template <typename tStringObj>
void TXMPMeta<tStringObj>::SetProperty(const char* schemaNS, const char* propName,
                                       const tStringObj& value, XMP_OptionBits options) {
  SetNode(*mDocument, PathInto(*mDocument, schemaNS, propName), value, options);
}

template <typename tStringObj>
bool TXMPMeta<tStringObj>::DoesPropertyExist(const char* schemaNS, const char* propName) const {
  return FindNode(*mDocument, PathInto(*mDocument, schemaNS, propName)) != nullptr;
}

template <typename tStringObj>
void TXMPMeta<tStringObj>::DeleteProperty(const char* schemaNS, const char* propName) {
  DeleteNode(*mDocument, PathInto(*mDocument, schemaNS, propName));
}

template <typename tStringObj>
XMP_Index TXMPMeta<tStringObj>::CountArrayItems(const char* schemaNS, const char* arrayName) const {
  return CountItems(*mDocument, PathInto(*mDocument, schemaNS, arrayName));
}

template <typename tStringObj>
void TXMPMeta<tStringObj>::AppendArrayItem(const char* schemaNS, const char* arrayName,
                                           XMP_OptionBits arrayOptions, const char* itemValue,
                                           XMP_OptionBits itemOptions) {
  AppendItem(*mDocument, PathInto(*mDocument, schemaNS, arrayName), arrayOptions,
             OptionalText(itemValue), itemOptions);
}

template <typename tStringObj>
bool TXMPMeta<tStringObj>::GetStructField(const char* schemaNS, const char* structName,
                                          const char* fieldNS, const char* fieldName,
                                          tStringObj* fieldValue, XMP_OptionBits* options) const {
  return Read(*mDocument, FieldPath(*mDocument, schemaNS, structName, fieldNS, fieldName),
              fieldValue, options);
}

template <typename tStringObj>
void TXMPMeta<tStringObj>::SetStructField(const char* schemaNS, const char* structName,
                                          const char* fieldNS, const char* fieldName,
                                          const char* fieldValue, XMP_OptionBits options) {
  SetNode(*mDocument, FieldPath(*mDocument, schemaNS, structName, fieldNS, fieldName),
          OptionalText(fieldValue), options);
}

template <typename tStringObj>
void TXMPMeta<tStringObj>::SetStructField(const char* schemaNS, const char* structName,
                                          const char* fieldNS, const char* fieldName,
                                          const tStringObj& fieldValue, XMP_OptionBits options) {
  SetNode(*mDocument, FieldPath(*mDocument, schemaNS, structName, fieldNS, fieldName), fieldValue,
          options);
}

template <typename tStringObj>
void TXMPMeta<tStringObj>::ParseFromBuffer(const void* buffer, XMP_StringLen size) {
  const std::string_view bytes(static_cast<const char*>(buffer), buffer == nullptr ? 0 : size);
  mDocument = std::make_unique<Document>(xmptoolkit::ReadPacket(bytes));
}

template <typename tStringObj>
void TXMPMeta<tStringObj>::SerializeToBuffer(tStringObj* rdfString, XMP_OptionBits options,
                                             XMP_StringLen padding, const char* newline,
                                             const char* indent, XMP_Index baseIndent) const {
  if (rdfString == nullptr) throw XMP_Error(kXMPErr_BadParam, "the string for the packet is null");
  *rdfString = WritePacket(
      *mDocument, {options, padding, TextOrNothing(newline), TextOrNothing(indent), baseIndent});
}

template class TXMPMeta<std::string>;
