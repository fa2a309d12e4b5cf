#pragma once

#include <cstddef>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include <zelcore/Export.h>

namespace zelcore::utility {

// Pairs equal elements of two sequences, by their positions, in the order of both: what they have
// in common, from which differences follow. Elements that occur once in each are paired first, so
// that the pairs mean something to a reader; they are not always as many as possible. Takes time
// n log n, whatever the sequences hold.
ZELPLATFORM_API std::vector<std::pair<std::size_t, std::size_t>> CommonElements(
    std::span<const std::string_view> before, std::span<const std::string_view> after);

}  // namespace zelcore::utility
