#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <zelstoryhost/Finding.h>

namespace zelstoryhost {

// Gathers findings. What is found again is counted, not listed again.
class FindingList {
 public:
  void Add(Severity severity, const std::string& text,
           std::optional<zelcore::xml::Position> position, std::string where = {},
           FindingCode code = FindingCode::kFormat) {
    const auto [known, isNew] = mKnown.try_emplace(text, mFound.size());
    if (isNew) mFound.push_back({{severity, text, position, std::move(where), code}, 0});
    ++mFound[known->second].second;
  }

  // The findings, in the order in which they were first found.
  std::vector<Finding> Take() {
    std::vector<Finding> findings;
    for (auto& [finding, count] : mFound) {
      if (count > 1) finding.mText += " (" + std::to_string(count) + " times)";
      findings.push_back(std::move(finding));
    }
    return findings;
  }

 private:
  std::vector<std::pair<Finding, int>> mFound;
  std::map<std::string, std::size_t> mKnown;  // text to place in mFound
};

}  // namespace zelstoryhost
