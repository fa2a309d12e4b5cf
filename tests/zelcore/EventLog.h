#pragma once

#include <fstream>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include <zelcore/xml/Reader.h>

#include "support/Text.h"

namespace zelcore::xml {

// The events of a parse as a text: ^ and $ for the document, <name a='v'>, </name>, 'text' however
// it was split, [ and ] for CDATA, !comment!. The positions of the tags stand in a text of their
// own.
class EventLog : public AbstractParseHandler {
 public:
  // The call behind `calls` calls throws.
  explicit EventLog(const Reader& reader, int calls = -1) : mCallsLeft(calls), mReader(reader) {}

  void StartDocument() override { Add("^"); }
  void StartElement(const UTF16String& name,
                    const std::map<UTF16String, UTF16String>& attributes) override {
    std::string tag = "<" + Utf8(name);
    for (const auto& [key, value] : attributes) tag += Utf8(u" " + key + u"='" + value + u"'");
    AddTag(tag + ">");
  }
  void EndElement(const UTF16String& name) override { AddTag("</" + Utf8(name) + ">"); }
  void StartCDATA() override { Add("["); }
  void EndCDATA() override { Add("]"); }
  void Characters(const UTF16String& text) override {
    EXPECT_FALSE(text.empty());
    const bool goesOn = mEvents.ends_with("'");
    if (goesOn) mEvents.pop_back();
    Add((goesOn ? "" : "'") + Utf8(text) + "'");
  }
  void Comment(const UTF16String& text) override { Add("!" + Utf8(text) + "!"); }
  void EndDocument() override { Add("$"); }

  std::string mEvents;
  std::string mPositions;
  int mCallsLeft;

 private:
  void Add(const std::string& event) {
    if (mCallsLeft-- == 0) throw std::runtime_error("handler");
    mEvents += event;
  }
  void AddTag(const std::string& tag) {
    Add(tag);
    const Position position = mReader.CurrentPosition();
    mPositions += std::to_string(position.mLine) + ":" + std::to_string(position.mColumn) + " ";
  }

  const Reader& mReader;
};

// An error as it is shown, or "".
inline std::string ErrorText(bool isGood, const Reader& reader) {
  if (isGood) return "";
  const ReadError& error = reader.Error();
  return error.mSource + ":" + std::to_string(error.mPosition.mLine) + ":" +
         std::to_string(error.mPosition.mColumn) + ": " + error.mReason;
}

}  // namespace zelcore::xml
