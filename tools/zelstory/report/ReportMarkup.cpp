#include "report/ReportMarkup.h"

#include <algorithm>

#include <zelstoryhost/SceneFacts.h>

#include "terminal/Escaped.h"

namespace zelstory {

using zelstoryhost::SceneFacts;
using zelstoryhost::SceneName;

std::string MarkupText(const std::string& text) {
  std::string lines = text;
  std::replace(lines.begin(), lines.end(), '\r', '\n');
  return Escaped(lines, "\n\t");
}

pugi::xml_node AddElement(pugi::xml_node parent, const char* name, const char* className,
                          const std::string& text) {
  pugi::xml_node element = parent.append_child(name);
  if (*className != '\0') element.append_attribute("class") = className;
  if (!text.empty()) element.text().set(MarkupText(text).c_str());
  return element;
}

void SetAttribute(pugi::xml_node element, const char* name, const std::string& value) {
  element.append_attribute(name) = MarkupText(value).c_str();
}

pugi::xml_node AddScrollingBox(pugi::xml_node parent, const std::string& label) {
  pugi::xml_node box = AddElement(parent, "div", "wide");
  box.append_attribute("tabindex") = "0";
  box.append_attribute("role") = "region";
  SetAttribute(box, "aria-label", label);
  return box;
}

void AppendText(pugi::xml_node element, const std::string& text) {
  element.append_child(pugi::node_pcdata).set_value(MarkupText(text).c_str());
}

std::string PositionNote(const std::vector<SceneFacts>& scenes) {
  const bool areNumbered = std::all_of(scenes.begin(), scenes.end(), [](const SceneFacts& scene) {
    return SceneName(scene) == scene.mNumber;
  });
  return areNumbered ? "" : " #n is the position of a scene without a number.";
}

std::string SceneAnchor(std::size_t position) {
  return "scene-" + std::to_string(position);
}

pugi::xml_node AddSceneLink(pugi::xml_node parent, std::size_t position, const std::string& text) {
  pugi::xml_node link = AddElement(parent, "a", "", text);
  SetAttribute(link, "href", "#" + SceneAnchor(position));
  return link;
}

pugi::xml_node AddPointerLink(pugi::xml_node parent, std::size_t position,
                              const std::string& text) {
  pugi::xml_node link = AddSceneLink(parent, position, text);
  link.append_attribute("tabindex") = "-1";
  return link;
}

}  // namespace zelstory
