#pragma once

#include <vector>

#include <pugixml.hpp>

#include "RunningTime.h"
#include "SceneFacts.h"

namespace zelstory {

// A row for each scene, with a link to it in the screenplay.
void AddSceneTable(pugi::xml_node parent, const std::vector<SceneFacts>& scenes,
                   const RunningTimes& times);

// A row for each person, in the order given.
void AddCharacterTable(pugi::xml_node parent, const std::vector<SceneFacts>& scenes,
                       const std::vector<PersonFacts>& people);

}  // namespace zelstory
