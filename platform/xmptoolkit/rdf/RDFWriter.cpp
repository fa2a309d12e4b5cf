#include <algorithm>
#include <map>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

#include <xmptoolkit/XMPTypes.h>
#include <xmptoolkit/model/PrefixTable.h>
#include <xmptoolkit/model/Text.h>
#include <xmptoolkit/rdf/RDFWriter.h>
#include <zelcore/xml/SAXDriver.h>

namespace xmptoolkit {

namespace {

// All are declared at the rdf:Description, in one tag that the XML reader must accept.
constexpr std::size_t kMostNamespaces = 8000;
static_assert(kMostNamespaces < zelcore::xml::kMostAttributes);

class Writer {
 public:
  Writer(const Document& document, const RDFLayout& layout, std::string xml)
      : mDocument(document),
        mPrefixes(document),
        mXML(std::move(xml)),
        mProperties(document.mNames, mPrefixes.Prefixes(), layout, mXML) {}

  std::string Write();

 private:
  void CheckNamespaces() const;
  void WriteMeta();
  void WriteDescription(int level);
  void WriteComments(Place place, int level) {
    mProperties.WriteComments(mDocument.CommentsAt(place), level);
  }

  const Document& mDocument;
  const PrefixTable mPrefixes;
  std::string mXML;
  PropertyWriter mProperties;
};

std::string Writer::Write() {
  CheckNamespaces();
  WriteComments(Place::kBeforeMeta, 0);
  WriteMeta();
  WriteComments(Place::kBeforeRDF, 1);
  mProperties.BeginLine(1);
  mXML += "<rdf:RDF";
  mProperties.WriteAttribute("xmlns:rdf", kRDFNamespace);
  mXML += '>';
  mProperties.EndLine();
  WriteComments(Place::kBeforeDescription, 2);
  WriteDescription(2);
  WriteComments(Place::kAfterDescription, 2);
  mProperties.WriteLine(1, "</rdf:RDF>");
  WriteComments(Place::kAfterRDF, 1);
  mProperties.WriteLine(0, "</x:xmpmeta>");
  WriteComments(Place::kAfterMeta, 0);
  return std::move(mXML);
}

// What is written must be readable: XML readers limit the namespaces in force.
void Writer::CheckNamespaces() const {
  std::set<std::string_view> ofMeta;
  for (const MetaAttribute& attribute : mDocument.mMetaAttributes) ofMeta.insert(attribute.mURI);
  if (mPrefixes.Declared().size() + ofMeta.size() <= kMostNamespaces) return;
  throw XMP_Error(kXMPErr_BadXMP, "more than " + std::to_string(kMostNamespaces) +
                                      " namespaces are used, more than a packet may declare");
}

void Writer::WriteMeta() {
  mProperties.BeginLine(0);
  mXML += "<x:xmpmeta";
  mProperties.WriteAttribute("xmlns:x", kMetaNamespace);
  PrefixChooser chooser;
  std::map<std::string_view, std::string> prefixes = {
      {"", ""}, {kMetaNamespace, "x:"}, {kXMLNamespace, "xml:"}};
  for (const MetaAttribute& attribute : mDocument.mMetaAttributes) {
    const auto [known, isNew] = prefixes.try_emplace(attribute.mURI);
    if (isNew) {
      const std::string prefix =
          chooser.Take(attribute.mPrefix) ? attribute.mPrefix : chooser.Fresh();
      mProperties.WriteAttribute("xmlns:" + prefix, attribute.mURI);
      known->second = prefix + ":";
    }
    mProperties.WriteAttribute(known->second + attribute.mLocalName, attribute.mValue);
  }
  mXML += '>';
  mProperties.EndLine();
}

void Writer::WriteDescription(int level) {
  const Node& root = mDocument.mRoot;
  mProperties.BeginLine(level);
  mXML += "<rdf:Description";
  mProperties.WriteAttribute("rdf:about", mDocument.mAbout);
  for (const NamespaceId space : mPrefixes.Declared()) {
    mProperties.EndLine();
    mProperties.BeginLine(level + 1);
    mXML += "xmlns:" + mPrefixes.PrefixOf(space) + "=\"";
    AppendEscapedAttribute(mDocument.mNames.URI(space), mXML);
    mXML += '"';
  }
  if (root.Children().Empty() && root.CommentsAtEnd().empty()) {
    mXML += "/>";
    return mProperties.EndLine();
  }
  mXML += '>';
  mProperties.EndLine();
  mProperties.WriteFields(root, level + 1);
  mProperties.WriteLine(level, "</rdf:Description>");
}

}  // namespace

std::string WriteRDF(const Document& document, const RDFLayout& layout, std::string xml) {
  return Writer(document, layout, std::move(xml)).Write();
}

}  // namespace xmptoolkit
