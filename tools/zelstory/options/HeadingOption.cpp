#include "options/HeadingOption.h"

#include <optional>

#include <zelstoryhost/Error.h>

#include "terminal/Input.h"

namespace zelstory {

using zelstoryparser::HeadingRules;

void HeadingOption::AddTo(Command& command) {
  command.AddText("--headings", mName, "RULES",
                  "How headings are read: common (words of eleven languages, the default),\n"
                  "exact (what the library writes by itself), or a file of rules");
}

HeadingRules HeadingOption::Rules() const {
  if (mName == "common") return zelstoryparser::CommonHeadingRules();
  if (mName == "exact") return zelstoryparser::ExactHeadingRules();
  zelstoryparser::HeadingRulesFault fault;
  const std::optional<HeadingRules> rules =
      zelstoryparser::ReadHeadingRules(ReadText(mName), fault);
  if (rules) return *rules;
  const zelcore::xml::Position place{static_cast<std::int64_t>(fault.mLine),
                                     static_cast<std::int64_t>(fault.mColumn)};
  throw zelstoryhost::Error(mName, place, fault.mReason);
}

}  // namespace zelstory
