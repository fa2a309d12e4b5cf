#pragma once

#include <xmptoolkit/XMP.h>

namespace xmptoolkit {

// How the toolkit's own operations reach the document in a metadata object.
struct DocumentAccess {
  static const Document& Of(const TXMPMeta<std::string>& metadata) { return *metadata.mDocument; }
};

}  // namespace xmptoolkit
