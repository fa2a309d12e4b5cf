#include "RDFWriter.h"

#include <algorithm>
#include <map>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

#include <xmptoolkit/XMP.h>
#include <zelcore/xml/SAXDriver.h>

#include "PrefixTable.h"
#include "Text.h"

namespace xmptoolkit {

namespace {

// In the compact layout, what is longer or more than this stays in elements: XML readers limit the
// length of a tag, and compare each of its attributes with every other.
constexpr std::size_t kLongestAttribute = 1000;
constexpr std::size_t kMostAttributes = 1000;

// All are in force at the rdf:Description, beside attributes.
constexpr std::size_t kMostNamespaces = 8000;
static_assert(kMostNamespaces + kMostAttributes < zelcore::xml::kMostAttributes);

// Qualifiers that are attributes of the element which holds the value.
bool IsPlainQualifier(const Node& qualifier) {
  return qualifier.Name() == kLangName || qualifier.Name() == kDatatypeName;
}

bool HasRemarks(const Node& node) {
  return !node.RemarksBefore().empty() || !node.RemarksAtEnd().empty();
}

// True when nothing but a name and a value would have to be written. An attribute's value is text,
// except that of rdf:type, which is a URI.
bool FitsAttribute(const Node& node) {
  return node.IsSimple() && node.IsURI() == (node.Name() == kTypeName) &&
         !node.Is(Node::kWrittenWithValue) && node.Qualifiers().Empty() && !HasRemarks(node);
}

// True for the form <p rdf:resource="value" q:qualifier="text"/>.
bool HasQualifiersOfResource(const Node& node) {
  if (!node.IsURI() || !node.Is(Node::kQualifiersOfResource)) return false;
  const NodeList& qualifiers = node.Qualifiers();
  return std::all_of(qualifiers.begin(), qualifiers.end(), [](const Node& qualifier) {
    return qualifier.Name() == kLangName || FitsAttribute(qualifier);
  });
}

// True when the value has to stand in an rdf:value of its own, beside its qualifiers.
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
  Writer(const Document& document, const Layout& layout, std::string xml)
      : mDocument(document),
        mLayout(layout),
        mPrefixes(document),
        mIndentation(layout.mBaseIndent),
        mXML(std::move(xml)) {}

  std::string Write();

 private:
  // Which of a node's attributes an element carries.
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

  // In the compact layout, writes those fields as attributes that can be; the others remain.
  std::size_t WriteFieldAttributes(const Node& node, int level, bool onOwnLines);
  void WriteFieldAttribute(const Node& field);
  bool IsAttribute(const Node& owner, const Node& field) const {
    return mLayout.mIsCompact && owner.Children().Size() <= kMostAttributes &&
           field.Value().size() <= kLongestAttribute && FitsAttribute(field);
  }

  void WriteRemarks(const Remarks& remarks, int level);
  void WriteName(NameId name);
  void WriteAttribute(std::string_view name, std::string_view value);
  void BeginLine(int level);
  void EndLine() { mXML += mLayout.mNewline; }
  void WriteLine(int level, std::string_view markup);
  void CloseTag(NameId name);

