#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <pugixml.hpp>

#include <zelstoryhost/SceneFacts.h>

namespace zelstory {

// The page's own words are English; the language of a story is unknown.
inline constexpr const char* kUnknownLanguage = "";

// A text that markup can hold: line ends are line feeds, other control characters, which no page
// may contain, and bidirectional controls, which would reorder the page's own words, are escaped
// (terminal/Escaped.h). Markup characters are escaped when the page is written.
std::string MarkupText(const std::string& text);

// Adds an element with an optional class and text, and returns it.
pugi::xml_node AddElement(pugi::xml_node parent, const char* name, const char* className = "",
                          const std::string& text = "");

void SetAttribute(pugi::xml_node element, const char* name, const std::string& value);

// A box whose content scrolls sideways on a narrow page, with the keyboard as well.
pugi::xml_node AddScrollingBox(pugi::xml_node parent, const std::string& label);

// Appends text to an element.
void AppendText(pugi::xml_node element, const std::string& text);

// A sentence that explains such names, with a blank before it; empty if every scene has a number.
std::string PositionNote(const std::vector<zelstoryhost::SceneFacts>& scenes);

// The anchor of a scene in the screenplay, "scene-12", and a link to it. Positions count from 1.
std::string SceneAnchor(std::size_t position);
pugi::xml_node AddSceneLink(pugi::xml_node parent, std::size_t position,
                            const std::string& text = "");

// Only for the pointer: the keyboard reaches the same scenes through the table of scenes, without
// thousands of stops.
pugi::xml_node AddPointerLink(pugi::xml_node parent, std::size_t position,
                              const std::string& text = "");

}  // namespace zelstory
