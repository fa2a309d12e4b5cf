#pragma once

#include <string>

#include <libxml/xmlerror.h>

#include <zelcore/xml/libxml/Contexts.h>
#include <zelcore/xml/libxml/DocumentInput.h>
#include <zelcore/xml/libxml/EventDelivery.h>
#include <zelcore/xml/libxml/Outcome.h>

namespace zelcore::xml {

// Judges what libxml2 complains of: whether it stops the parse, with which reason, and where.
class ErrorReports {
 public:
  ErrorReports(Contexts& contexts, DocumentInput& input, const EventDelivery& delivery,
               Outcome& outcome)
      : mContexts(contexts), mInput(input), mDelivery(delivery), mOutcome(outcome) {}

  // An error that the parser reports, in the given context.
  void Report(const void* context, const xmlError& error);

  // An error that libxml2 reports to the thread.
  void ReportStray(const xmlError& error);

 private:
  void Stop(const void* context, const xmlError& error);
  std::string ReasonOf(const xmlError& error) const;

  Contexts& mContexts;
  DocumentInput& mInput;
  const EventDelivery& mDelivery;
  Outcome& mOutcome;
};

// libxml2 reports lack of memory and failed conversions to the thread's error handler, by default
// on standard error, and not to the parser. It then goes on and complains of what it misses, which
// is misleading. While a trap lives, a parse receives these reports.
class ErrorTrap {
 public:
  explicit ErrorTrap(ErrorReports& reports)
      : mReports(reports), mFunction(xmlStructuredError), mContext(xmlStructuredErrorContext) {
    xmlSetStructuredErrorFunc(this, Catch);
  }
  ~ErrorTrap() { xmlSetStructuredErrorFunc(mContext, mFunction); }
  ErrorTrap(const ErrorTrap&) = delete;
  ErrorTrap& operator=(const ErrorTrap&) = delete;

 private:
  static void Catch(void* context, xmlErrorPtr error);

  ErrorReports& mReports;
  const xmlStructuredErrorFunc mFunction;
  void* const mContext;
};

}  // namespace zelcore::xml
