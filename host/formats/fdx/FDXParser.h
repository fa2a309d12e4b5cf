#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <zelcore/xml/Reader.h>

#include "formats/FindingList.h"
#include "formats/fdx/FDXElements.h"
#include "formats/fdx/FDXScript.h"

namespace zelstoryhost {

// Takes the events of an FDX document. An element that it does not know is part of the one around
// it; text that belongs nowhere is a finding.
class FDXParser : public zelcore::xml::AbstractParseHandler {
 public:
  using Attributes = std::map<zelcore::UTF16String, zelcore::UTF16String>;

  // `source` stands for the document in errors. The reader must live as long as the parser.
  FDXParser(const zelcore::xml::Reader& reader, std::string source)
      : mReader(reader), mSource(std::move(source)) {}

  // Throws Error for another root than FDX has.
  void StartElement(const zelcore::UTF16String& name, const Attributes& attributes) override;
  void EndElement(const zelcore::UTF16String& name) override;
  void Characters(const zelcore::UTF16String& text) override;

  // What has been read, once.
  FDXScript TakeScript();
  FindingList TakeFindings() { return std::move(mFindings); }

 private:
  struct Element {
    std::string mName;
    FDXArea mArea;
    bool mIsText = false;  // its character data counts
    bool mIsInParagraph = false;
    bool mBeginsParagraph = false;
    bool mBeginsArea = false;
    bool mHasStrayText = false;
    std::string mUnknown{};  // the outermost element from here upward that nobody knows
  };

  // A paragraph in whose element the reader is; those of the script have their place there.
  struct OpenParagraph {
    FDXArea mArea;
    std::string mText{};
    std::optional<std::string> mKey{};
    std::size_t mScene = 0, mIndex = 0;
    bool mIsMark = false;
    bool mIsOmitted = false;
  };

  void BeginDocument(const std::string& root, const Attributes& attributes);
  static Element ElementIn(const Element& around, std::string name);
  void Begin(const Element& element, const Attributes& attributes);
  void BeginArea(const Element& element, const Attributes& attributes);
  void BeginParagraph(FDXArea area, const Attributes& attributes);
  void BeginScriptParagraph(const Attributes& attributes);
  void BeginHiddenParagraph(const Attributes& attributes);
  void BeginOmittedScene(const Attributes& attributes);
  void AddTag(const std::string& element, const Attributes& attributes);
  void BeginNote(FDXArea around, const Attributes& attributes);
  void AddSceneProperties(const Attributes& attributes);
  void EndParagraph();
  void EndNote();

  zelstoryparser::ParagraphElementType KindOf(const std::string& name);
  FDXScene& CurrentScene();
  void AddComment(std::string_view stream, std::string text);
  void Find(Severity severity, const std::string& text) {
    mFindings.Add(severity, text, mReader.CurrentPosition());
  }

  const zelcore::xml::Reader& mReader;
  const std::string mSource;
  FindingList mFindings;
  FDXScript mScript;
  std::vector<Element> mElements;          // that are open
  std::vector<OpenParagraph> mParagraphs;  // likewise
  FDXNote mNote{};                         // likewise; only one of nested notes
  bool mIsNoteOfScene = false;
  bool mHasNoteText = false;
  bool mIsSpeaking = false;
};

}  // namespace zelstoryhost
