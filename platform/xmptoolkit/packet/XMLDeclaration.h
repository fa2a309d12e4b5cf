#pragma once

#include <string>
#include <string_view>

#include <xmptoolkit/packet/Encoding.h>

// The XML declaration at the start of a file, which may name the encoding of its packet. Texts are
// UTF-8, without byte-order mark.
namespace xmptoolkit {

using zelcore::xml::BeginsWithDeclaration;
using zelcore::xml::DeclaredEncoding;

// True for a name of US-ASCII, in any case.
bool IsASCIIName(std::string_view name);

// Whether a packet may be declared to be in the encoding `name`: its own, or, for a packet in UTF-8
// whose text is ASCII, US-ASCII.
bool MayDeclare(std::string_view name, Encoding encoding, std::string_view packetText);

// Changes a declaration that names an encoding to name UTF-8. The length of `text` stays the same,
// so that nothing after the name moves. Without a declared encoding nothing changes.
void DeclareUTF8(std::string& text);

}  // namespace xmptoolkit
