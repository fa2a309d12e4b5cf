#pragma once

#include <string>
#include <utility>
#include <vector>

#include "Packets.h"

// Packets in the many forms that programs write, made from an input. The pieces that they are made
// of are kept, so that a change can be held against them.
namespace fuzzing {

// A piece of a packet that may only change with what it belongs to: a property or one of its items,
// an rdf:Description that loses all its properties, or the tags around what is removed or added.
struct Piece {
  std::string mText;
  std::string mProperty = "";
  std::size_t mItem = 0;         // from 1
  std::size_t mDescription = 0;  // from 1
  bool mIsEdge = false;
};

struct MadeProperty {
  std::string mName;
  char mKind;  // t text, u URI, a array, s struct, v value with qualifiers
  std::size_t mDescription;
  bool mIsPlain = true;  // spelled as the toolkit spells it
  std::size_t mItems = 0;
};

struct MadePacket {
  std::vector<Piece> mPieces;
  std::vector<MadeProperty> mProperties;
  bool mHasLanguage = false;  // that new properties would take on
  bool mIsReversible = true;  // the padding shows what is lent
  XMP_OptionBits mEncoding = 0;

  std::string Text() const {
    std::string text;
    for (const Piece& piece : mPieces) text += piece.mText;
    return text;
  }
};

class PacketMaker {
 public:
  explicit PacketMaker(Input& input) : mInput(input) {}

  MadePacket Make() {
    mLineEnd = Pick({"\n", "\n", "\r\n", "\r", ""});
    mIndent = Pick({" ", "  ", "\t", "    ", ""});
    mQuote = Pick({"\"", "'"});
    mRDF = Pick({"rdf", "rdf", "rdf", "r"});
    mPacket.mEncoding = kEncodings[mInput.Byte() % 16 % 5];
    const unsigned wrapper = mInput.Byte() % 8;
    const bool hasMeta = mInput.Byte() % 4 != 0;
    if (wrapper == 0) mPacket.mEncoding = 0;  // which is then found by a mark only
    if (wrapper == 7) Add("other bytes "), mPacket.mIsReversible = false;
    if (wrapper != 0)
      Add("<?xpacket begin=`\xEF\xBB\xBF` id=`W5M0MpCehiHzreSzNTczkc9d`?>" + mLineEnd);
    if (hasMeta) Add("<x:xmpmeta xmlns:x=`adobe:ns:meta/` xmlns:et=`urn:et#` et:toolkit=`v 1`>");
    MakeRDF(hasMeta ? Line(0) : "", hasMeta ? 1 : 0);
    if (hasMeta) Add(Line(0) + "</x:xmpmeta>");
    if (wrapper != 0) MakePadding(wrapper);
    return std::move(mPacket);
  }

  static constexpr XMP_OptionBits kEncodings[] = {0, kXMP_EncodeUTF16Big, kXMP_EncodeUTF16Little,
                                                  kXMP_EncodeUTF32Big, kXMP_EncodeUTF32Little};

 private:
  std::string Pick(std::initializer_list<const char*> texts) {
    return texts.begin()[mInput.Byte() % texts.size()];
  }
  bool Chance(unsigned oneIn) { return mInput.Byte() % oneIn == 0; }

  // In texts, ` stands for the quotation mark and ~ for RDF's prefix.
  std::string Written(const std::string& text) const {
    std::string written;
    for (const char c : text) {
      if (c == '`')
        written += mQuote;
      else if (c == '~')
        written += mRDF;
      else
        written += c;
    }
    return written;
  }
  void Add(const std::string& text, Piece piece = {}) {
    piece.mText = Written(text);
    mPacket.mPieces.push_back(std::move(piece));
  }
  void AddEdge(const std::string& text) {
    Piece piece;
    piece.mIsEdge = true;
    Add(text, piece);
  }
  std::string Line(int level) const {
    std::string line = mLineEnd;
    for (int i = 0; i < level && !mLineEnd.empty(); ++i) line += mIndent;
    return line;
  }

  void MakeRDF(const std::string& line, int level) {
    mDeclaresAll = Chance(4);
    Add(line + "<~:RDF xmlns:~=`http://www.w3.org/1999/02/22-rdf-syntax-ns#`" +
        (mDeclaresAll ? " xmlns:q=`urn:q#` xmlns:s=`urn:s#`" : ""));
    if (Chance(24)) Add(" xml:lang=`en`"), mPacket.mHasLanguage = true;
    const std::size_t count = mInput.Byte() % 4;
    if (count == 0 && Chance(2)) return AddEdge("/>");
    AddEdge(">");
    for (std::size_t i = 1; i <= count; ++i) MakeDescription(i, level + 1);
    AddEdge((count == 0 && Chance(2) ? "" : Line(level)) + "</~:RDF>");
  }

  void MakeDescription(std::size_t number, int level) {
    Piece own;
    own.mDescription = number;
    if (Chance(8)) Add(Line(level) + "<!-- between -->");
    const std::string gap = Chance(2) && !mLineEnd.empty() ? Line(level + 1) : " ";
    Add((Chance(6) ? mLineEnd : "") + Line(level) + "<~:Description ~:about=``" +
            (mDeclaresAll ? "" : gap + "xmlns:q=`urn:q#`" + gap + "xmlns:s=`urn:s#`"),
        own);
    const std::size_t attributes = Chance(2) ? mInput.Byte() % 4 : 0;
    for (std::size_t i = 0; i < attributes; ++i) MakeAttribute(number, gap);
    const std::size_t elements = mInput.Byte() % 5;
    if (elements == 0 && Chance(2)) return Add("/>", own);
    AddEdge(">");
    for (std::size_t i = 0; i < elements; ++i) {
      if (Chance(8)) Add(Line(level + 1) + "<?note text?>");
      MakeElement(number, level + 1);
    }
    AddEdge((elements == 0 && Chance(2) ? "" : Line(level)) + "</~:Description>");
  }

