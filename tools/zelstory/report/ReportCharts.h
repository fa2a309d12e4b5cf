#pragma once

#include <vector>

#include <pugixml.hpp>
#include <zelstoryhost/RunningTime.h>
#include <zelstoryhost/SceneFacts.h>

namespace zelstory {

// Each adds a drawing (SVG) and the words that go with it. Where there are more scenes than a
// drawing can show, neighbours share a column.

// `people` come those who say most first; as many as there are rows are drawn.
void AddSpeakersChart(pugi::xml_node parent, const std::vector<zelstoryhost::SceneFacts>& scenes,
                      const std::vector<zelstoryhost::CharacterFacts>& people);

// In time, estimates apart from durations; in words where no scene has a duration.
void AddLengthsChart(pugi::xml_node parent, const std::vector<zelstoryhost::SceneFacts>& scenes,
                     const zelstoryhost::RunningTimes& times);

}  // namespace zelstory
