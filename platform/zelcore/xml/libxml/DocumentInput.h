#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <utility>

#include <libxml/parser.h>

#include <zelcore/xml/DocumentLimits.h>
#include <zelcore/xml/DocumentPlace.h>
#include <zelcore/xml/Position.h>
#include <zelcore/xml/libxml/Contexts.h>
#include <zelcore/xml/libxml/Outcome.h>
#include <zelcore/xml/libxml/Views.h>

namespace zelcore::xml {

inline constexpr const char* kEndsEarly = "the document ends before its root element does";

// How far libxml2 has read a document, and where the document is refused.
class DocumentInput {
 public:
  explicit DocumentInput(const Contexts& contexts) : mContexts(contexts) {}

  // Begins to count places, after the XML declaration.
  void Begin();

  // Takes over what libxml2 has converted. To be called when it calls back or returns.
  void Follow() {
    if (const xmlParserInput* input = mContexts.Input()) mPlace.Follow(Held(*input));
  }
  void FollowCallback() {
    Follow();
    if (mEnd) RefuseBeyondEnd(ReadingPosition());
  }

  // Forgets what has been read.
  void DropRead() { mPlace.DropRead(); }

  // The document ends here, in its internal subset; what libxml2 is fed from now on is not its own.
  void MarkEnd();

  // Whether a tag is being reported.
  void SetInTag(bool isInTag) { mIsInTag = isInTag; }

  // Up to where libxml2 has read; in the text of an entity, the place after the reference to it.
  Position ReadingPosition() const;

  // The same, but of a tag that is being reported, where it begins.
  Position CurrentPosition() const;

  // The rest throws Refusal.
  [[noreturn]] void Refuse(std::string reason) const {
    throw Refusal{{CurrentPosition(), std::move(reason)}};
  }
  void Enforce(DocumentLimits::Fault fault) const {
    if (fault) Refuse(*std::move(fault));
  }

  // Refuses a document whose fault is that it ends, if that is why libxml2 has gone beyond its end.
  void RefuseBeyondEnd(const Position& position) const;

  // Refuses a document of which a part could not be converted to UTF-8.
  void CheckConversion();

 private:
  // `consumed` counts what was dropped before `base`; the bytes up to `cur` have been read.
  static HeldInput Held(const xmlParserInput& input) {
    return {input.consumed,
            View(input.base, input.end),
            static_cast<std::size_t>(input.cur - input.base),
            {input.line, input.col}};
  }

  const Contexts& mContexts;
  DocumentPlace mPlace;
  std::optional<Position> mEnd;
  bool mIsInTag = false;
};

}  // namespace zelcore::xml
