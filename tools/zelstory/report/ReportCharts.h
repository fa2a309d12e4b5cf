#pragma once

#include <vector>

#include <pugixml.hpp>

#include <zelstoryhost/RunningTime.h>
#include <zelstoryhost/SceneFacts.h>

namespace zelstory {

// Each adds a drawing (SVG) and its text. If a drawing cannot show all scenes, neighbours share a
// column.

// `characters` are sorted by their words, most first; the chart shows as many as it has rows.
void AddCharactersChart(pugi::xml_node parent, const std::vector<zelstoryhost::SceneFacts>& scenes,
                        const std::vector<zelstoryhost::CharacterFacts>& characters);

// In time, with estimates set apart from durations; in words if no scene has a duration.
void AddLengthsChart(pugi::xml_node parent, const std::vector<zelstoryhost::SceneFacts>& scenes,
                     const zelstoryhost::RunningTimes& times);

}  // namespace zelstory
