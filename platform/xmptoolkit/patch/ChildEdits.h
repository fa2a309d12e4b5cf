#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <xmptoolkit/patch/Edits.h>
#include <xmptoolkit/patch/SourceTree.h>

namespace xmptoolkit {

// Changes what an element holds, in such a way that removing what was added gives the old bytes.
// What is added brings the white space before it along, and what is removed takes it away. An empty
// tag is opened for what is added, and becomes empty again when its last child goes; a pair of tags
// stays a pair. For that, the first child of a pair that was empty is recognised by its white
// space: it has none where elements begin lines, and some where they do not.

// Writes what is added, after some white space, which it begins with.
using Addition = std::function<std::string(std::string_view space)>;

// Adds at the end of an element.
void AppendChildren(const SourceTree& tree, std::size_t element, const std::string& indent,
                    const Addition& addition, Edits& edits);

// Removes some of an element's children. `mayBecomeEmpty`: nothing is added to the element.
void RemoveChildren(const SourceTree& tree, std::size_t element,
                    const std::vector<std::size_t>& removed, bool mayBecomeEmpty, Edits& edits);

// Removes attributes, with the white space before them.
void RemoveAttribute(const SourceTree& tree, const SourceAttribute& attribute, Edits& edits);

}  // namespace xmptoolkit
