#pragma once

#include <optional>
#include <string_view>

#include <libxml/parser.h>

#include <zelcore/xml/DocumentEncoding.h>
#include <zelcore/xml/DocumentLimits.h>
#include <zelcore/xml/SAXDriver.h>
#include <zelcore/xml/libxml/Contexts.h>
#include <zelcore/xml/libxml/DocumentInput.h>
#include <zelcore/xml/libxml/EntityTable.h>
#include <zelcore/xml/libxml/ErrorReports.h>
#include <zelcore/xml/libxml/EventDelivery.h>
#include <zelcore/xml/libxml/Outcome.h>

namespace zelcore::xml {

// One parse, from its first bytes to its outcome. libxml2's callbacks reach it through the _private
// of their context.
class ParseState {
 public:
  // Throws std::bad_alloc.
  explicit ParseState(SAXEvents& events);

  static ParseState& Of(void* context) {
    return *static_cast<ParseState*>(static_cast<xmlParserCtxt*>(context)->_private);
  }

  // Parses the next bytes, and returns whether more are wanted.
  bool Feed(std::string_view bytes, bool isLast);

  // The source of the bytes failed.
  void FailToRead() { mOutcome.Fail({mInput.CurrentPosition(), "reading failed"}); }

  // Ends the parse. Throws what a receiver has thrown, and std::bad_alloc.
  std::optional<SyntaxError> Finish(bool anyBytes);

  Position CurrentPosition() const { return mInput.CurrentPosition(); }
  bool HasStopped() const { return mOutcome.HasStopped(); }

  // Runs a callback's action: none after a stop, and no exception crosses the C library.
  template <typename Action>
  void Guard(void* context, Action action) {
    if (HasStopped()) return;
    mContexts.Enter(context);
    mOutcome.Try([&] {
      mInput.FollowCallback();
      action();
    });
    if (HasStopped()) mContexts.Halt();
  }

  // For use within Guard.
  EventDelivery& Delivery() { return mDelivery; }
  EntityTable& Entities() { return mEntities; }

  // These need no guard.
  DocumentInput& Input() { return mInput; }
  ErrorReports& Errors() { return mErrors; }

 private:
  void InitialiseLibrary();
  std::string_view Begin(std::string_view bytes, bool isWhole);
  void Decode();
  void Parse(std::string_view bytes);
  void CloseSubset();
  void End();
  void CheckProgress(bool isLast);

  Contexts mContexts;
  DocumentLimits mLimits;
  Outcome mOutcome;
  DocumentInput mInput{mContexts};
  EntityTable mEntities{mContexts, mInput, mLimits};
  EventDelivery mDelivery;
  ErrorReports mErrors{mContexts, mInput, mDelivery, mOutcome};
  UnicodeForm mForm = UnicodeForm::kUTF8;
  bool mHasBegun = false;  // the first bytes have been fed
};

}  // namespace zelcore::xml
