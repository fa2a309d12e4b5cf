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

// Qualifiers that are attributes of the element that holds the value.
bool IsPlainQualifier(const Node& qualifier) {
  return qualifier.Name() == kLangName || qualifier.Name() == kDatatypeName;
}

bool HasComments(const Node& node) {
  return !node.CommentsBefore().empty() || !node.CommentsAtEnd().empty();
}

// True when an attribute can say everything: a name and a value. An attribute's value is text,
// except that of rdf:type, which is a URI.
bool FitsAttribute(const Node& node) {
  return node.IsSimple() && node.IsURI() == (node.Name() == kTypeName) &&
         !node.Is(Node::kWrittenWithValue) && node.Qualifiers().Empty() && !HasComments(node);
}

// True for the form <p rdf:resource="value" q:qualifier="text"/>.
bool HasQualifiersOfResource(const Node& node) {
  if (!node.IsURI() || !node.Is(Node::kQualifiersOfResource)) return false;
  const NodeList& qualifiers = node.Qualifiers();
  return std::all_of(qualifiers.begin(), qualifiers.end(), [](const Node& qualifier) {
    return qualifier.Name() == kLangName || FitsAttribute(qualifier);
  });
}

// True when the value needs an rdf:value element, beside its qualifiers.
bool NeedsValueElement(const Node& node) {
  if (node.Is(Node::kWrittenWithValue)) return true;
  const NodeList& qualifiers = node.Qualifiers();
  const bool isPlain = std::all_of(qualifiers.begin(), qualifiers.end(), IsPlainQualifier);
  return !isPlain && !HasQualifiersOfResource(node);
}

std::string_view ContainerName(const Node& array) {
  if (array.Is(kXMP_PropArrayIsAlternate)) return "rdf:Alt";
  return array.Is(kXMP_PropArrayIsOrdered) ? "rdf:Seq" : "rdf:Bag";
}

class Writer {
 public:
  Writer(const Document& document, const RDFLayout& layout, std::string xml)
      : mDocument(document),
        mLayout(layout),
        mPrefixes(document),
        mIndentation(layout.mBaseIndent),
        mXML(std::move(xml)) {}

  std::string Write();

 private:
  // Which of a node's plain qualifiers an element carries as attributes.
  struct Carried {
    bool mLang = true;
    bool mDatatype = true;
  };

  void CheckNamespaces() const;
  void WriteMeta();
  void WriteDescription(int level);
  void WriteProperty(const Node& node, int level);
  void WriteWithValueElement(const Node& node, int level);
  void WriteElement(const Node& node, NameId name, int level, Carried carried);
  void WriteSimple(const Node& node, NameId name);
  void WriteArray(const Node& node, NameId name, int level);
  void WriteStruct(const Node& node, NameId name, int level);
  void WriteFields(const Node& node, int level);

  void WriteComments(const Comments& comments, int level);
  const std::string& WrittenName(NameId name);
  void WriteAttribute(std::string_view name, std::string_view value);
  void BeginLine(int level);
  void EndLine() { mXML += mLayout.mNewline; }
  void WriteLine(int level, std::string_view markup);
  void CloseTag(NameId name);

  const Document& mDocument;
  const RDFLayout& mLayout;
  const PrefixTable mPrefixes;
  std::vector<std::string> mWrittenNames;  // with their prefixes, by number; empty until needed
  std::string mIndentation;                // of the deepest line so far
  std::string mXML;
};

std::string Writer::Write() {
  CheckNamespaces();
  WriteComments(mDocument.CommentsAt(Place::kBeforeMeta), 0);
  WriteMeta();
  WriteComments(mDocument.CommentsAt(Place::kBeforeRDF), 1);
  BeginLine(1);
  mXML += "<rdf:RDF";
  WriteAttribute("xmlns:rdf", kRDFNamespace);
  mXML += '>';
  EndLine();
  WriteComments(mDocument.CommentsAt(Place::kBeforeDescription), 2);
  WriteDescription(2);
  WriteComments(mDocument.CommentsAt(Place::kAfterDescription), 2);
  WriteLine(1, "</rdf:RDF>");
  WriteComments(mDocument.CommentsAt(Place::kAfterRDF), 1);
  WriteLine(0, "</x:xmpmeta>");
  WriteComments(mDocument.CommentsAt(Place::kAfterMeta), 0);
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
  BeginLine(0);
  mXML += "<x:xmpmeta";
  WriteAttribute("xmlns:x", kMetaNamespace);
  PrefixChooser chooser;
  std::map<std::string_view, std::string> prefixes = {
      {"", ""}, {kMetaNamespace, "x:"}, {kXMLNamespace, "xml:"}};
  for (const MetaAttribute& attribute : mDocument.mMetaAttributes) {
    const auto [known, isNew] = prefixes.try_emplace(attribute.mURI);
    if (isNew) {
      const std::string prefix =
          chooser.Take(attribute.mPrefix) ? attribute.mPrefix : chooser.Fresh();
      WriteAttribute("xmlns:" + prefix, attribute.mURI);
      known->second = prefix + ":";
    }
    WriteAttribute(known->second + attribute.mLocalName, attribute.mValue);
  }
  mXML += '>';
  EndLine();
}

