#pragma once

#include <vector>

#include <pugixml.hpp>

#include "SceneFacts.h"

namespace zelstory {

// Each adds a drawing (SVG) and the words that go with it. Where there are more scenes than a
// drawing can show, neighbours share a column; where there are more people than rows, those who
// speak most are drawn.
void AddSpeakersChart(pugi::xml_node parent, const std::vector<SceneFacts>& scenes,
                      const std::vector<PersonFacts>& people);
void AddLengthsChart(pugi::xml_node parent, const std::vector<SceneFacts>& scenes);

}  // namespace zelstory
