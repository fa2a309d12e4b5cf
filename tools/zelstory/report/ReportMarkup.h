#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <pugixml.hpp>
#include <zelstoryhost/SceneFacts.h>

namespace zelstory {

// The page's own words are English; a story does not say which language it is in.
inline constexpr const char* kUnknownLanguage = "";

// A text as markup can hold it: control characters, which no page may carry, become U+FFFD. What
// would be markup is escaped when the page is written.
std::string MarkupText(const std::string& text);

// Adds an element with an optional class and text, and returns it.
pugi::xml_node AddElement(pugi::xml_node parent, const char* name, const char* className = "",
                          const std::string& text = "");

void SetAttribute(pugi::xml_node element, const char* name, const std::string& value);

// A box whose content scrolls sideways where the page is narrower, by the keyboard, too.
pugi::xml_node AddScrollingBox(pugi::xml_node parent, const std::string& label);

// Adds text behind what the element holds.
void AppendText(pugi::xml_node element, const std::string& text);

// A sentence that explains such names, with a blank before it; empty if every scene has a number.
std::string PositionNote(const std::vector<zelstoryhost::SceneFacts>& scenes);

// "scene-12", where the screenplay has the scene; and a link to it. Positions count from 1.
std::string SceneAnchor(std::size_t position);
pugi::xml_node AddSceneLink(pugi::xml_node parent, std::size_t position,
                            const std::string& text = "");

// For the pointer only: the keyboard reaches the same scenes in the table of scenes, without
// thousands of stops.
pugi::xml_node AddPointerLink(pugi::xml_node parent, std::size_t position,
                              const std::string& text = "");

}  // namespace zelstory