void Writer::WriteDescription(int level) {
  const Node& root = mDocument.mRoot;
  BeginLine(level);
  mXML += "<rdf:Description";
  WriteAttribute("rdf:about", mDocument.mAbout);
  for (const NamespaceId space : mPrefixes.Declared()) {
    EndLine();
    BeginLine(level + 1);
    mXML += "xmlns:" + mPrefixes.PrefixOf(space) + "=\"";
    AppendEscapedAttribute(mDocument.mNames.URI(space), mXML);
    mXML += '"';
  }
  if (root.Children().Empty() && root.CommentsAtEnd().empty()) {
    mXML += "/>";
    return EndLine();
  }
  mXML += '>';
  EndLine();
  WriteFields(root, level + 1);
  WriteLine(level, "</rdf:Description>");
}

void Writer::WriteProperty(const Node& node, int level) {
  WriteComments(node.CommentsBefore(), level);
  if (NeedsValueElement(node)) return WriteWithValueElement(node, level);
  WriteElement(node, node.Name(), level, {});
}

void Writer::WriteWithValueElement(const Node& node, int level) {
  const bool langAtValue = node.Is(Node::kLangAtValue);
  BeginLine(level);
  mXML += '<';
  mXML += WrittenName(node.Name());
  const Node* lang = node.FindQualifier(kLangName);
  if (lang != nullptr && !langAtValue) WriteAttribute("xml:lang", lang->Value());
  mXML += " rdf:parseType=\"Resource\">";
  EndLine();
  WriteElement(node, kValueName, level + 1, {langAtValue, true});
  for (const Node& qualifier : node.Qualifiers()) {
    if (!IsPlainQualifier(qualifier)) WriteProperty(qualifier, level + 1);
  }
  BeginLine(level);
  CloseTag(node.Name());
}

void Writer::WriteElement(const Node& node, NameId name, int level, Carried carried) {
  BeginLine(level);
  mXML += '<';
  mXML += WrittenName(name);
  for (const Node& qualifier : node.Qualifiers()) {
    if (qualifier.Name() == kLangName && carried.mLang) {
      WriteAttribute("xml:lang", qualifier.Value());
    }
    if (qualifier.Name() == kDatatypeName && carried.mDatatype) {
      WriteAttribute("rdf:datatype", qualifier.Value());
    }
  }
  if (node.IsSimple()) return WriteSimple(node, name);
  node.IsArray() ? WriteArray(node, name, level) : WriteStruct(node, name, level);
}

void Writer::WriteSimple(const Node& node, NameId name) {
  if (node.IsURI()) {
    WriteAttribute("rdf:resource", node.Value());
    if (!NeedsValueElement(node)) {
      for (const Node& qualifier : node.Qualifiers()) {
        if (IsPlainQualifier(qualifier)) continue;
        WriteAttribute(WrittenName(qualifier.Name()), qualifier.Value());
      }
    }
  }
  if (node.IsURI() || node.Value().empty()) {
    mXML += "/>";
    return EndLine();
  }
  mXML += '>';
  AppendEscapedText(node.Value(), mXML);
  CloseTag(name);
}

void Writer::WriteArray(const Node& node, NameId name, int level) {
  const std::string container(ContainerName(node));
  mXML += '>';
  EndLine();
  if (node.Children().Empty() && node.CommentsAtEnd().empty()) {
    WriteLine(level + 1, "<" + container + "/>");
  } else {
    WriteLine(level + 1, "<" + container + ">");
    for (const Node& item : node.Children()) WriteProperty(item, level + 2);
    WriteComments(node.CommentsAtEnd(), level + 2);
    WriteLine(level + 1, "</" + container + ">");
  }
  BeginLine(level);
  CloseTag(name);
}

void Writer::WriteStruct(const Node& node, NameId name, int level) {
  const bool isEmpty = node.Children().Empty() && node.CommentsAtEnd().empty();
  mXML += " rdf:parseType=\"Resource\"";
  mXML += isEmpty ? "/>" : ">";
  EndLine();
  if (isEmpty) return;
  WriteFields(node, level + 1);
  BeginLine(level);
  CloseTag(name);
}

void Writer::WriteFields(const Node& node, int level) {
  for (const Node& field : node.Children()) WriteProperty(field, level);
  WriteComments(node.CommentsAtEnd(), level);
}

void Writer::WriteComments(const Comments& comments, int level) {
  for (const std::string& comment : comments) WriteLine(level, comment);
}

const std::string& Writer::WrittenName(NameId name) {
  if (name >= mWrittenNames.size()) mWrittenNames.resize(name + 1);
  std::string& written = mWrittenNames[name];
  if (written.empty()) {
    written = mPrefixes.PrefixOf(mDocument.mNames.NamespaceOf(name)) + ':' +
              mDocument.mNames.LocalName(name);
  }
  return written;
}

void Writer::WriteAttribute(std::string_view name, std::string_view value) {
  mXML += ' ';
  mXML += name;
  mXML += "=\"";
  AppendEscapedAttribute(value, mXML);
  mXML += '"';
}

void Writer::BeginLine(int level) {
  const std::size_t size =
      mLayout.mBaseIndent.size() + static_cast<std::size_t>(level) * mLayout.mIndent.size();
  while (mIndentation.size() < size) mIndentation += mLayout.mIndent;
  mXML.append(mIndentation, 0, size);
}

void Writer::WriteLine(int level, std::string_view markup) {
  BeginLine(level);
  mXML += markup;
  EndLine();
}

void Writer::CloseTag(NameId name) {
  mXML += "</";
  mXML += WrittenName(name);
  mXML += '>';
  EndLine();
}

}  // namespace

std::string WriteRDF(const Document& document, const RDFLayout& layout, std::string xml) {
  return Writer(document, layout, std::move(xml)).Write();
}

}  // namespace xmptoolkit
