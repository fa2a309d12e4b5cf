#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include <zelcore/xml/SAXDriver.h>

namespace zelcore::xml {

// Counts what a document asks for, against the limits in SAXDriver.h. Every function that counts or
// checks returns why the document must be refused, or nothing.
class DocumentLimits {
 public:
  using Fault = std::optional<std::string>;

  // Bytes of the document were read: four times as many, and 64 MiB more, may be delivered.
  void Read(std::size_t bytes) { mRead += bytes; }

  // Bytes were delivered, or as much time was spent. Keeps documents from growing far beyond what
  // was read: by entities that multiply each other, or by long default attributes of short tags.
  Fault Deliver(std::size_t bytes) {
    mDelivered += bytes;
    if (mDelivered <= 4 * mRead + kMostExpandedBytes) return std::nullopt;
    return "entities or default attributes expand beyond the limit";
  }

  // A reference to an entity with a text of `length` bytes. Charged when the reference is met: in
  // an attribute the text is expanded without an event, until it is too late.
  Fault Refer(std::size_t length);

  // A start tag, before anything else of it is looked at, and its end.
  Fault OpenElement(std::size_t namespacesInForce, std::size_t attributes);
  void CloseElement() { --mOpenElements; }
  std::size_t OpenElements() const { return mOpenElements; }

  // One more attribute was declared.
  Fault DeclareAttribute();

  // Different names of whatever kind, so far.
  static Fault CheckNames(std::size_t names);

  // Markup that has been read in part; it is not reported before it ends.
  static Fault CheckPending(std::string_view markup);

 private:
  std::size_t mOpenElements = 0;
  std::size_t mDeclaredAttributes = 0;
  std::size_t mRead = 0;
  std::size_t mDelivered = 0;
};

}  // namespace zelcore::xml