  // A text, as the toolkit spells it or not.
  std::string MakeText(bool& isPlain, bool isAttribute) {
    const unsigned choice = mInput.Byte() % 8;
    isPlain = choice < 5;
    if (choice == 4) return isAttribute ? "a &amp; b" : "a &amp; &gt;" + mLineEnd + "b";
    if (choice < 4) return Pick({"one", "two words", "\xC3\xA9\xF0\x9F\x8E\xAC", "x=1"});
    return isAttribute ? "&#x41;&apos; &lt;" : "&#65;<![CDATA[<b>]]>&quot;<!-- in it -->";
  }

  MadeProperty& NewProperty(char kind, std::size_t description) {
    mPacket.mProperties.push_back({(mPacket.mProperties.size() % 3 == 0 ? "s:p" : "q:p") +
                                       std::to_string(mPacket.mProperties.size()),
                                   kind, description});
    return mPacket.mProperties.back();
  }

  void MakeAttribute(std::size_t description, const std::string& gap) {
    MadeProperty& property = NewProperty('t', description);
    const std::string value = MakeText(property.mIsPlain, true);
    AddOf(property, gap + property.mName + "=`" + value + "`");
  }

  void AddOf(const MadeProperty& property, const std::string& text, std::size_t item = 0) {
    Piece piece;
    piece.mProperty = property.mName;
    piece.mItem = item;
    Add(text, piece);
  }

  void MakeElement(std::size_t description, int level) {
    const char kind = "ttuassv"[mInput.Byte() % 7];
    MadeProperty& property = NewProperty(kind, description);
    const std::string open = Line(level) + "<" + property.mName;
    const std::string close = "</" + property.mName + ">";
    if (kind == 'u') return AddOf(property, open + " ~:resource=`urn:x`/>");
    if (kind == 'a') return MakeArray(property, level);
    if (kind == 's') return AddOf(property, open + MakeStruct(level) + close);
    if (kind == 'v') {
      return AddOf(property, open +
                                 (Chance(2) ? " xml:lang=`de`>Wort"
                                            : " ~:parseType=`Resource`><~:value>v</~:value>"
                                              "<s:why>because</s:why>") +
                                 close);
    }
    if (Chance(6)) {
      property.mIsPlain = false;
      return AddOf(property, open + (Chance(2) ? "/>" : ">" + close));
    }
    const std::string text = MakeText(property.mIsPlain, false);
    AddOf(property, open + ">" + text + close);
  }

  // What follows the name in the start tag, and the content.
  std::string MakeStruct(int level) {
    const std::string field = Line(level + 1) + "<s:f>1</s:f>";
    switch (mInput.Byte() % 4) {
      case 0:
        return " ~:parseType=`Resource`>" + field + Line(level + 1) + "<q:g>2</q:g>" + Line(level);
      case 1:
        return ">" + Line(level + 1) + "<~:Description>" + field + "</~:Description>" + Line(level);
      case 2:
        return ">" + Line(level + 1) + "<~:Description s:f=`1` q:g=`2`/>" + Line(level);
      default:
        return " s:f=`1` q:g=`2`>";
    }
  }

  void MakeArray(MadeProperty& property, int level) {
    const std::string name = Pick({"~:Seq", "~:Bag", "~:Alt"});
    const unsigned kind = mInput.Byte() % 3;
    property.mItems = mInput.Byte() % 5;
    property.mIsPlain = kind == 0;
    AddOf(property, Line(level) + "<" + property.mName + ">" + Line(level + 1) + "<" + name);
    if (property.mItems == 0 && Chance(2)) {
      AddOf(property, "/>" + Line(level) + "</" + property.mName + ">");
      return;
    }
    AddOf(property, ">");
    for (std::size_t i = 1; i <= property.mItems; ++i) {
      const std::string text =
          "<~:li" +
          std::string(kind == 1   ? MakeStruct(level + 2)
                      : kind == 2 ? " xml:lang=`" + Pick({"de", "fr", "x-default"}) + "`>text"
                                  : ">" + Pick({"one", "two", "two"})) +
          "</~:li>";
      AddOf(property, Line(level + 2) + text, i);
    }
    AddOf(property, (property.mItems == 0 ? "" : Line(level + 1)) + "</" + name + ">" +
                        Line(level) + "</" + property.mName + ">");
  }

  void MakePadding(unsigned wrapper) {
    const std::size_t lines = mInput.Byte() % 32;
    std::string padding = mLineEnd;
    const unsigned kind = mInput.Byte() % 4;
    if (kind == 1) padding += std::string(4000, ' ');
    if (kind > 1 && !mLineEnd.empty()) {
      for (std::size_t i = 0; i < lines; ++i) padding += std::string(kind * 30, ' ') + mLineEnd;
      if (Chance(2)) padding += "      " + mLineEnd;
      if (lines < 5) mPacket.mIsReversible = false;
    }
    AddEdge(padding);
    Add(wrapper == 1 ? "<?xpacket end=`r`?>" : "<?xpacket end=`w`?>");
    if (wrapper == 6) Add(mLineEnd);
  }

  Input& mInput;
  MadePacket mPacket;
  std::string mLineEnd, mIndent, mQuote, mRDF;
  bool mDeclaresAll = false;
};

}  // namespace fuzzing
