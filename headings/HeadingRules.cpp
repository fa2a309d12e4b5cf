#include <utility>

#include <zelstoryparser/HeadingRules.h>

#include "headings/HeadingTables.h"
#include "headings/RulesReader.h"

namespace zelstoryparser {

HeadingRules::HeadingRules() = default;
HeadingRules::HeadingRules(std::shared_ptr<const HeadingTables> tables)
    : mTables(std::move(tables)) {}
HeadingRules::HeadingRules(const HeadingRules& other) = default;
HeadingRules& HeadingRules::operator=(const HeadingRules& other) = default;
HeadingRules::~HeadingRules() = default;

const std::vector<std::string>& HeadingRules::Languages() const {
  static const std::vector<std::string> kNone;
  return mTables ? mTables->Languages() : kNone;
}

const HeadingRules& ExactHeadingRules() {
  static const HeadingRules kRules;
  return kRules;
}

const HeadingRules& CommonHeadingRules() {
  static const HeadingRules kRules = [] {
    HeadingRulesFault fault;
    return ReadHeadingRules("use: all", fault).value();
  }();
  return kRules;
}

std::optional<HeadingRules> ReadHeadingRules(std::string_view text, HeadingRulesFault& fault) {
  const auto tables = std::make_shared<HeadingTables>();
  if (!ReadRules(text, *tables, fault)) return std::nullopt;
  if (!tables->HasSpellings(kSettingWord | kTimeWord)) {
    fault = {1, 1, "the rules have no settings and no times"};
    return std::nullopt;
  }
  return HeadingRules(tables);
}

}  // namespace zelstoryparser
