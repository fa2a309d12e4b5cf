#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <xmptoolkit/model/Document.h>

namespace xmptoolkit {

// The ways to write a struct.
enum class StructForm {
  kResource,     // <p rdf:parseType="Resource"> fields </p>
  kDescription,  // <p><rdf:Description> fields </rdf:Description></p>
};

// The white space between the elements of a packet, and how they are written.
struct RDFLayout {
  std::string mNewline = "\n";  // empty: all on one line
  std::string mIndent = " ";    // for each level
  std::string mBaseIndent;      // before every line
  char mQuote = '"';
  StructForm mStructForm = StructForm::kResource;
  bool mFieldsAreAttributes = false;  // of structs whose fields all fit into attributes
  std::string mTextNewline = "\n";    // for line feeds in the text of elements
};

// True when an attribute can say all that the metadata has: a name and a value. An attribute's
// value is text, except that of rdf:type, which is a URI.
bool FitsAttribute(const Node& node);

// Appends properties to a text, each line ended by a newline.
class PropertyWriter {
 public:
  // `prefixes` are by namespace; that of RDF must be rdf.
  PropertyWriter(const NameTable& names, const std::vector<std::string>& prefixes,
                 const RDFLayout& layout, std::string& xml)
      : mNames(names),
        mPrefixes(prefixes),
        mLayout(layout),
        mIndentation(layout.mBaseIndent),
        mXML(xml) {}

  // The element of a property, item, field or qualifier.
  void WriteProperty(const Node& node, int level);
  // The same, and the comments before it.
  void WriteWithComments(const Node& node, int level);
  // The properties within a node, and the comments at its end.
  void WriteFields(const Node& node, int level);

  void WriteComments(const Comments& comments, int level);
  void WriteLine(int level, std::string_view markup);
  void BeginLine(int level);
  void EndLine() { mXML += mLayout.mNewline; }
  void WriteAttribute(std::string_view name, std::string_view value);
  const std::string& WrittenName(NameId name);

 private:
  // Which of a node's plain qualifiers an element carries as attributes.
  struct Carried {
    bool mLang = true;
    bool mDatatype = true;
  };

  void WriteWithValueElement(const Node& node, int level);
  void WriteElement(const Node& node, NameId name, int level, Carried carried);
  void WriteSimple(const Node& node, NameId name);

  void WriteArray(const Node& node, NameId name, int level);
  void WriteStruct(const Node& node, NameId name, int level);
  void WriteResource(const Node& node, NameId name, int level);
  void WriteAttributeFields(const Node& node);
  void CloseTag(NameId name);

  const NameTable& mNames;
  const std::vector<std::string>& mPrefixes;
  const RDFLayout& mLayout;
  std::vector<std::string> mWrittenNames;  // with their prefixes, by number; empty until needed
  std::string mIndentation;                // of the deepest line so far
  std::string& mXML;
};

}  // namespace xmptoolkit
