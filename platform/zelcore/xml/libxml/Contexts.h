#pragma once

#include <memory>

#include <libxml/parser.h>

namespace zelcore::xml {

// libxml2's contexts of one parse: the document's, and the one that calls back. In the text of an
// entity, that is another one.
class Contexts {
 public:
  // Takes over the document's context.
  void Own(xmlParserCtxt* document) { mDocument.reset(document); }

  void Enter(void* current) { mCurrent = static_cast<xmlParserCtxt*>(current); }

  xmlParserCtxt* Document() const { return mDocument.get(); }  // null before Own
  xmlParserCtxt* Current() const { return mCurrent; }          // null before the first callback
  bool IsInEntity() const { return mCurrent != mDocument.get(); }

  // The document as libxml2 holds it; the texts of entities are inputs of their own. Null before it
  // has begun, and once libxml2 has given it up.
  const xmlParserInput* Input() const {
    const bool isThere = mDocument && mDocument->inputNr > 0 && mDocument->inputTab[0]->buf;
    return isThere ? mDocument->inputTab[0] : nullptr;
  }

  // Has libxml2 stop, in the text of an entity too.
  void Halt() {
    if (IsInEntity()) xmlStopParser(mCurrent);
    xmlStopParser(mDocument.get());
  }

 private:
  struct Deleter {
    void operator()(xmlParserCtxt* context) const {
      if (context->myDoc != nullptr) xmlFreeDoc(context->myDoc);
      xmlFreeParserCtxt(context);
    }
  };

  std::unique_ptr<xmlParserCtxt, Deleter> mDocument;
  xmlParserCtxt* mCurrent = nullptr;
};

}  // namespace zelcore::xml
