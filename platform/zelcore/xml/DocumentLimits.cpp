#include <zelcore/xml/DocumentLimits.h>

namespace zelcore::xml {
namespace {

std::string MoreThan(std::size_t limit, const char* what) {
  return "more than " + std::to_string(limit) + " " + what;
}

// How many quoted values the beginning of a tag has.
std::size_t CountValues(std::string_view tag) {
  std::size_t count = 0;
  std::size_t quote = tag.find_first_of("\"'");
  while (quote != std::string_view::npos) {
    const std::size_t end = tag.find(tag[quote], quote + 1);
    if (end == std::string_view::npos) break;
    ++count;
    quote = tag.find_first_of("\"'", end + 1);
  }
  return count;
}

}  // namespace

DocumentLimits::Fault DocumentLimits::Refer(std::size_t length) {
  constexpr std::size_t kCostOfReference = 32;
  return Deliver(kCostOfReference + length);
}

DocumentLimits::Fault DocumentLimits::OpenElement(std::size_t namespacesInForce,
                                                  std::size_t attributes) {
  if (++mOpenElements > kMostOpenElements) return MoreThan(kMostOpenElements, "elements are open");
  if (namespacesInForce > kMostAttributes) {
    return MoreThan(kMostAttributes, "namespace declarations are in force");
  }
  if (attributes > kMostAttributes) return MoreThan(kMostAttributes, "attributes are in a tag");
  return std::nullopt;
}

DocumentLimits::Fault DocumentLimits::DeclareAttribute() {
  if (++mDeclaredAttributes <= kMostAttributes) return std::nullopt;
  return MoreThan(kMostAttributes, "attributes are declared");
}

DocumentLimits::Fault DocumentLimits::CheckNames(std::size_t names) {
  if (names <= kMostNames) return std::nullopt;
  return MoreThan(kMostNames, "different names are used");
}

DocumentLimits::Fault DocumentLimits::CheckPending(std::string_view markup) {
  if (markup.size() > kMostMarkupBytes) {
    return "a tag, a comment or other markup is longer than the limit";
  }
  const bool isTag = markup.starts_with('<') && !markup.starts_with("<!");
  if (isTag && CountValues(markup) > kMostAttributes) {
    return MoreThan(kMostAttributes, "attributes are in a tag");
  }
  return std::nullopt;
}

}  // namespace zelcore::xml
