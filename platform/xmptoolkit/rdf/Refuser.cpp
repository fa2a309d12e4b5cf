#include <xmptoolkit/model/Text.h>
#include <xmptoolkit/rdf/Refuser.h>

namespace xmptoolkit {

void Refuser::Refuse(XMP_ErrorID id, const std::string& why) const {
  RefuseAt(mDriver.CurrentPosition(), id, why);
}

void Refuser::RefuseAt(zelcore::xml::Position position, XMP_ErrorID id,
                       const std::string& why) const {
  if (position.mLine == 1) position.mColumn += mStart.mColumn - 1;
  position.mLine += mStart.mLine - 1;
  throw XMP_Error(id, Describe(position) + why);
}

}  // namespace xmptoolkit
