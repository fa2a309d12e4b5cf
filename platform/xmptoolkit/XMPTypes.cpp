#include <xmptoolkit/XMPTypes.h>

XMP_Error::XMP_Error(XMP_ErrorID id, const std::string& message)
    : std::runtime_error(message), mID(id) {}

// Out of line, so that the class has its virtual table in one place.
XMP_Error::~XMP_Error() = default;
