#pragma once

#include <string>

#include <xmptoolkit/XMPTypes.h>
#include <zelcore/xml/SAXDriver.h>

namespace xmptoolkit {

// Refuses a packet while it is read: throws XMP_Error with line and column in the buffer that holds
// the packet.
class Refuser {
 public:
  // `start` is the place in the buffer where the text that `driver` reads begins.
  Refuser(const zelcore::xml::SAXDriver& driver, zelcore::xml::Position start)
      : mDriver(driver), mStart(start) {}

  // The place that is being read, as the driver counts.
  zelcore::xml::Position CurrentPosition() const { return mDriver.CurrentPosition(); }

  // Refuses at the place that is being read, or at another one as the driver counts.
  [[noreturn]] void Refuse(XMP_ErrorID id, const std::string& why) const;
  [[noreturn]] void RefuseAt(zelcore::xml::Position position, XMP_ErrorID id,
                             const std::string& why) const;

 private:
  const zelcore::xml::SAXDriver& mDriver;
  zelcore::xml::Position mStart;
};

}  // namespace xmptoolkit
