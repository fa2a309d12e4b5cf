#pragma once

#include <vector>

#include <pugixml.hpp>

#include <zelstoryhost/RunningTime.h>
#include <zelstoryhost/SceneFacts.h>

namespace zelstory {

// One row per scene, with a link to it in the screenplay.
void AddSceneTable(pugi::xml_node parent, const std::vector<zelstoryhost::SceneFacts>& scenes,
                   const zelstoryhost::RunningTimes& times);

// One row per character, in the order given.
void AddCharacterTable(pugi::xml_node parent, const std::vector<zelstoryhost::SceneFacts>& scenes,
                       const std::vector<zelstoryhost::CharacterFacts>& characters);

}  // namespace zelstory
