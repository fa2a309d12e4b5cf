#pragma once

#include <string>

#include <xmptoolkit/XMP.h>

#include "scenexmp/SceneText.h"

namespace zelstoryparser {

// Writes, removes, reads and counts the dialogue sequence. Errors as in SceneProperties.h; a write
// that the toolkit refuses may leave its last item without one or both fields.

// Appends one item per pair to the sequence, which is created as an ordered array if there is none.
// Existing items stay.
bool WriteDialogSequence(const CharacterDialogPairs& pairs, TXMPMeta<std::string>& xmp);

// Removes the sequence with all its items.
bool RemoveDialogSequence(TXMPMeta<std::string>& xmp);

// Replaces `pairs` by the items that have both a character and dialogue. Registers the namespaces
// first; that XMP_Error passes through. Returns whether any field was found in any item; returns
// false, with the pairs read so far, if the toolkit refuses. `options` receives those of the last
// field read.
bool ReadDialogSequence(const TXMPMeta<std::string>& xmp, XMP_OptionBits& options,
                        CharacterDialogPairs& pairs);

// Returns the number of items; 0 if there is no sequence. Throws XMP_Error if it is not an array.
XMP_Index CountDialogItems(const TXMPMeta<std::string>& xmp);

}  // namespace zelstoryparser
