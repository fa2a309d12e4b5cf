#pragma once

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

#include <libxml/parser.h>

#include <zelcore/xml/CDATAText.h>
#include <zelcore/xml/DocumentLimits.h>
#include <zelcore/xml/SAXDriver.h>
#include <zelcore/xml/libxml/Contexts.h>
#include <zelcore/xml/libxml/DocumentInput.h>

namespace zelcore::xml {

// Turns what libxml2 reports into the events of a receiver, and charges them to the limits. All
// but RootEnded may throw: a Refusal, or what the receiver throws.
class EventDelivery {
 public:
  EventDelivery(SAXEvents& events, const Contexts& contexts, DocumentInput& input,
                DocumentLimits& limits)
      : mEvents(events), mContexts(contexts), mInput(input), mLimits(limits) {}

  // The arrays are libxml2's own: two entries per namespace, five per attribute.
  void StartElement(const NameView& name, std::span<const xmlChar*> namespaces,
                    std::span<const xmlChar*> attributes, std::size_t defaulted);
  void EndElement();
  void Characters(std::string_view text);
  void CDATA(std::string_view text, bool beginsSection);
  void Comment(std::string_view text);
  void ProcessingInstruction(std::string_view target, std::string_view data);
  void Doctype() { mEvents.Doctype(); }
  void DeclareAttribute() { mInput.Enforce(mLimits.DeclareAttribute()); }

  // What follows is not part of a CDATA section, if one was open.
  void EndCDATASection() {
    if (mCDATA.Close()) mEvents.EndCDATA();
  }

  // Whether the root element is complete.
  bool RootEnded() const { return mRootEnded; }

 private:
  std::size_t Convert(std::span<const xmlChar*> attributes);

  SAXEvents& mEvents;
  const Contexts& mContexts;
  DocumentInput& mInput;
  DocumentLimits& mLimits;
  CDATAText mCDATA;
  bool mRootEnded = false;

  // Of the tag that is being reported; kept for their memory.
  std::vector<NamespaceView> mDeclarations;
  std::vector<AttributeView> mAttributes;
};

}  // namespace zelcore::xml
