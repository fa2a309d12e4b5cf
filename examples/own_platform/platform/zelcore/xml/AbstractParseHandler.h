#pragma once

#include <map>

#include <zelcore/String.h>

namespace zelcore::xml {

// The callbacks of this host's reader; StoryParser overrides no others.
class AbstractParseHandler {
 public:
  virtual ~AbstractParseHandler() = default;
  virtual void StartDocument() {}
  virtual void StartElement(const UTF16String& /*name*/,
                            const std::map<UTF16String, UTF16String>& /*attributes*/) {}
  virtual void EndElement(const UTF16String& /*name*/) {}
  virtual void Characters(const UTF16String& /*text*/) {}
  virtual void EndDocument() {}
};

}  // namespace zelcore::xml
