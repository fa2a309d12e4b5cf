#pragma once

#include <optional>
#include <string_view>

#include <xmptoolkit/XMPTypes.h>
#include <xmptoolkit/model/Document.h>
#include <xmptoolkit/model/PathExpression.h>

// The changes that can be made to a document. Each is made completely or not at all: a refusal
// throws XMP_Error before anything has changed.
namespace xmptoolkit {

// As TXMPMeta::SetProperty; without a value, creates an empty array or struct.
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