  const Document& mDocument;
  const Layout& mLayout;
  const PrefixTable mPrefixes;
  std::vector<std::string> mWrittenNames;  // with their prefixes, by number; empty until needed
  std::string mIndentation;                // of the deepest line so far
  std::string mXML;
};

std::string Writer::Write() {
  CheckNamespaces();
  WriteRemarks(mDocument.RemarksAt(Place::kBeforeMeta), 0);
  WriteMeta();
  WriteRemarks(mDocument.RemarksAt(Place::kBeforeRDF), 1);
  WriteLine(1, "<rdf:RDF xmlns:rdf=\"" + std::string(kRDFNamespace) + "\">");
  WriteRemarks(mDocument.RemarksAt(Place::kBeforeDescription), 2);
  WriteDescription(2);
  WriteRemarks(mDocument.RemarksAt(Place::kAfterDescription), 2);
  WriteLine(1, "</rdf:RDF>");
  WriteRemarks(mDocument.RemarksAt(Place::kAfterRDF), 1);
  WriteLine(0, "</x:xmpmeta>");
  WriteRemarks(mDocument.RemarksAt(Place::kAfterMeta), 0);
  return std::move(mXML);
}

// What is written has to be readable: XML readers limit the namespaces in force.
void Writer::CheckNamespaces() const {
  std::set<std::string_view> ofMeta;
  for (const MetaAttribute& attribute : mDocument.mMetaAttributes) ofMeta.insert(attribute.mURI);
  if (mPrefixes.Declared().size() + ofMeta.size() <= kMostNamespaces) return;
  throw XMP_Error(kXMPErr_BadXMP, "more than " + std::to_string(kMostNamespaces) +
                                      " namespaces are used, which no packet may declare");
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
  std::vector<NamespaceId> declared = mPrefixes.Declared();
  if (mLayout.mIsCompact) {  // attributes come first, so reading again meets them in another order
    std::sort(declared.begin(), declared.end(), [this](NamespaceId left, NamespaceId right) {
      return mPrefixes.PrefixOf(left) < mPrefixes.PrefixOf(right);
    });
  }
  for (const NamespaceId space : declared) {
    EndLine();
    BeginLine(level + 1);
    mXML += "xmlns:" + mPrefixes.PrefixOf(space) + "=\"";
    AppendEscapedAttribute(mDocument.mNames.URI(space), mXML);
    mXML += '"';
  }
  const std::size_t written = WriteFieldAttributes(root, level + 1, true);
  if (written == root.Children().Size() && root.RemarksAtEnd().empty()) {
    mXML += "/>";
    return EndLine();
  }
  mXML += '>';
  EndLine();
  WriteFields(root, level + 1);
  WriteLine(level, "</rdf:Description>");
}

void Writer::WriteProperty(const Node& node, int level) {
  WriteRemarks(node.RemarksBefore(), level);
  if (NeedsValueElement(node)) return WriteWithValueElement(node, level);
  WriteElement(node, node.Name(), level, {});
}

void Writer::WriteWithValueElement(const Node& node, int level) {
  const bool langAtValue = node.Is(Node::kLangAtValue);
  BeginLine(level);
  mXML += '<';
  WriteName(node.Name());
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
  WriteName(name);
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
        mXML += ' ';
        WriteFieldAttribute(qualifier);
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
  if (node.Children().Empty() && node.RemarksAtEnd().empty()) {
    WriteLine(level + 1, "<" + container + "/>");
  } else {
    WriteLine(level + 1, "<" + container + ">");
    for (const Node& item : node.Children()) WriteProperty(item, level + 2);
    WriteRemarks(node.RemarksAtEnd(), level + 2);
    WriteLine(level + 1, "</" + container + ">");
  }
  BeginLine(level);
  CloseTag(name);
}

void Writer::WriteStruct(const Node& node, NameId name, int level) {
  const NodeList& fields = node.Children();
  const bool isEmpty = fields.Empty() && node.RemarksAtEnd().empty();
  const auto attributes = std::count_if(
      fields.begin(), fields.end(), [&](const Node& field) { return IsAttribute(node, field); });
  const bool fitsTag = static_cast<std::size_t>(attributes) == fields.Size();
  if (!isEmpty && fitsTag && node.RemarksAtEnd().empty()) {
    WriteFieldAttributes(node, level, false);
    mXML += "/>";
    return EndLine();
  }
  if (attributes == 0) mXML += " rdf:parseType=\"Resource\"";
  mXML += isEmpty ? "/>" : ">";
  EndLine();
  if (isEmpty) return;
  if (attributes == 0) {
    WriteFields(node, level + 1);
  } else {
    BeginLine(level + 1);
    mXML += "<rdf:Description";
    WriteFieldAttributes(node, level, false);
    mXML += '>';
    EndLine();
    WriteFields(node, level + 2);
    WriteLine(level + 1, "</rdf:Description>");
  }
  BeginLine(level);
  CloseTag(name);
}

void Writer::WriteFields(const Node& node, int level) {
  for (const Node& field : node.Children()) {
    if (!IsAttribute(node, field)) WriteProperty(field, level);
  }
  WriteRemarks(node.RemarksAtEnd(), level);
}

std::size_t Writer::WriteFieldAttributes(const Node& node, int level, bool onOwnLines) {
  std::size_t written = 0;
  for (const Node& field : node.Children()) {
    if (!IsAttribute(node, field)) continue;
    if (onOwnLines) {
      EndLine();
      BeginLine(level);
    } else {
      mXML += ' ';
    }
    WriteFieldAttribute(field);
    ++written;
  }
  return written;
}

void Writer::WriteFieldAttribute(const Node& field) {
  WriteName(field.Name());
  mXML += "=\"";
  AppendEscapedAttribute(field.Value(), mXML);
  mXML += '"';
}

void Writer::WriteRemarks(const Remarks& remarks, int level) {
  for (const std::string& remark : remarks) WriteLine(level, remark);
}

void Writer::WriteName(NameId name) {
  if (name >= mWrittenNames.size()) mWrittenNames.resize(name + 1);
  std::string& written = mWrittenNames[name];
  if (written.empty()) {
    written = mPrefixes.PrefixOf(mDocument.mNames.NamespaceOf(name)) + ':' +
              mDocument.mNames.LocalName(name);
  }
  mXML += written;
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
  WriteName(name);
  mXML += '>';
  EndLine();
}

}  // namespace

std::string WriteRDF(const Document& document, const Layout& layout, std::string xml) {
  return Writer(document, layout, std::move(xml)).Write();
}

}  // namespace xmptoolkit
