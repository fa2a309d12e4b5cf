#pragma once

#include <optional>
#include <shared_mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace xmptoolkit {

// The prefixes by which this process knows namespaces. Any number of threads may use it at once.
// Knows xml, rdf and x (the namespace of x:xmpmeta) from the start; nothing is ever removed.
class NamespaceRegistry {
 public:
  static NamespaceRegistry& Global();

  // As TXMPMeta::RegisterNamespace. Returns the prefix in force.
  std::string Register(std::string_view uri, std::string_view suggestedPrefix);

  // What these return lives as long as the process.
  std::optional<std::string_view> PrefixOf(std::string_view uri) const;
  std::optional<std::string_view> URIOf(std::string_view prefix) const;

  // The registry's own copy of a URI; nothing when it is not registered.
  std::optional<std::string_view> Find(std::string_view uri) const;

 private:
  struct Hash : std::hash<std::string_view> {
    using is_transparent = void;
  };
  using Texts = std::unordered_map<std::string, std::string, Hash, std::equal_to<>>;

  using Entry = std::pair<std::string_view, std::string_view>;  // URI and prefix

  NamespaceRegistry();

  std::optional<Entry> FindURI(std::string_view uri) const;

  mutable std::shared_mutex mMutex;
  Texts mPrefixByURI;
  Texts mURIByPrefix;
};

}  // namespace xmptoolkit
