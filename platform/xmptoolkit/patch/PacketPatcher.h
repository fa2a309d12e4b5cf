#pragma once

#include <vector>

#include <xmptoolkit/model/Document.h>
#include <xmptoolkit/patch/Edits.h>
#include <xmptoolkit/patch/SourceTree.h>

namespace xmptoolkit {

// The edits that make a packet's text, which holds `before`, hold `after`. `asciiOnly`: nothing but
// ASCII may be added. Throws NotPatchable.
//
// A new property joins an rdf:Description that declares its namespace, best one with properties of
// the same namespace. All others get an rdf:Description of their own, which declares what they
// need; so removing them again removes the declarations.
std::vector<Edit> PatchText(const SourceTree& tree, const Document& before, const Document& after,
                            bool asciiOnly);

}  // namespace xmptoolkit
