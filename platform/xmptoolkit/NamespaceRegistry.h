#pragma once

#include <optional>
#include <shared_mutex>
#include <string>
#include <string_view>
#include <unordered_map>

namespace xmptoolkit {

// The prefixes by which this process knows namespaces. Any number of threads may use it at once.
// Knows xml, rdf and x (the namespace of x:xmpmeta) from the start; nothing is ever removed.
class NamespaceRegistry {
 public:
  static NamespaceRegistry& Global();

  // As TXMPMeta::RegisterNamespace. Returns the prefix in force.
  std::string Register(std::string_view uri, std::string_view suggestedPrefix);

  std::optional<std::string> PrefixOf(std::string_view uri) const;
  std::optional<std::string> URIOf(std::string_view prefix) const;

 private:
  using Texts = std::unordered_map<std::string, std::string>;

  NamespaceRegistry();

  mutable std::shared_mutex mMutex;
  Texts mPrefixByURI;
  Texts mURIByPrefix;
};

}  // namespace xmptoolkit
