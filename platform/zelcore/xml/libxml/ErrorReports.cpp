#include <algorithm>
#include <new>
#include <string_view>

#include <libxml/parser.h>

#include <zelcore/xml/libxml/ErrorReports.h>
#include <zelcore/xml/libxml/Views.h>

namespace zelcore::xml {
namespace {

// libxml2's messages end in a line feed and may contain more of them.
std::string OneLine(const char* message) {
  std::string line = message == nullptr ? "unknown error" : message;
  while (!line.empty() && (line.back() == '\n' || line.back() == ' ')) line.pop_back();
  std::replace(line.begin(), line.end(), '\n', ' ');
  return line;
}

// libxml2 has no message without memory, and takes the name of a namespace that it cannot store to
// be empty. It has just read the name.
bool ShowsShortage(const xmlParserInput* input, const xmlError& error) {
  if (error.message == nullptr) return true;
  const bool isEmptyName =
      error.code == XML_NS_ERR_XML_NAMESPACE &&
      std::string_view(error.message).find("Empty XML namespace") != std::string_view::npos;
  if (!isEmptyName || input == nullptr || input->cur == input->base) return false;
  std::string_view name = View(input->base, input->cur - 1);
  name.remove_prefix(name.rfind(static_cast<char>(input->cur[-1])) + 1);
  return name.find_first_not_of(" \t\r\n") != std::string_view::npos &&
         name.find('&') == std::string_view::npos;
}

}  // namespace

std::string ErrorReports::ReasonOf(const xmlError& error) const {
  // libxml2 uses this code for a document that is cut off and for one with more after its end.
  const bool endsEarly = error.code == XML_ERR_DOCUMENT_END && !mDelivery.RootEnded();
  if (endsEarly) return kEndsEarly;
  if (error.code == XML_ERR_ENTITY_LOOP) return "entities expand too far, or refer to themselves";
  // libxml2 also uses this code for input that does not begin with markup.
  if (error.code == XML_ERR_DOCUMENT_EMPTY) return "the document does not begin with markup";
  return OneLine(error.message);
}

// Fatal errors stop libxml2. An undeclared entity may be a mere warning to it, as the declaration
// could be in an external part; but its text would be lost.
void ErrorReports::Report(const void* context, const xmlError& error) {
  if (mOutcome.HasStopped()) return;
  if (ShowsShortage(mContexts.Input(), error)) {
    mOutcome.LackMemory();
    return mContexts.Halt();
  }
  const bool losesText =
      error.code == XML_ERR_UNDECLARED_ENTITY || error.code == XML_WAR_UNDECLARED_ENTITY;
  if (error.level != XML_ERR_FATAL && !losesText) return;
  mOutcome.Try([&] { Stop(context, error); });
}

// Throws what stops the parse.
void ErrorReports::Stop(const void* context, const xmlError& error) {
  // The text of an entity that has no fault, which would have stopped the parse, lacks memory.
  const bool hasMessage = error.message != nullptr;
  if (hasMessage && std::string_view(error.message).ends_with("' failed to parse\n")) {
    throw std::bad_alloc();
  }
  mInput.Follow();
  // Bytes that failed to be converted look like the end of the document.
  if (error.code == XML_ERR_DOCUMENT_END) mInput.CheckConversion();
  Position position = mInput.ReadingPosition();
  // libxml2 may have looked further ahead than it has read.
  if (context == mContexts.Document() && error.line > position.mLine) {
    position = {error.line, std::max(error.int2, 1)};
  }
  mInput.RefuseBeyondEnd(position);
  throw Refusal{{position, ReasonOf(error)}};
}

void ErrorReports::ReportStray(const xmlError& error) {
  if (error.code == XML_ERR_NO_MEMORY) mOutcome.LackMemory();
  if (error.code == XML_I18N_CONV_FAILED && !mOutcome.HasStopped()) {
    mOutcome.Try([this] { mInput.CheckConversion(); });
  }
}

void ErrorTrap::Catch(void* context, xmlErrorPtr error) {
  const ErrorTrap& trap = *static_cast<ErrorTrap*>(context);
  trap.mReports.ReportStray(*error);
  if (trap.mFunction != nullptr) trap.mFunction(trap.mContext, error);
}

}  // namespace zelcore::xml
