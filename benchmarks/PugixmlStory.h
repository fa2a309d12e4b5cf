#pragma once

#include <string_view>

#include <boost/smart_ptr/intrusive_ptr.hpp>
#include <pugixml.hpp>

#include <zelstoryparser/StoryTree.h>

// A hand-written replacement for the library: walks pugixml's document into the same tree. It does
// not validate the structure.
boost::intrusive_ptr<zelstoryparser::TavroStory> WalkStory(const pugi::xml_document& document);
