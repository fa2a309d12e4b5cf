#include <algorithm>

#include <xmptoolkit/model/Names.h>
#include <xmptoolkit/model/Text.h>
#include <xmptoolkit/patch/ScopedPrefixes.h>
#include <xmptoolkit/patch/StyledWriter.h>
#include <zelcore/UTF8.h>

namespace xmptoolkit {

namespace {

// Characters beyond ASCII as references.
std::string ToASCII(std::string_view xml) {
  std::string ascii;
  while (!xml.empty()) {
    const auto decoded = zelcore::utility::DecodeUTF8(xml);
    if (decoded.mCharacter < 0x80) {
      ascii += xml.front();
    } else {
      ascii += "&#" + std::to_string(static_cast<std::uint32_t>(decoded.mCharacter)) + ";";
    }
    xml.remove_prefix(decoded.mBytes);
  }
  return ascii;
}

// What separates the attributes of an element, so that each may have its own line.
std::string AttributeSpace(const SourceTree& tree, std::size_t element) {
  const auto attributes = tree.Attributes(element);
  if (attributes.size() < 2) return " ";
  return std::string(tree.SpaceBefore(attributes.back().mWhole.mBegin));
}

}  // namespace

std::string StyledWriter::Element(const Node& node, std::size_t parent,
                                  std::string_view space) const {
  const ScopedPrefixes prefixes(mTree, parent, mDocument, {&node});
  const RDFLayout layout = mStyle.LayoutAfter(space);
  std::string xml;
  PropertyWriter writer(mDocument.mNames, prefixes.Prefixes(), layout, xml);
  writer.WriteProperty(node, 0);
  xml.erase(0, layout.mBaseIndent.size());
  xml.erase(xml.size() - layout.mNewline.size());
  std::string declarations;
  for (const NamespaceId added : prefixes.New()) declarations += Declaration(" ", added, prefixes);
  xml.insert(1 + writer.WrittenName(node.Name()).size(), declarations);
  return Finished(std::move(xml));
}

std::string StyledWriter::Description(const std::vector<const Node*>& properties, std::size_t rdf,
                                      std::size_t model, std::string_view space) const {
  const ScopedPrefixes prefixes(mTree, rdf, mDocument, properties);
  const RDFLayout layout = mStyle.LayoutAfter(space);
  // Without a model, declarations have lines of their own, as in a packet of the toolkit's own.
  const std::string gap = model != rdf || layout.mNewline.empty()
                              ? AttributeSpace(mTree, model)
                              : layout.mNewline + layout.mBaseIndent + layout.mIndent;
  std::string xml = "<rdf:Description";
  PropertyWriter writer(mDocument.mNames, prefixes.Prefixes(), layout, xml);
  const SourceAttribute* about = mTree.FindAttribute(model, kRDFNamespace, "about");
  if (about != nullptr) xml.append(" ").append(mTree.Text(about->mWhole));
  if (model == rdf) writer.WriteAttribute("rdf:about", mDocument.mAbout);
  for (const NamespaceId added : prefixes.New()) xml += Declaration(gap, added, prefixes);
  std::vector<const Node*> elements;
  for (const Node* property : properties) {
    if (!mStyle.mSimpleAreAttributes || !FitsAttribute(*property)) {
      elements.push_back(property);
      continue;
    }
    xml += gap + writer.WrittenName(property->Name()) + '=' + mStyle.mQuote;
    xml += AttributeValue(property->Value(), mStyle.mQuote) + mStyle.mQuote;
  }
  if (elements.empty()) return Finished(xml + "/>");
  xml += '>';
  writer.EndLine();
  for (const Node* property : elements) writer.WriteProperty(*property, 1);
  writer.BeginLine(0);
  return Finished(xml + "</rdf:Description>");
}

std::string StyledWriter::Attribute(const Node& node, std::size_t element) const {
  const NameTable& names = mDocument.mNames;
  const auto prefix = mTree.PrefixOf(element, names.URI(names.NamespaceOf(node.Name())));
  if (!prefix) return {};
  std::string xml = AttributeSpace(mTree, element) + *prefix + ':' + names.LocalName(node.Name());
  const char quote = mTree.Text()[mTree.Attributes(element).back().mValue.mEnd];
  xml.append("=").append(1, quote);
  return xml + AttributeValue(node.Value(), quote) + quote;
}

std::string StyledWriter::Text(std::string_view value) const {
  std::string xml;
  AppendEscapedText(value, xml, mStyle.mLineEnd);
  return Finished(std::move(xml));
}

std::string StyledWriter::AttributeValue(std::string_view value, char quote) const {
  std::string xml;
  AppendEscapedAttribute(value, xml, quote);
  return Finished(std::move(xml));
}

std::string StyledWriter::Declaration(std::string_view gap, NamespaceId space,
                                      const ScopedPrefixes& prefixes) const {
  std::string xml(gap);
  xml.append("xmlns:").append(prefixes.Prefixes()[space]).append("=").append(1, mStyle.mQuote);
  AppendEscapedAttribute(mDocument.mNames.URI(space), xml, mStyle.mQuote);
  return xml + mStyle.mQuote;
}

std::string StyledWriter::Finished(std::string xml) const {
  return mASCIIOnly ? ToASCII(xml) : xml;
}

}  // namespace xmptoolkit
