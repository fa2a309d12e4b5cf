#pragma once

#include <optional>
#include <shared_mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace xmptoolkit {

// The namespaces of this process with their prefixes; xml, rdf and x (of x:xmpmeta) are registered
// from the start. Nothing is ever removed. Any number of threads may use it at once.
class NamespaceRegistry {
 public:
  static NamespaceRegistry& Global();

  // As TXMPMeta::RegisterNamespace, but returns the prefix in force.
  std::string Register(std::string_view uri, std::string_view suggestedPrefix);

  // Nothing for what is not registered. The texts live as long as the process.
  std::optional<std::string_view> PrefixOf(std::string_view uri) const;
  std::optional<std::string_view> URIOf(std::string_view prefix) const;

  // The registry's own copy of a URI.
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
