#include <zelcore/UTF8.h>
#include <zelcore/xml/libxml/EventDelivery.h>

namespace zelcore::xml {

// Stores the attributes and returns what delivering them costs, in bytes.
std::size_t EventDelivery::Convert(std::span<const xmlChar*> attributes) {
  std::size_t cost = 0;
  mAttributes.clear();
  // Five entries per attribute: local name, prefix, URI, first byte of the value, end of the value.
  for (std::size_t i = 0; i < attributes.size(); i += 5) {
    mAttributes.push_back({{View(attributes[i + 1]), View(attributes[i]), View(attributes[i + 2])},
                           View(attributes[i + 3], attributes[i + 4])});
    cost += mAttributes.back().mValue.size() + 1;
  }
  return cost;
}

void EventDelivery::StartElement(const NameView& name, std::span<const xmlChar*> namespaces,
                                 std::span<const xmlChar*> attributes, std::size_t defaulted) {
  EndCDATASection();
  mInput.SetInTag(true);
  const std::size_t count = attributes.size() / 5;
  // nsNr counts two entries per declaration: prefix, URI.
  const std::size_t inForce = static_cast<std::size_t>(mContexts.Current()->nsNr) / 2;
  mInput.Enforce(mLimits.OpenElement(inForce, count));
  mDeclarations.clear();
  for (std::size_t i = 0; i < namespaces.size(); i += 2) {
    mDeclarations.push_back({View(namespaces[i]), View(namespaces[i + 1])});
  }
  // libxml2 compares each attribute of a tag with each, and default ones cost the document nothing.
  const std::size_t costOfComparing = defaulted * count / 64;
  mInput.Enforce(mLimits.Deliver(1 + costOfComparing + Convert(attributes)));
  mEvents.StartElement(name, mDeclarations, mAttributes);
  mInput.SetInTag(false);
}

void EventDelivery::EndElement() {
  EndCDATASection();
  mLimits.CloseElement();
  mRootEnded = mLimits.OpenElements() == 0;
  mInput.SetInTag(true);
  mEvents.EndElement();
  mInput.SetInTag(false);
}

void EventDelivery::Characters(std::string_view text) {
  EndCDATASection();
  mInput.Enforce(mLimits.Deliver(text.size()));
  mEvents.Characters(text);
}

void EventDelivery::CDATA(std::string_view text, bool beginsSection) {
  if (beginsSection) EndCDATASection();
  if (mCDATA.Open()) mEvents.StartCDATA();
  mInput.Enforce(mLimits.Deliver(text.size()));
  // libxml2 lets overlong forms of characters pass here.
  if (!utility::IsUTF8(text)) mInput.Refuse("a CDATA section is not UTF-8");
  const std::string_view normalised = mCDATA.Normalise(text);
  if (!normalised.empty()) mEvents.Characters(normalised);
}

void EventDelivery::Comment(std::string_view text) {
  EndCDATASection();
  mEvents.Comment(text);
}

void EventDelivery::ProcessingInstruction(std::string_view target, std::string_view data) {
  EndCDATASection();
  mEvents.ProcessingInstruction(target, data);
}

}  // namespace zelcore::xml
