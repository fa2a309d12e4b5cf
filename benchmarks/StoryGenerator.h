#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

// Generates a story document of at least `bytes` bytes, UTF-8, the same for the same seed: two to
// twelve speeches or actions per scene, identifiers on every element, entities and accented
// letters, a few long paragraphs.
std::string GenerateStory(std::size_t bytes, std::uint32_t seed = 1);
