#include <algorithm>

#include <xmptoolkit/model/Text.h>
#include <xmptoolkit/rdf/PropertyWriter.h>

namespace xmptoolkit {

namespace {

// Qualifiers that are attributes of the element that holds the value.
bool IsPlainQualifier(const Node& qualifier) {
  return qualifier.Name() == kLangName || qualifier.Name() == kDatatypeName;
}

bool HasComments(const Node& node) {
  return !node.CommentsBefore().empty() || !node.CommentsAtEnd().empty();
}

// True when an attribute can say all that the file has.
bool IsBareAttribute(const Node& node) {
  return FitsAttribute(node) && !node.Is(Node::kWrittenWithValue) && !HasComments(node);
}

// True for the form <p rdf:resource="value" q:qualifier="text"/>.
bool HasQualifiersOfResource(const Node& node) {
  if (!node.IsURI() || !node.Is(Node::kQualifiersOfResource)) return false;
  const NodeList& qualifiers = node.Qualifiers();
  return std::all_of(qualifiers.begin(), qualifiers.end(), [](const Node& qualifier) {
    return qualifier.Name() == kLangName || IsBareAttribute(qualifier);
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

}  // namespace

bool FitsAttribute(const Node& node) {
  return node.IsSimple() && node.IsURI() == (node.Name() == kTypeName) && node.Qualifiers().Empty();
}

void PropertyWriter::WriteProperty(const Node& node, int level) {
  if (NeedsValueElement(node)) return WriteWithValueElement(node, level);
  WriteElement(node, node.Name(), level, {});
}

void PropertyWriter::WriteWithComments(const Node& node, int level) {
  WriteComments(node.CommentsBefore(), level);
  WriteProperty(node, level);
}

void PropertyWriter::WriteWithValueElement(const Node& node, int level) {
  const bool langAtValue = node.Is(Node::kLangAtValue);
  BeginLine(level);
  mXML += '<';
  mXML += WrittenName(node.Name());
  const Node* lang = node.FindQualifier(kLangName);
  if (lang != nullptr && !langAtValue) WriteAttribute("xml:lang", lang->Value());
  WriteAttribute("rdf:parseType", "Resource");
  mXML += '>';
  EndLine();
  WriteElement(node, kValueName, level + 1, {langAtValue, true});
  for (const Node& qualifier : node.Qualifiers()) {
    if (!IsPlainQualifier(qualifier)) WriteWithComments(qualifier, level + 1);
  }
  BeginLine(level);
  CloseTag(node.Name());
}

void PropertyWriter::WriteElement(const Node& node, NameId name, int level, Carried carried) {
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

void PropertyWriter::WriteSimple(const Node& node, NameId name) {
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
  AppendEscapedText(node.Value(), mXML, mLayout.mTextNewline);
  CloseTag(name);
}

void PropertyWriter::WriteArray(const Node& node, NameId name, int level) {
  const std::string container(ContainerName(node));
  mXML += '>';
  EndLine();
  if (node.Children().Empty() && node.CommentsAtEnd().empty()) {
    WriteLine(level + 1, "<" + container + "/>");
  } else {
    WriteLine(level + 1, "<" + container + ">");
    for (const Node& item : node.Children()) WriteWithComments(item, level + 2);
    WriteComments(node.CommentsAtEnd(), level + 2);
    WriteLine(level + 1, "</" + container + ">");
  }
  BeginLine(level);
  CloseTag(name);
}

void PropertyWriter::WriteStruct(const Node& node, NameId name, int level) {
  const NodeList& fields = node.Children();
  const bool areAttributes = mLayout.mFieldsAreAttributes && !fields.Empty() &&
                             node.CommentsAtEnd().empty() &&
                             std::all_of(fields.begin(), fields.end(), IsBareAttribute);
  if (mLayout.mStructForm == StructForm::kResource) {
    if (!areAttributes) return WriteResource(node, name, level);
    WriteAttributeFields(node);
    mXML += "/>";
    return EndLine();
  }
  mXML += '>';
  EndLine();
  BeginLine(level + 1);
  mXML += "<rdf:Description";
  if (areAttributes) WriteAttributeFields(node);
  const bool isEmpty = areAttributes || (fields.Empty() && node.CommentsAtEnd().empty());
  mXML += isEmpty ? "/>" : ">";
  EndLine();
  if (!isEmpty) {
    WriteFields(node, level + 2);
    WriteLine(level + 1, "</rdf:Description>");
  }
  BeginLine(level);
  CloseTag(name);
}

void PropertyWriter::WriteResource(const Node& node, NameId name, int level) {
  const bool isEmpty = node.Children().Empty() && node.CommentsAtEnd().empty();
  WriteAttribute("rdf:parseType", "Resource");
  mXML += isEmpty ? "/>" : ">";
  EndLine();
  if (isEmpty) return;
  WriteFields(node, level + 1);
  BeginLine(level);
  CloseTag(name);
}

void PropertyWriter::WriteAttributeFields(const Node& node) {
  for (const Node& field : node.Children()) {
    WriteAttribute(WrittenName(field.Name()), field.Value());
  }
}

void PropertyWriter::WriteFields(const Node& node, int level) {
  for (const Node& field : node.Children()) WriteWithComments(field, level);
  WriteComments(node.CommentsAtEnd(), level);
}

void PropertyWriter::WriteComments(const Comments& comments, int level) {
  for (const std::string& comment : comments) WriteLine(level, comment);
}

const std::string& PropertyWriter::WrittenName(NameId name) {
  if (name >= mWrittenNames.size()) mWrittenNames.resize(name + 1);
  std::string& written = mWrittenNames[name];
  if (written.empty()) {
    written = mPrefixes[mNames.NamespaceOf(name)] + ':' + mNames.LocalName(name);
  }
  return written;
}

void PropertyWriter::WriteAttribute(std::string_view name, std::string_view value) {
  mXML += ' ';
  mXML += name;
  mXML += '=';
  mXML += mLayout.mQuote;
  AppendEscapedAttribute(value, mXML, mLayout.mQuote);
  mXML += mLayout.mQuote;
}

void PropertyWriter::BeginLine(int level) {
  const std::size_t size =
      mLayout.mBaseIndent.size() + static_cast<std::size_t>(level) * mLayout.mIndent.size();
  while (mIndentation.size() < size) mIndentation += mLayout.mIndent;
  mXML.append(mIndentation, 0, size);
}

void PropertyWriter::WriteLine(int level, std::string_view markup) {
  BeginLine(level);
  mXML += markup;
  EndLine();
}

void PropertyWriter::CloseTag(NameId name) {
  mXML += "</";
  mXML += WrittenName(name);
  mXML += '>';
  EndLine();
}

}  // namespace xmptoolkit
