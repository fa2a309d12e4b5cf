#pragma once

#include <string>

#include <xmptoolkit/XMP.h>

#include "scenexmp/SceneText.h"

namespace zelstoryparser {

// The dialogue sequence: written, removed, read and counted. Errors as in SceneProperties.h; a
// write that the toolkit refuses may leave its last item without one or both of its fields.

// Appends one item a pair to the sequence, which is created as an ordered array when absent. Items
// that are there already stay.
bool WriteDialogSequence(const CharacterDialogPairs& pairs, TXMPMeta<std::string>& xmp);

// Removes the sequence with all its items.
bool RemoveDialogSequence(TXMPMeta<std::string>& xmp);

// Replaces `pairs` by the items that have both a character and dialogue, registering the namespaces
// first (whose XMP_Error passes through). Returns whether any field was found in any item; false,
// with the pairs read so far, when the toolkit refuses. `options` receives those of the field read
// last.
bool ReadDialogSequence(const TXMPMeta<std::string>& xmp, XMP_OptionBits& options,
                        CharacterDialogPairs& pairs);

// The number of items, 0 without a sequence. Throws XMP_Error when it is no array.
XMP_Index CountDialogItems(const TXMPMeta<std::string>& xmp);

}  // namespace zelstoryparser
