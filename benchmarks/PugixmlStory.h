#pragma once

#include <string_view>

#include <boost/smart_ptr/intrusive_ptr.hpp>
#include <pugixml.hpp>

#include <zelstoryparser/StoryTree.h>

// What people would write by hand in place of the library: pugixml's document, walked into the very
// same tree. Without any test of structure: the document is taken to be a good one.
boost::intrusive_ptr<zelstoryparser::TavroStory> WalkStory(const pugi::xml_document& document);
