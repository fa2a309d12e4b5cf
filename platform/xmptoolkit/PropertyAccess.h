#pragma once

#include <optional>
#include <string_view>

#include <xmptoolkit/XMP.h>

#include "Document.h"
#include "PathExpression.h"

// The changes that can be made to a document. Each is made whole or not at all: what is refused
// throws XMP_Error before anything has changed.
namespace xmptoolkit {

// As TXMPMeta::SetProperty; without a value, an empty array or struct is made.
void SetNode(Document& document, const PathExpression& path, std::optional<std::string_view> value,
             XMP_OptionBits options);

// As TXMPMeta::AppendArrayItem.
void AppendItem(Document& document, const PathExpression& array, XMP_OptionBits arrayOptions,
                std::optional<std::string_view> value, XMP_OptionBits itemOptions);

// As TXMPMeta::DeleteProperty.
void DeleteNode(Document& document, const PathExpression& path);

// As TXMPMeta::CountArrayItems.
XMP_Index CountItems(const Document& document, const PathExpression& array);

}  // namespace xmptoolkit
