#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <xmptoolkit/XMP.h>
#include <zelcore/Export.h>

// Changes the metadata in a file and leaves every byte alone that is not about the change: for
// hosts that edit files of others, which are kept in version control, are compared, or are read by
// programs that expect them in their own form.
namespace xmptoolkit {

// A part of a file, in bytes, and what takes its place.
struct ByteChange {
  std::size_t mOffset = 0;
  std::size_t mLength = 0;
  std::string mBytes;
};

// What PatchPacket returns.
struct PacketPatch {
  std::string mNewFile;
  std::vector<ByteChange> mChanges;  // of the file, in its order; they do not overlap
  // Why the packet had to be written anew, as by ReplacePacket: a clause without full stop. Empty
  // if its bytes were kept.
  std::string mWhyRewritten;
};

// Composes the bytes of a file whose packet holds `after`, where it held `before`: what
// ParseFromBuffer has read from this file.
//
// What is the same in both keeps its bytes: attributes and elements in their order and form, white
// space, line ends, quotes, references, comments and processing instructions. What differs is
// changed in place, as little as the form allows: the text of an element, the items of an array
// that are not the same. What is new is written like what is around it: its line ends, indentation,
// quotes and prefixes, attributes or elements. Names of namespaces that are not declared are
// declared where they are used, so that removing what was added gives the old bytes.
//
// The padding takes up the difference in length if it is long enough; else the packet gets longer,
// and its padding stays. A padding in lines, as most programs write it, shows by their lengths what
// it has taken up, and gives the old bytes when the change is undone. A packet with next to no
// padding, or without wrapper, or read-only, gets longer and shorter; among other bytes the first
// of these does not get shorter.
//
// The result has been read again, and holds `after`: where it would not, and for packets in a form
// that cannot be kept, the packet is written anew. Throws XMP_Error as LocatePacket and
// SerializeToBuffer do, and for metadata that could not be read again, such as a URI longer than
// the limit of a tag. May be called from any thread.
ZELPLATFORM_API PacketPatch PatchPacket(const void* file, XMP_StringLen size,
                                        const TXMPMeta<std::string>& before,
                                        const TXMPMeta<std::string>& after);

// The bytes of a file in UTF-8, to be shown: converted from the encoding of its packet, if all are
// text in that. Throws XMP_Error as LocatePacket does. May be called from any thread.
ZELPLATFORM_API std::string FileInUTF8(const void* file, XMP_StringLen size);

}  // namespace xmptoolkit
